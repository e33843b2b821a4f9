#include "LldpAgent/LocalPort.h"

#include <utility>

namespace Lldp {

LocalPort::LocalPort(Ondo::IntfId intfId) : Zet::Entity(intfId.stringValue()), intfId_(std::move(intfId)) {}

}  // namespace Lldp
