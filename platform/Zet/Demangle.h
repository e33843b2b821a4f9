#pragma once
// The name of a C++ type as its source spells it ("Snmp::TrapManager").

#include <typeinfo>

#include "Zet/String.h"

namespace Zet {

// The compiler's mangled name when it cannot be demangled.
String demangle(std::type_info const& type);

}  // namespace Zet
