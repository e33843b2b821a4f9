#include "LldpAgent/RemoteSystem.h"

#include <string>
#include <utility>

namespace Lldp {

RemoteSystem::RemoteSystem(std::int32_t index, Msap msap)
    : Zet::Entity(std::to_string(index)), index_(index), msap_(std::move(msap)) {}

}  // namespace Lldp
