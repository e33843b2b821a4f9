#include "Snmp/MibContext.h"

#include <algorithm>

namespace Snmp {
namespace {
std::vector<std::pair<Zet::String, Zet::String>>& recorded() {
  static std::vector<std::pair<Zet::String, Zet::String>> r;
  return r;
}
}  // namespace

void registerMibContext(Zet::String context, Zet::String mib) {
  auto& r = recorded();
  std::pair entry{std::move(context), std::move(mib)};
  if (std::find(r.begin(), r.end(), entry) == r.end()) {
    r.push_back(std::move(entry));
  }
}

void unregisterMibContext(Zet::String context, Zet::String mib) {
  auto& r = recorded();
  r.erase(std::remove(r.begin(), r.end(), std::pair{context, mib}), r.end());
}

std::vector<std::pair<Zet::String, Zet::String>> mibContexts() { return recorded(); }

}  // namespace Snmp
