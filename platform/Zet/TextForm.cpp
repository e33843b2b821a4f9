#include "Zet/TextForm.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <system_error>

#include "Zet/Assert.h"
#include "Zet/Demangle.h"

namespace Zet {

int hexValue(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  if (c >= 'a' && c <= 'f') {
    return c - 'a' + 10;
  }
  if (c >= 'A' && c <= 'F') {
    return c - 'A' + 10;
  }
  return -1;
}

namespace {

// A short piece of the text at `pos`, for error messages.
std::string excerpt(TextPos const& pos, TextPos const& end) {
  constexpr std::ptrdiff_t maxShown = 32;
  if (end - pos > maxShown) {
    return std::string(pos, pos + maxShown) + "...";
  }
  return std::string(pos, end);
}

[[noreturn]] void throwParse(std::string_view expected, TextPos const& pos, TextPos const& end) {
  throw ParseException("expected " + std::string(expected) + " at '" + excerpt(pos, end) + "'");
}

char hexDigit(unsigned nibble) { return "0123456789abcdef"[nibble & 0xf]; }


// from_chars over the rest of the text; `pos` moves past the number.
template <class T>
T readNumber(TextPos& pos, TextPos const& end, std::string_view what) {
  T value{};
  char const* const first = std::to_address(pos);
  auto const [next, ec] = std::from_chars(first, std::to_address(end), value);
  if (ec == std::errc::invalid_argument) {
    throwParse(what, pos, end);
  }
  if (ec == std::errc::result_out_of_range) {
    throwRangeException("value " + std::string(first, next) + " out of range");
  }
  pos += next - first;
  return value;
}

}  // namespace

namespace detail {

String formatTexts(std::string_view fmt, std::string const* texts, std::size_t count) {
  std::string out;
  std::size_t used = 0;
  for (std::size_t i = 0; i < fmt.size(); ++i) {
    if (fmt[i] != '%' || i + 1 == fmt.size()) {
      out.push_back(fmt[i]);
      continue;
    }
    ++i;
    if (fmt[i] == '%') {
      out.push_back('%');
      continue;
    }
    ZET_ASSERT(used < count);
    out.append(texts[used++]);
  }
  ZET_ASSERT(used == count);
  return String(out);
}

long long readSigned(TextPos& pos, TextPos const& end) { return readNumber<long long>(pos, end, "an integer"); }

unsigned long long readUnsigned(TextPos& pos, TextPos const& end) {
  return readNumber<unsigned long long>(pos, end, "an unsigned integer");
}

void throwIntegerRange(long long value, long long min, long long max) {
  throwRangeException("value " + std::to_string(value) + " < " + std::to_string(min) + " or > " +
                      std::to_string(max) + " not allowed");
}

void throwIntegerRange(unsigned long long value, unsigned long long max) {
  throwRangeException("value " + std::to_string(value) + " > " + std::to_string(max) + " not allowed");
}

bool readBool(TextPos& pos, TextPos const& end) {
  for (bool const b : {true, false}) {
    std::string_view const word = b ? "True" : "False";
    if (std::string_view(std::to_address(pos), end - pos).starts_with(word)) {
      pos += static_cast<std::ptrdiff_t>(word.size());
      return b;
    }
  }
  throwParse("True or False", pos, end);
}

double readDouble(TextPos& pos, TextPos const& end) { return readNumber<double>(pos, end, "a number"); }

String readString(TextPos& pos, TextPos const& end) {
  TextPos const start = pos;
  if (pos == end || *pos != '\'') {
    throwParse("a quoted string", pos, end);
  }
  std::string bytes;
  for (TextPos p = pos + 1; p != end; ++p) {
    if (*p == '\'') {
      pos = p + 1;
      return String(bytes);
    }
    if (*p != '\\') {
      bytes.push_back(*p);
      continue;
    }
    if (++p == end) {
      break;
    }
    switch (*p) {
      case '\\':
      case '\'':
        bytes.push_back(*p);
        break;
      case 'n':
        bytes.push_back('\n');
        break;
      case 'r':
        bytes.push_back('\r');
        break;
      case 't':
        bytes.push_back('\t');
        break;
      case 'x': {
        int const high = (end - p > 2) ? hexValue(p[1]) : -1;
        int const low = (end - p > 2) ? hexValue(p[2]) : -1;
        if (high < 0 || low < 0) {
          throwParse("two hex digits after \\x", p, end);
        }
        bytes.push_back(static_cast<char>(high * 16 + low));
        p += 2;
        break;
      }
      default:
        throwParse("an escape \\\\, \\', \\n, \\r, \\t or \\x", p, end);
    }
  }
  throwParse("a closing quote", start, end);
}

}  // namespace detail

String valueToStrep(long long value) { return String(std::to_string(value)); }

String valueToStrep(unsigned long long value) { return String(std::to_string(value)); }

String valueToStrep(bool value) { return value ? "True" : "False"; }

String valueToStrep(double value) {
  std::array<char, 64> buffer{};
  auto const [next, ec] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  ZET_ASSERT(ec == std::errc());
  return String(buffer.data(), static_cast<std::size_t>(next - buffer.data()));
}

String valueToStrep(String const& value) {
  std::string out = "'";
  for (char const c : value.view()) {
    auto const byte = static_cast<unsigned char>(c);
    if (c == '\'' || c == '\\') {
      out.push_back('\\');
      out.push_back(c);
    } else if (c == '\n') {
      out.append("\\n");
    } else if (c == '\r') {
      out.append("\\r");
    } else if (c == '\t') {
      out.append("\\t");
    } else if (byte < 0x20 || byte > 0x7e) {
      out.append("\\x");
      out.push_back(hexDigit(byte >> 4));
      out.push_back(hexDigit(byte));
    } else {
      out.push_back(c);
    }
  }
  out.push_back('\'');
  return String(out);
}

String valueToStrepOfRawPtr(void const* object, std::string_view type) {
  if (!object) {
    return "None";
  }
  return format("Ref('%s', %s)", type, object);
}

std::string typeName(std::type_info const& type) { return demangle(type).stdString(); }

void needString(TextPos& pos, TextPos const& end, std::string_view token) {
  if (!std::string_view(std::to_address(pos), end - pos).starts_with(token)) {
    throwParse("'" + std::string(token) + "'", pos, end);
  }
  pos += static_cast<std::ptrdiff_t>(token.size());
}

void cannotConvert(TextPos const& pos, TextPos const& end, std::type_info const& type) {
  throw ParseException("cannot convert '" + excerpt(pos, end) + "' to " + typeName(type));
}

void rethrowFromDeserializeAttr(RangeException const& exception, std::string_view attrName) {
  throw RangeException(std::string(attrName) + ": " + exception.what());
}

Ptr<PtrInterface> sequenceToValueOfPtr(TextPos& pos, TextPos const& end) {
  TextPos const start = pos;
  if (std::string_view(std::to_address(pos), end - pos).starts_with("None")) {
    pos += 4;
    return nullptr;
  }
  TextPos at = pos;
  needString(at, end, "Ref(");
  detail::readString(at, end);
  needString(at, end, ", 0x");
  std::uintptr_t address = 0;
  auto const [next, ec] = std::from_chars(std::to_address(at), std::to_address(end), address, 16);
  if (ec != std::errc()) {
    throwParse("an address in hex", at, end);
  }
  at += next - std::to_address(at);
  needString(at, end, ")");
  PtrInterface* const object = PtrInterface::liveObjectAt(reinterpret_cast<void const*>(address));
  if (!object) {
    throw ParseException("no live object for '" + std::string(start, at) + "'");
  }
  pos = at;
  return Ptr<PtrInterface>(object);
}

void strepToValueEnd(String const& text, TextPos const& pos) {
  if (pos != text.end()) {
    throw ParseException("unexpected text after the value: '" + excerpt(pos, text.end()) + "'");
  }
}

}  // namespace Zet
