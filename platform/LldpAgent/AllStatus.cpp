#include "LldpAgent/AllStatus.h"

namespace Lldp {

AllStatus::AllStatus() : StatusBase("all") {}

}  // namespace Lldp
