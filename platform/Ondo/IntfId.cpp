#include "Ondo/IntfId.h"

#include <ostream>

#include "Zet/TextForm.h"

namespace Ondo {

IntfId::IntfId(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end)
    : name_(Zet::readValue<Zet::String>(pos, end)) {}

Zet::String valueToStrep(IntfId const& id) { return Zet::valueToStrep(id.stringValue()); }

std::ostream& operator<<(std::ostream& os, IntfId const& id) { return os << id.stringValue(); }

}  // namespace Ondo
