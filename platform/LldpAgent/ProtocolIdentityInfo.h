#pragma once
// A protocol identity that a neighbour announces (802.1 TLV), numbered by index.

#include <cstdint>
#include <iosfwd>

#include "LldpAgent/BoundedString.h"
#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct ProtocolIdentityInfo {
  std::int32_t index = 1;
  BoundedString255 protocolId;  // the leading bytes of the protocol's frames

  ProtocolIdentityInfo() = default;
  ProtocolIdentityInfo(std::int32_t index, BoundedString255 protocolId);
  ProtocolIdentityInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  friend bool operator==(ProtocolIdentityInfo const&, ProtocolIdentityInfo const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm protocolIdentityInfoForm{"Lldp::ProtocolIdentityInfo",
                                                          Zet::field("index", &ProtocolIdentityInfo::index),
                                                          Zet::field("protocolId", &ProtocolIdentityInfo::protocolId)};

Zet::String valueToStrep(ProtocolIdentityInfo const& info);
std::ostream& operator<<(std::ostream& os, ProtocolIdentityInfo const& info);

}  // namespace Lldp
