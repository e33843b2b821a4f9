#include "LldpAgent/StatusBase.h"

#include <utility>

namespace Lldp {

StatusBase::StatusBase(Zet::Name name) : Zet::Entity(std::move(name)) {}

}  // namespace Lldp
