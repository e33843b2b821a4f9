#pragma once
// A neighbour's power via MDI (802.3 TLV).

#include <cstdint>
#include <iosfwd>

#include "LldpAgent/Enumerations.h"
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

Zet::String valueToStrep(PowerViaMdiInfo const& info);
std::ostream& operator<<(std::ostream& os, PowerViaMdiInfo const& info);

}  // namespace Lldp
