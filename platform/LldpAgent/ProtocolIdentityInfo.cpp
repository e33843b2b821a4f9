#include "LldpAgent/ProtocolIdentityInfo.h"

#include <ostream>
#include <utility>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

constexpr auto const& form = protocolIdentityInfoForm;

}  // namespace

ProtocolIdentityInfo::ProtocolIdentityInfo(std::int32_t index, BoundedString255 protocolId)
    : index(index), protocolId(std::move(protocolId)) {}

ProtocolIdentityInfo::ProtocolIdentityInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

Zet::String valueToStrep(ProtocolIdentityInfo const& info) { return form.toStrep(info); }

std::ostream& operator<<(std::ostream& os, ProtocolIdentityInfo const& info) { return os << valueToStrep(info); }

}  // namespace Lldp
