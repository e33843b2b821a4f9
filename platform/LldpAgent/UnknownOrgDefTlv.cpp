#include "LldpAgent/UnknownOrgDefTlv.h"

#include <ostream>
#include <utility>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

using Key = UnknownOrgDefTlv::Key;

constexpr Zet::RecordForm keyForm{"Lldp::UnknownOrgDefTlv::Key", Zet::field("oui", &Key::oui),
                                  Zet::field("subtype", &Key::subtype), Zet::field("index", &Key::index)};

constexpr auto const& tlvForm = unknownOrgDefTlvForm;

}  // namespace

Key::Key(Oui oui, std::uint32_t subtype, std::int32_t index) : oui(oui), subtype(subtype), index(index) {}

Key::Key(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) { keyForm.read(*this, pos, end); }

std::size_t Key::hash() const { return keyForm.hash(*this); }

UnknownOrgDefTlv::UnknownOrgDefTlv(Key const& key) : oui(key.oui), subtype(key.subtype), index(key.index) {}

UnknownOrgDefTlv::UnknownOrgDefTlv(Key const& key, BoundedString507 orgDefInfo)
    : oui(key.oui), subtype(key.subtype), index(key.index), orgDefInfo(std::move(orgDefInfo)) {}

UnknownOrgDefTlv::UnknownOrgDefTlv(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  tlvForm.read(*this, pos, end);
}

Zet::String valueToStrep(Key const& key) { return keyForm.toStrep(key); }

Zet::String valueToStrep(UnknownOrgDefTlv const& tlv) { return tlvForm.toStrep(tlv); }

std::ostream& operator<<(std::ostream& os, Key const& key) { return os << valueToStrep(key); }

std::ostream& operator<<(std::ostream& os, UnknownOrgDefTlv const& tlv) { return os << valueToStrep(tlv); }

}  // namespace Lldp
