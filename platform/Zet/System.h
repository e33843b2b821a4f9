#pragma once
// The clock of the state database.

#include <functional>

namespace Zet::System {

// Seconds on a monotonic clock; never goes back.
double currentTime();

// Replaces the clock (tests use a settable one); an empty function restores it.
void currentTimeSourceIs(std::function<double()> source);

}  // namespace Zet::System
