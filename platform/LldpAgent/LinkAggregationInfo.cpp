#include "LldpAgent/LinkAggregationInfo.h"

#include <ostream>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

constexpr auto const& form = linkAggregationInfoForm;

}  // namespace

LinkAggregationInfo::LinkAggregationInfo(LinkAggStatusMap linkAggStatus, std::int32_t linkAggPortId)
    : linkAggStatus(linkAggStatus), linkAggPortId(linkAggPortId) {}

LinkAggregationInfo::LinkAggregationInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

Zet::String valueToStrep(LinkAggregationInfo const& info) { return form.toStrep(info); }

std::ostream& operator<<(std::ostream& os, LinkAggregationInfo const& info) { return os << valueToStrep(info); }

}  // namespace Lldp
