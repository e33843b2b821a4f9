#include "LldpAgent/BoundedString.h"

#include <string>

#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace Lldp::detail {

void throwBoundedStringRange(std::string_view typeName, std::size_t maxBytes) {
  Zet::throwRangeException(std::string(typeName) + "::value::bytes > " + std::to_string(maxBytes) + " not allowed");
}

Zet::String readBoundedString(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  return Zet::readValue<Zet::String>(pos, end);
}

Zet::String boundedStringStrep(Zet::String const& value) { return Zet::valueToStrep(value); }

}  // namespace Lldp::detail
