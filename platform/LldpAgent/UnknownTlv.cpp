#include "LldpAgent/UnknownTlv.h"

#include <ostream>
#include <utility>

#include "Zet/Exception.h"
#include "Zet/RecordForm.h"
#include "Zet/TextForm.h"

namespace Lldp {

namespace {

constexpr auto const& form = unknownTlvForm;

void checkType(std::uint32_t type) {
  if (type < UnknownTlv::minType || type > UnknownTlv::maxType) {
    Zet::throwRangeException("UnknownTlv::type < 9 or > 126 not allowed");
  }
}

}  // namespace

UnknownTlv::UnknownTlv(std::uint32_t type) : type(type) { checkType(type); }

UnknownTlv::UnknownTlv(std::uint32_t type, BoundedString511 info) : type(type), info(std::move(info)) {
  checkType(type);
}

UnknownTlv::UnknownTlv(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
  try {
    checkType(type);
  } catch (Zet::RangeException const& e) {
    Zet::rethrowFromDeserializeAttr(e, "type");
  }
}

Zet::String valueToStrep(UnknownTlv const& tlv) { return form.toStrep(tlv); }

std::ostream& operator<<(std::ostream& os, UnknownTlv const& tlv) { return os << valueToStrep(tlv); }

}  // namespace Lldp
