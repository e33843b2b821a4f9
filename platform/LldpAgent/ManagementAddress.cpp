#include "LldpAgent/ManagementAddress.h"

#include <ostream>
#include <utility>

#include "Zet/RecordForm.h"
#include "Zet/TextForm.h"

namespace Lldp {

namespace {

using Key = ManagementAddress::Key;

constexpr Zet::RecordForm keyForm{"Lldp::ManagementAddress::Key", Zet::field("manAddrSubtype", &Key::manAddrSubtype),
                                  Zet::field("manAddr", &Key::manAddr)};

constexpr Zet::RecordForm addressForm{"Lldp::ManagementAddress",
                                      Zet::field("manAddrSubtype", &ManagementAddress::manAddrSubtype),
                                      Zet::field("manAddr", &ManagementAddress::manAddr),
                                      Zet::field("ifSubtype", &ManagementAddress::ifSubtype),
                                      Zet::field("ifId", &ManagementAddress::ifId),
                                      Zet::field("oid", &ManagementAddress::oid)};

}  // namespace

Key::Key(std::int32_t manAddrSubtype, ManAddress manAddr)
    : manAddrSubtype(manAddrSubtype), manAddr(std::move(manAddr)) {}

Key::Key(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) { keyForm.read(*this, pos, end); }

std::size_t Key::hash() const { return keyForm.hash(*this); }

Zet::String Key::stringValue() const { return Zet::format("%d/%s", manAddrSubtype, manAddr); }

ManagementAddress::ManagementAddress(Key const& key) : manAddrSubtype(key.manAddrSubtype), manAddr(key.manAddr) {}

ManagementAddress::ManagementAddress(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  addressForm.read(*this, pos, end);
}

// The TLV's address string length: the subtype octet and the address.
std::uint32_t ManagementAddress::manAddrLen() const { return static_cast<std::uint32_t>(manAddr.size()) + 1; }

Zet::String valueToStrep(Key const& key) { return keyForm.toStrep(key); }

Zet::String valueToStrep(ManagementAddress const& address) { return addressForm.toStrep(address); }

std::ostream& operator<<(std::ostream& os, Key const& key) { return os << valueToStrep(key); }

std::ostream& operator<<(std::ostream& os, ManagementAddress const& address) {
  return os << valueToStrep(address);
}

}  // namespace Lldp
