#include "Zet/String.h"

#include <cstring>
#include <new>
#include <ostream>

namespace Zet {

String::Rep* String::Rep::make(std::string_view bytes) {
  void* const block = ::operator new(sizeof(Rep) + bytes.size() + 1);
  Rep* const rep = ::new (block) Rep(bytes.size());
  char* const data = static_cast<char*>(block) + sizeof(Rep);
  std::memcpy(data, bytes.data(), bytes.size());
  data[bytes.size()] = '\0';
  return rep;
}

void String::Rep::handleZeroRef() const {
  Rep* const self = const_cast<Rep*>(this);
  self->~Rep();
  ::operator delete(static_cast<void*>(self));
}

String::String(std::string_view bytes) {
  if (!bytes.empty()) {
    rep_ = Ptr<Rep const>(Rep::make(bytes));
  }
}

char const* String::charPtr() const { return rep_ ? rep_->data() : ""; }

String operator+(String const& a, std::string_view b) {
  std::string s(a.view());
  s.append(b);
  return String(s);
}

std::ostream& operator<<(std::ostream& os, String const& s) { return os << s.view(); }

}  // namespace Zet
