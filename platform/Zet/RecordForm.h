#pragma once
// The text form, parsing and hash of a record, written once for all records:
// a record lists its fields, in order, in a RecordForm and forwards to it.
//
//   constexpr Zet::RecordForm vlanNameForm{"Lldp::VlanName",
//                                          Zet::field("vlanId", &VlanName::vlanId),
//                                          Zet::field("vlanName", &VlanName::vlanName)};
//   vlanNameForm.toStrep(v)        "Value('Lldp::VlanName', ** {'vlanId': 1, 'vlanName': ''})"
//   vlanNameForm.read(v, pos, end) reads that text back, field by field, in this order only
//
// Each field is written by Zet::strepOf and read by Zet::deserializeAttr, so a
// field of a record type nests that record's own form, and a range error in a
// field comes out under the field's name.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "Zet/String.h"
#include "Zet/TextForm.h"

namespace Zet {

template <class R, class V>
struct Field {
  std::string_view name;
  V R::*member;
};

template <class R, class V>
constexpr Field<R, V> field(std::string_view name, V R::*member) {
  return {name, member};
}

template <class R, class... V>
class RecordForm {
 public:
  constexpr RecordForm(std::string_view typeName, Field<R, V>... fields) : typeName_(typeName), fields_(fields...) {}

  std::string_view typeName() const { return typeName_; }
  // The fields in order, for readers of other forms (a scenario file) to go by.
  constexpr std::tuple<Field<R, V>...> const& fields() const { return fields_; }

  String toStrep(R const& record) const {
    std::string out = prefix();
    bool first = true;
    std::apply(
        [&](auto const&... f) {
          ((out.append(first ? "" : ", ").append("'").append(f.name).append("': ").append(
                strepOf(record.*(f.member)).view()),
            first = false),
           ...);
        },
        fields_);
    out.append("})");
    return String(out);
  }

  // Reads the fields into `record` as they come; on an error `record` is left
  // part read, so callers read into an object that the error destroys.
  void read(R& record, TextPos& pos, TextPos const& end) const {
    needString(pos, end, prefix());
    bool first = true;
    std::apply([&](auto const&... f) { (readField(record, pos, end, first, f), ...); }, fields_);
    needString(pos, end, "})");
  }

  std::size_t hash(R const& record) const {
    std::size_t h = 0;
    std::apply(
        [&](auto const&... f) {
          ((h ^= hashOf(record.*(f.member)) + 0x9e3779b97f4a7c15ull + (h << 6) + (h >> 2)), ...);
        },
        fields_);
    return h;
  }

 private:
  std::string prefix() const { return "Value('" + std::string(typeName_) + "', ** {"; }

  template <class F>
  static void readField(R& record, TextPos& pos, TextPos const& end, bool& first, F const& f) {
    needString(pos, end, (first ? "'" : ", '") + std::string(f.name) + "': ");
    first = false;
    using Value = std::remove_cvref_t<decltype(record.*(f.member))>;
    record.*(f.member) = deserializeAttr<Value>(pos, end, f.name);
  }

  template <class Value>
  static std::size_t hashOf(Value const& v) {
    return std::hash<Value>()(v);
  }

  std::string_view typeName_;
  std::tuple<Field<R, V>...> fields_;
};

}  // namespace Zet
