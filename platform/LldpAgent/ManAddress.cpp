#include "LldpAgent/ManAddress.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "Zet/TextForm.h"

namespace Lldp {

ManAddress::ManAddress(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end)
    : value_(Zet::readValue<Zet::String>(pos, end)) {}

Zet::String valueToStrep(ManAddress const& address) { return Zet::valueToStrep(address.value()); }

std::ostream& operator<<(std::ostream& os, ManAddress const& address) {
  std::ostringstream text;
  bool const dotted = address.size() == 4;
  bool first = true;
  for (char const c : address.value().view()) {
    auto const byte = static_cast<unsigned>(static_cast<unsigned char>(c));
    if (!first) {
      text << (dotted ? '.' : ':');
    }
    first = false;
    if (dotted) {
      text << byte;
    } else {
      text << std::hex << std::setw(2) << std::setfill('0') << byte;
    }
  }
  return os << text.str();
}

}  // namespace Lldp
