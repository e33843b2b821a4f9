#include "LldpAgent/LocalSystem.h"

#include <utility>

#include "Zet/Notifiee.h"

namespace Lldp {

LocalSystem::LocalSystem() : Zet::Entity("localSystem") {}

void LocalSystem::chassisIdentifierIs(std::int32_t subtype, Zet::String id) {
  if (subtype == chassisIdSubtype_ && id == chassisId_) {
    return;
  }
  chassisIdSubtype_ = subtype;
  chassisId_ = std::move(id);
  detail::DeliveryGuard const guard(*this);
  Zet::notify(*this, &NotifieeConst::onChassisIdentifier);
}

}  // namespace Lldp
