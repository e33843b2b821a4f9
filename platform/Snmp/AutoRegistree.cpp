#include "Snmp/AutoRegistree.h"

#include <algorithm>

namespace Snmp {
namespace {
std::vector<HandlerRegistration*>& recorded() {
  static std::vector<HandlerRegistration*> r;
  return r;
}
}  // namespace

AutoRegistree::AutoRegistree(HandlerRegistration* registration) : registration_(registration) {
  recorded().push_back(registration);
}

AutoRegistree::~AutoRegistree() {
  auto& r = recorded();
  r.erase(std::remove(r.begin(), r.end(), registration_), r.end());
}

std::vector<HandlerRegistration*> AutoRegistree::registrations() { return recorded(); }

}  // namespace Snmp
