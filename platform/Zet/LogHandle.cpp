#include "Zet/LogHandle.h"

namespace Zet {

char const* const NoActionRequired = "No action is required.";

}  // namespace Zet
