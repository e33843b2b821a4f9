#pragma once
// A neighbour's MAC/PHY configuration and status (802.3 TLV).

#include <cstdint>
#include <iosfwd>

#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct MacPhyConfigStatusInfo {
  bool autoNegSupported = false;
  bool autoNegEnabled = false;
  // The advertised capabilities as a bit map: bit n is named bit n of
  // ifMauAutoNegCapAdvertisedBits (bOther(0), b10baseT(1), ...); bits 16 and up
  // are none of its own. A feed that holds the TLV's two octets reverses them into this.
  std::uint32_t autoNegAdvertisedCap = 0;
  std::uint32_t operMauType = 0;  // the last arc of the dot3MauType OID

  MacPhyConfigStatusInfo() = default;
  MacPhyConfigStatusInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  // lldpXdot3RemPortAutoNegAdvertisedCap as a U16 whose high byte is the
  // object's first octet: named bit 0 is bit 15, as SNMP BITS are laid out.
  std::uint16_t autoNegAdvertisedCapAsU16() const;

  friend bool operator==(MacPhyConfigStatusInfo const&, MacPhyConfigStatusInfo const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm macPhyConfigStatusInfoForm{"Lldp::MacPhyConfigStatusInfo",
                                                            Zet::field("autoNegSupported", &MacPhyConfigStatusInfo::autoNegSupported),
                                                            Zet::field("autoNegEnabled", &MacPhyConfigStatusInfo::autoNegEnabled),
                                                            Zet::field("autoNegAdvertisedCap", &MacPhyConfigStatusInfo::autoNegAdvertisedCap),
                                                            Zet::field("operMauType", &MacPhyConfigStatusInfo::operMauType)};

Zet::String valueToStrep(MacPhyConfigStatusInfo const& info);
std::ostream& operator<<(std::ostream& os, MacPhyConfigStatusInfo const& info);

}  // namespace Lldp
