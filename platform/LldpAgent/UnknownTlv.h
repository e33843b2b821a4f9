#pragma once
// A TLV of a type that the LLDP agent does not interpret (lldpRemUnknownTLVTable).

#include <cstdint>
#include <iosfwd>

#include "LldpAgent/BoundedString.h"
#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct UnknownTlv {
  // The TLV types that 802.1AB leaves unassigned, short of 127 (organisationally specific).
  static constexpr std::uint32_t minType = 9;
  static constexpr std::uint32_t maxType = 126;

  std::uint32_t type = minType;
  BoundedString511 info;

  UnknownTlv() = default;
  // Raises a Zet::RangeException outside minType to maxType; `info` stays empty.
  explicit UnknownTlv(std::uint32_t type);
  UnknownTlv(std::uint32_t type, BoundedString511 info);
  // Reads the text of valueToStrep; a type out of range raises under "type".
  UnknownTlv(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  friend bool operator==(UnknownTlv const&, UnknownTlv const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm unknownTlvForm{"Lldp::UnknownTlv",
                                                Zet::field("type", &UnknownTlv::type),
                                                Zet::field("info", &UnknownTlv::info)};

Zet::String valueToStrep(UnknownTlv const& tlv);
std::ostream& operator<<(std::ostream& os, UnknownTlv const& tlv);

}  // namespace Lldp
