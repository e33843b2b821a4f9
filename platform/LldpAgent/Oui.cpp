#include "LldpAgent/Oui.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "Zet/TextForm.h"

namespace Lldp {

Oui::Oui(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end)
    : value_(Zet::readValue<std::uint32_t>(pos, end)) {}

Zet::String valueToStrep(Oui oui) { return Zet::strepOf(oui.value()); }

std::ostream& operator<<(std::ostream& os, Oui oui) {
  std::ostringstream text;
  text << std::hex << std::setfill('0') << std::setw(2) << ((oui.value() >> 16) & 0xff) << '-' << std::setw(2)
       << ((oui.value() >> 8) & 0xff) << '-' << std::setw(2) << (oui.value() & 0xff);
  return os << text.str();
}

}  // namespace Lldp
