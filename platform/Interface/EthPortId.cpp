#include "Interface/EthPortId.h"

#include <ostream>

#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace Interface {

EthPortId::EthPortId(std::uint16_t raw) { valueIs(raw); }

EthPortId::EthPortId(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  valueIs(Zet::readValue<std::uint16_t>(pos, end));
}

void EthPortId::valueIs(std::uint16_t raw) {
  // The floor is the U16's own, so only the upper bound can fail.
  if (raw > max) {
    Zet::throwRangeException("EthPortId::value < EthPortId::min or > EthPortId::max not allowed");
  }
  value_ = raw;
}

Zet::String valueToStrep(EthPortId id) { return Zet::strepOf(id.value()); }

std::ostream& operator<<(std::ostream& os, EthPortId id) { return os << id.value(); }

}  // namespace Interface
