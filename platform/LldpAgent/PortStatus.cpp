#include "LldpAgent/PortStatus.h"

#include <utility>

namespace Lldp {

PortStatus::PortStatus(Ondo::IntfId intfId) : Zet::Entity(intfId.stringValue()), intfId_(std::move(intfId)) {}

}  // namespace Lldp
