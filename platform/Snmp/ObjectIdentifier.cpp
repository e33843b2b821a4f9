#include "Snmp/ObjectIdentifier.h"

#include <algorithm>
#include <charconv>
#include <ostream>
#include <string>
#include <system_error>

#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace Snmp {

ObjectIdentifier::ObjectIdentifier(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end)
    : ObjectIdentifier(fromDotted(Zet::readValue<Zet::String>(pos, end).view())) {}

ObjectIdentifier::ObjectIdentifier(std::span<std::uint64_t const> subIds) : size_(subIds.size()) {
  if (!subIds.empty()) {
    auto block = std::make_shared<std::uint64_t[]>(subIds.size());
    std::copy(subIds.begin(), subIds.end(), block.get());
    subIds_ = std::move(block);
  }
}

ObjectIdentifier ObjectIdentifier::fromDotted(std::string_view text) {
  std::vector<std::uint64_t> subIds;
  std::string_view rest = text;
  if (rest.starts_with('.') && rest.size() > 1) {
    rest.remove_prefix(1);
  }
  // Each turn eats one sub-identifier and its dot, so the loop ends.
  while (!rest.empty()) {
    std::uint64_t subId = 0;
    auto const [next, ec] = std::from_chars(rest.data(), rest.data() + rest.size(), subId);
    auto const used = static_cast<std::size_t>(next - rest.data());
    bool const atEnd = used == rest.size();
    if (ec != std::errc() || (!atEnd && rest[used] != '.') || (!atEnd && used + 1 == rest.size())) {
      throw Zet::ParseException("'" + std::string(text) + "' is no object identifier");
    }
    subIds.push_back(subId);
    rest.remove_prefix(atEnd ? used : used + 1);
  }
  return ObjectIdentifier(subIds);
}

Zet::String ObjectIdentifier::stringValue() const {
  std::string text;
  for (std::uint64_t const subId : subIds()) {
    if (!text.empty()) {
      text.push_back('.');
    }
    text.append(std::to_string(subId));
  }
  return Zet::String(text);
}

Zet::String valueToStrep(ObjectIdentifier const& oid) { return Zet::valueToStrep(oid.stringValue()); }

std::ostream& operator<<(std::ostream& os, ObjectIdentifier const& oid) { return os << oid.stringValue(); }

}  // namespace Snmp
