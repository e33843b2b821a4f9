#pragma once
// The framework's exceptions. Each carries the text it was raised with.

#include <stdexcept>
#include <string>

namespace Zet {

class Exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A value outside the range of its type.
class RangeException : public Exception {
 public:
  using Exception::Exception;
};

// Text that does not read as a value of the expected type.
class ParseException : public Exception {
 public:
  using Exception::Exception;
};

// An entity or member re-created under a name already in use with other parameters.
class NameInUseException : public Exception {
 public:
  using Exception::Exception;
};

[[noreturn]] void throwRangeException(std::string const& text);
[[noreturn]] void throwNameInUseException(std::string const& text);

// Scope marker of a block that may raise a RangeException; no effect on control flow.
struct Expect {};

}  // namespace Zet
