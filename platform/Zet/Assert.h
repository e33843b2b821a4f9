#pragma once
// Assertions that stay in release builds: a failure is a programming or
// deployment error and ends the process after one line on standard error.

namespace Zet {

// Reports "<unit>:<line>: <function>: Assertion `<expression>' failed." and aborts.
// The unit is the source file's name without folder and extension.
[[noreturn]] void assertionFailed(char const* expression, char const* file, int line, char const* function);

}  // namespace Zet

// A unit spread over several files names itself before including this header:
//   #define ZET_UNIT "LldpSnmp"
#ifndef ZET_UNIT
#define ZET_UNIT __FILE__
#endif

#define ZET_ASSERT(expr) \
  ((expr) ? static_cast<void>(0) : ::Zet::assertionFailed(#expr, ZET_UNIT, __LINE__, __PRETTY_FUNCTION__))
