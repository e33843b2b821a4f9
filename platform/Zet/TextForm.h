#pragma once
// Text forms of values: writing a value as text that reads back as the same
// value, and reading it back token by token.
//
// The forms follow one style: integers in decimal, booleans as True/False,
// strings quoted with '...' and escaped so that any byte survives, records as
// "Value('<type>', ** {'<field>': <text>, ...})" (see Zet/RecordForm.h).
// A reader takes the position `pos`, moves it past what it read, and raises a
// ParseException (bad text) or a RangeException (a number out of range).

#include <array>
#include <concepts>
#include <cstddef>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

#include "Zet/Exception.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"
#include "Zet/String.h"

namespace Zet {

using TextPos = String::IteratorConst;

// printf-like: each %s (or %d, %u, %f, %g) takes the next argument as its
// stream output writes it; %% is a percent sign. The number of arguments must
// match the format.
namespace detail {
String formatTexts(std::string_view fmt, std::string const* texts, std::size_t count);
template <class T>
std::string streamedText(T const& value) {
  std::ostringstream os;
  os << value;
  return os.str();
}
}  // namespace detail

template <class... Args>
String format(std::string_view fmt, Args const&... args) {
  std::array<std::string, sizeof...(Args)> const texts{detail::streamedText(args)...};
  return detail::formatTexts(fmt, texts.data(), texts.size());
}

String valueToStrep(long long value);
String valueToStrep(unsigned long long value);
String valueToStrep(bool value);
// The shortest text that reads back as the same double.
String valueToStrep(double value);
// Quoted; quote, backslash and every byte outside printable ASCII are escaped.
String valueToStrep(String const& value);
// Without this a literal would take the bool overload.
inline String valueToStrep(char const* value) { return valueToStrep(String(value)); }

// How a reference to an object is written: None for null, else the type and
// address, as in "Ref('Lldp::RemoteSystem', 0x55d0c8a1f2b0)".
String valueToStrepOfRawPtr(void const* object, std::string_view typeName);
// The readable name of a type, such as "Lldp::RemoteSystem".
std::string typeName(std::type_info const& type);

// The address written is that of the object's PtrInterface, by which
// sequenceToValueOfPtr finds the object again.
template <class T>
String valueToStrep(Ptr<T> const& object) {
  return valueToStrepOfRawPtr(static_cast<PtrInterface const*>(object.get()), typeName(typeid(T)));
}

// The text form of any value: numbers and enumerations by the overloads above,
// other types by their own valueToStrep, found in their namespace.
template <class T>
String strepOf(T const& value) {
  if constexpr (std::is_same_v<T, bool>) {
    return valueToStrep(value);
  } else if constexpr (std::is_enum_v<T>) {
    return strepOf(static_cast<std::underlying_type_t<T>>(value));
  } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
    return valueToStrep(static_cast<long long>(value));
  } else if constexpr (std::is_integral_v<T>) {
    return valueToStrep(static_cast<unsigned long long>(value));
  } else if constexpr (std::is_floating_point_v<T>) {
    return valueToStrep(static_cast<double>(value));
  } else {
    return valueToStrep(value);
  }
}

// The value of one hex digit, either case; -1 for any other character.
int hexValue(char c);

// Moves `pos` past `token`; raises a ParseException if the text does not start with it.
void needString(TextPos& pos, TextPos const& end, std::string_view token);
// Raises a ParseException saying that the text at `pos` is no `type`.
[[noreturn]] void cannotConvert(TextPos const& pos, TextPos const& end, std::type_info const& type);
// Raises `exception` again with the attribute's name in front, so that the
// error names the field that was out of range.
[[noreturn]] void rethrowFromDeserializeAttr(RangeException const& exception, std::string_view attrName);
// Raises a ParseException unless `pos` is the end of `text`.
void strepToValueEnd(String const& text, TextPos const& pos);

// Reads an object reference as valueToStrep(Ptr) writes it: None gives null, a
// reference the entity at its address. The type name in the reference is not
// checked; the object's own type is, by sequenceToValue. A reference to no
// entity that somebody holds raises a ParseException.
Ptr<PtrInterface> sequenceToValueOfPtr(TextPos& pos, TextPos const& end);

// Reads a reference to a T: null for None; an object that is no T raises
// through cannotConvert.
template <class T>
Ptr<T> sequenceToValue(TextPos& pos, TextPos const& end) {
  TextPos const start = pos;
  Ptr<PtrInterface> const object = sequenceToValueOfPtr(pos, end);
  if (!object) {
    return nullptr;
  }
  T* const typed = dynamic_cast<T*>(object.get());
  if (!typed) {
    cannotConvert(start, end, typeid(T));
  }
  return Ptr<T>(typed);
}

namespace detail {
long long readSigned(TextPos& pos, TextPos const& end);
unsigned long long readUnsigned(TextPos& pos, TextPos const& end);
[[noreturn]] void throwIntegerRange(long long value, long long min, long long max);
[[noreturn]] void throwIntegerRange(unsigned long long value, unsigned long long max);
bool readBool(TextPos& pos, TextPos const& end);
double readDouble(TextPos& pos, TextPos const& end);
String readString(TextPos& pos, TextPos const& end);
template <class>
inline constexpr bool unreadable = false;
template <class>
struct PtrTarget {};
template <class T>
struct PtrTarget<Ptr<T>> {
  using type = T;
};
}  // namespace detail

// A type that reads itself: it has a parsing constructor.
template <class T>
concept ParsableFromText = std::constructible_from<T, TextPos&, TextPos const&>;

// Reads a value of T at `pos`: the overloads' forms for numbers, booleans and
// strings, sequenceToValue for a Ptr, the parsing constructor for other types.
template <class T>
T readValue(TextPos& pos, TextPos const& end) {
  if constexpr (std::is_same_v<T, bool>) {
    return detail::readBool(pos, end);
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<T>(readValue<std::underlying_type_t<T>>(pos, end));
  } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
    long long const v = detail::readSigned(pos, end);
    if constexpr (sizeof(T) < sizeof(long long)) {
      if (v < std::numeric_limits<T>::min() || v > std::numeric_limits<T>::max()) {
        detail::throwIntegerRange(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
      }
    }
    return static_cast<T>(v);
  } else if constexpr (std::is_integral_v<T>) {
    unsigned long long const v = detail::readUnsigned(pos, end);
    if constexpr (sizeof(T) < sizeof(unsigned long long)) {
      if (v > std::numeric_limits<T>::max()) {
        detail::throwIntegerRange(v, std::numeric_limits<T>::max());
      }
    }
    return static_cast<T>(v);
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(detail::readDouble(pos, end));
  } else if constexpr (std::is_same_v<T, String>) {
    return detail::readString(pos, end);
  } else if constexpr (requires { typename detail::PtrTarget<T>::type; }) {
    return sequenceToValue<typename detail::PtrTarget<T>::type>(pos, end);
  } else if constexpr (ParsableFromText<T>) {
    return T(pos, end);
  } else {
    static_assert(detail::unreadable<T>, "no text form to read this type from");
  }
}

// Reads the attribute `attrName` of type T; a value out of range is raised
// again under the attribute's name.
template <class T>
T deserializeAttr(TextPos& pos, TextPos const& end, std::string_view attrName) {
  try {
    return readValue<T>(pos, end);
  } catch (RangeException const& e) {
    rethrowFromDeserializeAttr(e, attrName);
  }
}

// The value that `text` holds, with nothing after it. The pointer only names the type.
template <class T>
T strepToValue(String const& text, T* = nullptr) {
  TextPos pos = text.begin();
  T value = readValue<T>(pos, text.end());
  strepToValueEnd(text, pos);
  return value;
}

}  // namespace Zet
