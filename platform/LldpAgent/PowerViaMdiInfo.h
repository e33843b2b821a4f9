#pragma once
// A neighbour's power via MDI (802.3 TLV).

#include <cstdint>
#include <iosfwd>

#include "LldpAgent/Enumerations.h"
#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct PowerViaMdiInfo {
  PowerPortClass powerPortClass{};
  bool powerMdiSupported = false;
  bool powerMdiEnabled = false;
  bool powerPairControllable = false;
  std::uint32_t powerPairs = 0;  // pethPsePortPowerPairs: signal(1), spare(2)
  std::uint32_t powerClass = 0;  // pethPsePortPowerClassifications, class0(1) to class4(5)

  PowerViaMdiInfo() = default;
  PowerViaMdiInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  friend bool operator==(PowerViaMdiInfo const&, PowerViaMdiInfo const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm powerViaMdiInfoForm{"Lldp::PowerViaMdiInfo",
                                                     Zet::field("powerPortClass", &PowerViaMdiInfo::powerPortClass),
                                                     Zet::field("powerMdiSupported", &PowerViaMdiInfo::powerMdiSupported),
                                                     Zet::field("powerMdiEnabled", &PowerViaMdiInfo::powerMdiEnabled),
                                                     Zet::field("powerPairControllable", &PowerViaMdiInfo::powerPairControllable),
                                                     Zet::field("powerPairs", &PowerViaMdiInfo::powerPairs),
                                                     Zet::field("powerClass", &PowerViaMdiInfo::powerClass)};

Zet::String valueToStrep(PowerViaMdiInfo const& info);
std::ostream& operator<<(std::ostream& os, PowerViaMdiInfo const& info);

}  // namespace Lldp
