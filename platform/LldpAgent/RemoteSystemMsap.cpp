#include "LldpAgent/RemoteSystemMsap.h"

#include <ostream>
#include <utility>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

using Msap = RemoteSystemMsap;

constexpr Zet::RecordForm form{"Lldp::RemoteSystem::Msap", Zet::field("chassisIdSubtype", &Msap::chassisIdSubtype),
                               Zet::field("chassisId", &Msap::chassisId),
                               Zet::field("portIdSubtype", &Msap::portIdSubtype),
                               Zet::field("portId", &Msap::portId)};

}  // namespace

Msap::RemoteSystemMsap(ChassisIdSubtype chassisIdSubtype, ChassisId chassisId, PortIdSubtype portIdSubtype,
                       PortId portId)
    : chassisIdSubtype(chassisIdSubtype),
      chassisId(std::move(chassisId)),
      portIdSubtype(portIdSubtype),
      portId(std::move(portId)) {}

Msap::RemoteSystemMsap(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

std::size_t Msap::hash() const { return form.hash(*this); }

Zet::String valueToStrep(Msap const& msap) { return form.toStrep(msap); }

std::ostream& operator<<(std::ostream& os, Msap const& msap) { return os << valueToStrep(msap); }

}  // namespace Lldp
