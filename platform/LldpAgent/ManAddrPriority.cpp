#include "LldpAgent/ManAddrPriority.h"

#include <ostream>
#include <utility>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

constexpr auto const& form = manAddrPriorityForm;

}  // namespace

ManAddrPriority::ManAddrPriority(std::uint32_t priority, std::int32_t addressFamily, std::uint32_t sequence,
                                 Ondo::IntfId intfId)
    : priority(priority), addressFamily(addressFamily), sequence(sequence), intfId(std::move(intfId)) {}

ManAddrPriority::ManAddrPriority(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

std::size_t ManAddrPriority::hash() const { return form.hash(*this); }

Zet::String valueToStrep(ManAddrPriority const& prio) { return form.toStrep(prio); }

std::ostream& operator<<(std::ostream& os, ManAddrPriority const& prio) { return os << valueToStrep(prio); }

}  // namespace Lldp
