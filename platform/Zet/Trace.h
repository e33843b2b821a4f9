#pragma once
// Trace: per-handle levels, tested before any text is formatted.
//
//   ZET_TRACE(handle, 2) << "text " << n;
//
// streams only when level 2 of the handle is enabled. Levels are set per handle
// name, so every handle of one name (one per unit) follows the same setting.

#include <atomic>
#include <functional>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include "Zet/String.h"

namespace Zet {

namespace detail {
struct TraceSetting {
  String name;
  std::atomic<unsigned> mask{0};
};
}  // namespace detail

class TraceHandle {
 public:
  // `enabledByDefault` turns all levels on until the handle's name is configured.
  TraceHandle(String const& name, bool enabledByDefault);
  bool enabled(int level) const;
  String const& name() const { return setting_->name; }

 private:
  detail::TraceSetting* setting_;  // owned by the process-wide trace registry
};

// One trace line in the making; the line is written when the helper goes.
class TraceHelper {
 public:
  static std::optional<TraceHelper> createIfEnabled(TraceHandle const& handle, int level);
  TraceHelper(TraceHelper&& o) noexcept
      : handle_(std::exchange(o.handle_, nullptr)), level_(o.level_), text_(std::move(o.text_)) {}
  TraceHelper& operator=(TraceHelper&&) = delete;
  ~TraceHelper();
  std::ostream& stream() { return text_; }

 private:
  TraceHelper(TraceHandle const& handle, int level) : handle_(&handle), level_(level) {}
  TraceHandle const* handle_;
  int level_;
  std::ostringstream text_;
};

namespace Trace {
// Levels are a bit set: bit n enables level n.
void levelsIs(String const& handleName, unsigned mask);
unsigned levels(String const& handleName);
// "Snmp=2,LldpSnmp=8": each NAME=N enables levels 0 to N of that handle, NAME=-1
// turns it off. Throws std::invalid_argument on a malformed text.
void configure(std::string_view settings);
// Where lines go; the default writes "<handle>[<level>] <text>" to standard error.
using Sink = std::function<void(String const& handleName, int level, std::string_view text)>;
void sinkIs(Sink sink);
}  // namespace Trace

}  // namespace Zet

#define ZET_TRACE(handle, level)                                                              \
  if (auto zetTrace_ = ::Zet::TraceHelper::createIfEnabled((handle), (level)); !zetTrace_) { \
  } else                                                                                      \
    zetTrace_->stream()
