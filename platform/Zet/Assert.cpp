#include "Zet/Assert.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace Zet {

void assertionFailed(char const* expression, char const* file, int line, char const* function) {
  std::string_view unit(file);
  if (auto slash = unit.rfind('/'); slash != std::string_view::npos) {
    unit.remove_prefix(slash + 1);
  }
  if (auto dot = unit.find('.'); dot != std::string_view::npos) {
    unit = unit.substr(0, dot);
  }
  std::fprintf(stderr, "%.*s:%d: %s: Assertion `%s' failed.\n", static_cast<int>(unit.size()), unit.data(), line,
               function, expression);
  std::fflush(stderr);
  std::abort();
}

}  // namespace Zet
