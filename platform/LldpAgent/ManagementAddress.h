#pragma once
// A management address of a system (LLDP management address TLV) and its key,
// the address family and the address, which index the MIB's address tables.

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>

#include "LldpAgent/Enumerations.h"
#include "LldpAgent/ManAddress.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/String.h"

namespace Lldp {

struct ManagementAddress {
  struct Key {
    std::int32_t manAddrSubtype = 0;  // IANA address family number
    ManAddress manAddr;

    Key() = default;
    Key(std::int32_t manAddrSubtype, ManAddress manAddr);
    // Reads the text of valueToStrep.
    Key(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

    std::size_t hash() const;
    // For logs: "<subtype>/<address>", as in "1/10.0.0.1".
    Zet::String stringValue() const;

    // The order of the two index columns' OID encoding: subtype, then the
    // address length-prefixed (see ManAddress).
    friend bool operator==(Key const&, Key const&) = default;
    friend auto operator<=>(Key const&, Key const&) = default;
  };

  std::int32_t manAddrSubtype = 0;
  ManAddress manAddr;
  ManAddrIfSubtype ifSubtype = ManAddrIfSubtype::unknown;
  std::int32_t ifId = 0;
  ::Snmp::ObjectIdentifier oid;

  ManagementAddress() = default;
  // The key's fields, and the others at their defaults.
  explicit ManagementAddress(Key const& key);
  ManagementAddress(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  Key key() const { return Key(manAddrSubtype, manAddr); }
  // lldpLocManAddrLen: the subtype octet plus the address bytes.
  std::uint32_t manAddrLen() const;

  friend bool operator==(ManagementAddress const&, ManagementAddress const&) = default;
};

Zet::String valueToStrep(ManagementAddress::Key const& key);
Zet::String valueToStrep(ManagementAddress const& address);
std::ostream& operator<<(std::ostream& os, ManagementAddress::Key const& key);
std::ostream& operator<<(std::ostream& os, ManagementAddress const& address);

}  // namespace Lldp

template <>
struct std::hash<Lldp::ManagementAddress::Key> {
  std::size_t operator()(Lldp::ManagementAddress::Key const& key) const noexcept { return key.hash(); }
};
