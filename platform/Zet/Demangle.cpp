#include "Zet/Demangle.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace Zet {

String demangle(std::type_info const& type) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> const demangled(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return (status == 0 && demangled) ? String(demangled.get()) : String(type.name());
}

}  // namespace Zet
