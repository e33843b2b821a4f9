#pragma once
// The priority of a local management address: the order in which the LLDP
// agent considers addresses for its TLVs. Lower values come first, field by field.

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>

#include "Ondo/IntfId.h"
#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct ManAddrPriority {
  std::uint32_t priority = 0;      // as configured
  std::int32_t addressFamily = 0;  // IANA number; breaks ties between families
  std::uint32_t sequence = 0;      // order of configuration; breaks the remaining ties
  Ondo::IntfId intfId;             // the interface the address belongs to

  ManAddrPriority() = default;
  ManAddrPriority(std::uint32_t priority, std::int32_t addressFamily, std::uint32_t sequence, Ondo::IntfId intfId);
  ManAddrPriority(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::size_t hash() const;

  friend bool operator==(ManAddrPriority const&, ManAddrPriority const&) = default;
  friend auto operator<=>(ManAddrPriority const&, ManAddrPriority const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm manAddrPriorityForm{"Lldp::ManAddrPriority",
                                                     Zet::field("priority", &ManAddrPriority::priority),
                                                     Zet::field("addressFamily", &ManAddrPriority::addressFamily),
                                                     Zet::field("sequence", &ManAddrPriority::sequence),
                                                     Zet::field("intfId", &ManAddrPriority::intfId)};

Zet::String valueToStrep(ManAddrPriority const& prio);
std::ostream& operator<<(std::ostream& os, ManAddrPriority const& prio);

}  // namespace Lldp

template <>
struct std::hash<Lldp::ManAddrPriority> {
  std::size_t operator()(Lldp::ManAddrPriority const& prio) const noexcept { return prio.hash(); }
};
