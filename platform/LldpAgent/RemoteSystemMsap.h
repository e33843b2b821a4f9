#pragma once
// The identity of a neighbour on a port: its chassis and port identifiers
// (MSAP). The neighbour entity names it Lldp::RemoteSystem::Msap.

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "Zet/String.h"

namespace Lldp {

struct RemoteSystemMsap {
  ChassisIdSubtype chassisIdSubtype{};
  ChassisId chassisId;
  PortIdSubtype portIdSubtype{};
  PortId portId;

  RemoteSystemMsap() = default;
  RemoteSystemMsap(ChassisIdSubtype chassisIdSubtype, ChassisId chassisId, PortIdSubtype portIdSubtype, PortId portId);
  RemoteSystemMsap(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::size_t hash() const;

  friend bool operator==(RemoteSystemMsap const&, RemoteSystemMsap const&) = default;
  friend auto operator<=>(RemoteSystemMsap const&, RemoteSystemMsap const&) = default;
};

Zet::String valueToStrep(RemoteSystemMsap const& msap);
std::ostream& operator<<(std::ostream& os, RemoteSystemMsap const& msap);

}  // namespace Lldp

template <>
struct std::hash<Lldp::RemoteSystemMsap> {
  std::size_t operator()(Lldp::RemoteSystemMsap const& msap) const noexcept { return msap.hash(); }
};
