#include "Zet/String.h"

#include <cstring>
#include <limits>
#include <new>
#include <ostream>

#include "Zet/Assert.h"

namespace Zet {

String::String(std::string_view bytes) {
  if (bytes.empty()) {
    return;
  }
  ZET_ASSERT(bytes.size() <= std::numeric_limits<std::uint32_t>::max());
  void* const block = ::operator new(sizeof(Rep) + bytes.size() + 1);
  Rep* const rep = ::new (block) Rep{{1}, static_cast<std::uint32_t>(bytes.size())};
  char* const data = static_cast<char*>(block) + sizeof(Rep);
  std::memcpy(data, bytes.data(), bytes.size());
  data[bytes.size()] = '\0';
  rep_ = rep;
}

void String::destroy(Rep const* rep) {
  rep->~Rep();
  ::operator delete(const_cast<void*>(static_cast<void const*>(rep)));
}

String operator+(String const& a, std::string_view b) {
  std::string s(a.view());
  s.append(b);
  return String(s);
}

std::ostream& operator<<(std::ostream& os, String const& s) { return os << s.view(); }

}  // namespace Zet
