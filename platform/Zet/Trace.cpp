#include "Zet/Trace.h"

#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>

namespace Zet {
namespace {

struct Registry {
  std::mutex mutex;
  std::deque<detail::TraceSetting> settings;  // deque: settings never move
  std::map<String, detail::TraceSetting*> byName;
  Trace::Sink sink;

  detail::TraceSetting& setting(String const& name) {
    auto it = byName.find(name);
    if (it != byName.end()) {
      return *it->second;
    }
    auto& s = settings.emplace_back();
    s.name = name;
    byName.emplace(name, &s);
    return s;
  }
};

Registry& registry() {
  static Registry r;
  return r;
}

}  // namespace

TraceHandle::TraceHandle(String const& name, bool enabledByDefault) {
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  bool const known = r.byName.count(name) != 0;
  setting_ = &r.setting(name);
  if (!known && enabledByDefault) {
    setting_->mask = ~0u;
  }
}

TraceHelper::~TraceHelper() {
  std::string const line = text_.str();
  auto& r = registry();
  if (r.sink) {
    r.sink(handle_->name(), level_, line);
  } else {
    std::fprintf(stderr, "%s[%d] %s\n", handle_->name().charPtr(), level_, line.c_str());
  }
}

namespace Trace {

void levelsIs(String const& handleName, unsigned mask) {
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  r.setting(handleName).mask = mask;
}

unsigned levels(String const& handleName) {
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  return r.setting(handleName).mask.load();
}

std::vector<Setting> parseSettings(std::string_view settings) {
  std::vector<Setting> parsed;
  while (!settings.empty()) {
    auto const comma = settings.find(',');
    std::string_view item = settings.substr(0, comma);
    settings = comma == std::string_view::npos ? std::string_view() : settings.substr(comma + 1);
    auto const eq = item.find('=');
    if (eq == 0 || eq == std::string_view::npos || eq + 1 == item.size()) {
      throw std::invalid_argument("expected NAME=LEVEL, got \"" + std::string(item) + "\"");
    }
    std::string const number(item.substr(eq + 1));
    std::size_t used = 0;
    int level = 0;
    try {
      level = std::stoi(number, &used);
    } catch (std::exception const&) {
      used = 0;
    }
    if (used != number.size() || level < -1 || level > 31) {
      throw std::invalid_argument("level of \"" + std::string(item.substr(0, eq)) + "\" must be -1 to 31");
    }
    unsigned const mask = level < 0 ? 0u : (level == 31 ? ~0u : (2u << level) - 1u);
    parsed.push_back({String(item.substr(0, eq)), mask});
  }
  return parsed;
}

void configure(std::string_view settings) {
  for (Setting const& setting : parseSettings(settings)) {
    levelsIs(setting.handleName, setting.mask);
  }
}

void sinkIs(Sink sink) {
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  r.sink = std::move(sink);
}

}  // namespace Trace
}  // namespace Zet
