#include "LldpAgent/Config.h"

namespace Lldp {

Config::Config() : Zet::Entity("config") {}

}  // namespace Lldp
