#pragma once
// Trace: per-handle levels, tested before any text is formatted.
//
//   ZET_TRACE(handle, 2) << "text " << n;
//
// streams only when level 2 of the handle is enabled. Levels are set per handle
// name, so every handle of one name (one per unit) follows the same setting.

#include <atomic>
#include <functional>
#include <sstream>
#include <string_view>
#include <vector>

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
  // Inline: disabled traces sit on every hot path.
  bool enabled(int level) const {
    return level >= 0 && level < 32 && ((setting_->mask.load(std::memory_order_relaxed) >> level) & 1u) != 0;
  }
  String const& name() const { return setting_->name; }

 private:
  detail::TraceSetting* setting_;  // owned by the process-wide trace registry
};

// One trace line in the making; the line is written when the helper goes.
class TraceHelper {
 public:
  TraceHelper(TraceHandle const& handle, int level) : handle_(&handle), level_(level) {}
  TraceHelper(TraceHelper const&) = delete;
  TraceHelper& operator=(TraceHelper const&) = delete;
  ~TraceHelper();
  std::ostream& stream() { return text_; }

 private:
  TraceHandle const* handle_;
  int level_;
  std::ostringstream text_;
};

namespace Trace {
// Levels are a bit set: bit n enables level n.
void levelsIs(String const& handleName, unsigned mask);
unsigned levels(String const& handleName);
struct Setting {
  String handleName;
  unsigned mask;
};
// "Snmp=2,LldpSnmp=8": each NAME=N enables levels 0 to N of that handle, NAME=-1
// turns it off. Throws std::invalid_argument on a malformed text.
std::vector<Setting> parseSettings(std::string_view settings);
// Applies parseSettings(settings).
void configure(std::string_view settings);
// Where lines go; the default writes "<handle>[<level>] <text>" to standard error.
using Sink = std::function<void(String const& handleName, int level, std::string_view text)>;
void sinkIs(Sink sink);
}  // namespace Trace

}  // namespace Zet

// The helper is a temporary: the line is written at the end of the statement.
#define ZET_TRACE(handle, level)                                                           \
  if (::Zet::TraceHandle const& zetTraceHandle_ = (handle); !zetTraceHandle_.enabled(level)) { \
  } else                                                                                   \
    ::Zet::TraceHelper(zetTraceHandle_, (level)).stream()
