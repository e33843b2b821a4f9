#include "Zet/String.h"

#include <ostream>

namespace Zet {

String::String(std::string_view bytes) {
  if (!bytes.empty()) {
    rep_ = makePtr<Rep const>(bytes);
  }
}

char const* String::charPtr() const { return rep_ ? rep_->bytes.c_str() : ""; }

String operator+(String const& a, std::string_view b) {
  std::string s(a.view());
  s.append(b);
  return String(s);
}

std::ostream& operator<<(std::ostream& os, String const& s) { return os << s.view(); }

}  // namespace Zet
