#pragma once
// A neighbour's link aggregation (802.3 TLV).

#include <cstdint>
#include <iosfwd>

#include "LldpAgent/BitMaps.h"
#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct LinkAggregationInfo {
  LinkAggStatusMap linkAggStatus;
  std::int32_t linkAggPortId = 0;  // the aggregated port's ifIndex; 0 when not aggregated

  LinkAggregationInfo() = default;
  LinkAggregationInfo(LinkAggStatusMap linkAggStatus, std::int32_t linkAggPortId);
  LinkAggregationInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  friend bool operator==(LinkAggregationInfo const&, LinkAggregationInfo const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm linkAggregationInfoForm{"Lldp::LinkAggregationInfo",
                                                         Zet::field("linkAggStatus", &LinkAggregationInfo::linkAggStatus),
                                                         Zet::field("linkAggPortId", &LinkAggregationInfo::linkAggPortId)};

Zet::String valueToStrep(LinkAggregationInfo const& info);
std::ostream& operator<<(std::ostream& os, LinkAggregationInfo const& info);

}  // namespace Lldp
