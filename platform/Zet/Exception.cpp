#include "Zet/Exception.h"

namespace Zet {

void throwRangeException(std::string const& text) { throw RangeException(text); }
void throwNameInUseException(std::string const& text) { throw NameInUseException(text); }

}  // namespace Zet
