#include "Ringlog/Ringlog.h"

#include <charconv>
#include <cstdio>
#include <fstream>
#include <ostream>

#include "Zet/Assert.h"
#include "Zet/System.h"

namespace Ringlog {

Log::Log(std::size_t capacity) : lines_(capacity) {
  ZET_ASSERT(capacity > 0);
  // Room for a usual line in every slot from the start: the ring's memory is
  // then one cost at start-up, not one that grows with what the agent serves
  // until the ring is full.
  for (Line& line : lines_) {
    line.text.reserve(usualLineBytes);
  }
}

Log::Line& Log::nextSlot(int level) {
  Line& line = lines_[next_];
  next_ = (next_ + 1) % lines_.size();
  if (size_ < lines_.size()) {
    ++size_;
  } else {
    ++overwritten_;
  }
  line.stamp = Zet::System::currentTime();
  line.level = level;
  line.text.clear();  // keeps the storage for the new text
  return line;
}

void Log::write(int level, std::string_view text) {
  if (!enabled(level)) {
    return;
  }
  nextSlot(level).text.assign(text);
}

void Log::writeParts(int level, std::initializer_list<std::string_view> parts) {
  if (!enabled(level)) {
    return;
  }
  std::string& text = nextSlot(level).text;
  for (auto const part : parts) {
    text.append(part);
  }
}

void Log::dump(std::ostream& os) const {
  if (overwritten_ != 0) {
    os << "(" << overwritten_ << " earlier lines overwritten)\n";
  }
  std::size_t const first = (next_ + lines_.size() - size_) % lines_.size();
  for (std::size_t i = 0; i < size_; ++i) {
    Line const& line = lines_[(first + i) % lines_.size()];
    // Formatted apart so that the caller's stream flags stay as they were.
    char stamp[64];
    std::snprintf(stamp, sizeof(stamp), "%.6f [%d] ", line.stamp, line.level);
    os << stamp << line.text << '\n';
  }
}

void Log::clear() {
  next_ = 0;
  size_ = 0;
  overwritten_ = 0;
}

Log& defaultLog() {
  static Log log;
  return log;
}

void capacityIs(std::size_t capacity) {
  Log& log = defaultLog();
  unsigned const mask = log.levels();
  log = Log(capacity);
  log.levelsIs(mask);
}

void levelsIs(unsigned mask) { defaultLog().levelsIs(mask); }
unsigned levels() { return defaultLog().levels(); }
bool enabled(int level) { return defaultLog().enabled(level); }
void write(int level, std::string_view text) { defaultLog().write(level, text); }
void dump(std::ostream& os) { defaultLog().dump(os); }

bool dumpToFile(std::filesystem::path const& path) {
  std::ofstream file(path, std::ios::out | std::ios::trunc);
  if (!file) {
    return false;
  }
  dump(file);
  file.flush();
  return static_cast<bool>(file);
}

BlockTimer::BlockTimer(char const* name, int level) : BlockTimer(defaultLog(), name, level) {}

BlockTimer::BlockTimer(Log& log, char const* name, int level)
    : log_(log.enabled(level) ? &log : nullptr), name_(name), level_(level) {
  if (log_) {
    start_ = Zet::System::currentTime();
  }
}

BlockTimer::~BlockTimer() {
  if (!log_) {
    return;
  }
  double const elapsed = Zet::System::currentTime() - start_;
  char seconds[64];
  auto const result = std::to_chars(seconds, seconds + sizeof(seconds), elapsed, std::chars_format::fixed, 6);
  log_->writeParts(level_, {name_, " took ", std::string_view(seconds, result.ptr - seconds), " s"});
}

}  // namespace Ringlog
