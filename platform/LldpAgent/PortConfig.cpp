#include "LldpAgent/PortConfig.h"

namespace Lldp {

PortConfig::PortConfig() : Zet::Entity("portConfig") {}

}  // namespace Lldp
