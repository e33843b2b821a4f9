#pragma once
// Ringlog: an in-memory trace of the last few thousand lines, for looking back
// after the fact (the host dumps it at exit and on request). Lines are kept in
// a ring of fixed capacity; when it is full the oldest line goes.
//
//   Ringlog::BlockTimer timer("void Lldp::Snmp::LldpSm::handleLastChangeTime()");
//   if (Ringlog::enabled(4)) {
//     Ringlog::write(4, text);  // format `text` only inside the test
//   }
//
// Like trace, each level is one bit of a mask. Single-threaded: the agent's
// one thread owns it.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Ringlog {

inline constexpr std::size_t defaultCapacity = 4096;
// The text a slot holds without growing; longer lines make their slot grow.
inline constexpr std::size_t usualLineBytes = 288;
// The level block timers record at unless told otherwise.
inline constexpr int timerLevel = 8;

class Log {
 public:
  // `capacity` lines, at least one; all levels enabled.
  explicit Log(std::size_t capacity = defaultCapacity);

  std::size_t capacity() const { return lines_.size(); }
  // Lines held now, at most capacity().
  std::size_t size() const { return size_; }
  // Lines lost to the ring's wrap since construction or clear().
  std::uint64_t overwritten() const { return overwritten_; }

  // Bit n enables level n.
  void levelsIs(unsigned mask) { mask_ = mask; }
  unsigned levels() const { return mask_; }
  bool enabled(int level) const { return level >= 0 && level < 32 && ((mask_ >> level) & 1u) != 0; }

  // Records one line stamped with Zet::System::currentTime(), if `level` is
  // enabled. A slot's text storage is reused, so a write allocates at most
  // for a line longer than the one it replaces.
  void write(int level, std::string_view text);
  // The same line given in pieces, joined without separators.
  void writeParts(int level, std::initializer_list<std::string_view> parts);

  // Every line held, oldest first, one per output line:
  // "<stamp with 6 decimals> [<level>] <text>". When lines were lost, a first
  // line says how many.
  void dump(std::ostream& os) const;
  void clear();

 private:
  struct Line {
    double stamp = 0.0;
    int level = 0;
    std::string text;
  };
  Line& nextSlot(int level);

  std::vector<Line> lines_;
  std::size_t next_ = 0;  // slot the next line goes to
  std::size_t size_ = 0;
  std::uint64_t overwritten_ = 0;
  unsigned mask_ = ~0u;
};

// The process-wide log the handlers write to; made with defaultCapacity on
// first use.
Log& defaultLog();
// Replaces the process-wide log by an empty one of `capacity` lines, keeping
// its levels. Meant for the host's start-up.
void capacityIs(std::size_t capacity);

// The operations of Log on the process-wide log.
void levelsIs(unsigned mask);
unsigned levels();
bool enabled(int level);
void write(int level, std::string_view text);
void dump(std::ostream& os);
// Writes dump() to `path`, replacing the file; false when it cannot be written.
bool dumpToFile(std::filesystem::path const& path);

// Records "<name> took <seconds> s" when the block ends. If the level is off
// when the block starts, it neither reads the clock nor writes anything.
// `name` must outlive the timer (a literal, as a rule).
class BlockTimer {
 public:
  explicit BlockTimer(char const* name, int level = timerLevel);
  BlockTimer(Log& log, char const* name, int level = timerLevel);
  BlockTimer(BlockTimer const&) = delete;
  BlockTimer& operator=(BlockTimer const&) = delete;
  ~BlockTimer();

 private:
  Log* log_;  // null when the level was off at the start
  char const* name_;
  int level_;
  double start_ = 0.0;
};

}  // namespace Ringlog
