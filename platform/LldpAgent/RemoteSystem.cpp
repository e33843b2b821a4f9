#include "LldpAgent/RemoteSystem.h"

#include <string>
#include <utility>

namespace Lldp {

RemoteSystem::RemoteSystem(std::int32_t index, Msap msap)
    : index_(index), msap_(std::move(msap)) {}

// Made when asked rather than kept: a string per neighbour for a name that is only ever read in text forms.
Zet::Name RemoteSystem::name() const { return Zet::Name(std::to_string(index_)); }

}  // namespace Lldp
