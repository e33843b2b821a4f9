#pragma once
// An organisationally specific TLV that the LLDP agent does not interpret
// (lldpRemOrgDefInfoTable), and its key.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>

#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Oui.h"
#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct UnknownOrgDefTlv {
  struct Key {
    Oui oui;
    std::uint32_t subtype = 1;
    std::int32_t index = 1;  // tells apart TLVs with the same oui and subtype

    Key() = default;
    Key(Oui oui, std::uint32_t subtype, std::int32_t index);
    Key(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

    std::size_t hash() const;

    friend bool operator==(Key const&, Key const&) = default;
  };

  Oui oui;
  std::uint32_t subtype = 1;
  std::int32_t index = 1;
  BoundedString507 orgDefInfo;

  UnknownOrgDefTlv() = default;
  // The key's fields and an empty orgDefInfo.
  explicit UnknownOrgDefTlv(Key const& key);
  UnknownOrgDefTlv(Key const& key, BoundedString507 orgDefInfo);
  UnknownOrgDefTlv(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  Key key() const { return Key(oui, subtype, index); }

  friend bool operator==(UnknownOrgDefTlv const&, UnknownOrgDefTlv const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm unknownOrgDefTlvForm{"Lldp::UnknownOrgDefTlv",
                                                      Zet::field("oui", &UnknownOrgDefTlv::oui),
                                                      Zet::field("subtype", &UnknownOrgDefTlv::subtype),
                                                      Zet::field("index", &UnknownOrgDefTlv::index),
                                                      Zet::field("orgDefInfo", &UnknownOrgDefTlv::orgDefInfo)};

Zet::String valueToStrep(UnknownOrgDefTlv::Key const& key);
Zet::String valueToStrep(UnknownOrgDefTlv const& tlv);
std::ostream& operator<<(std::ostream& os, UnknownOrgDefTlv::Key const& key);
std::ostream& operator<<(std::ostream& os, UnknownOrgDefTlv const& tlv);

}  // namespace Lldp

template <>
struct std::hash<Lldp::UnknownOrgDefTlv::Key> {
  std::size_t operator()(Lldp::UnknownOrgDefTlv::Key const& key) const noexcept { return key.hash(); }
};
