#include "Zet/Entity.h"

#include <map>

#include "Zet/Assert.h"
#include "Zet/ZetType.h"

namespace Zet {
namespace {
std::map<Name, Ptr<Entity>>& singletons() {
  static std::map<Name, Ptr<Entity>> s;
  return s;
}
}  // namespace

String Entity::fullName() const {
  if (!parent_) {
    return name();
  }
  return parent_->fullName() + "/" + std::string(name().view());
}

Ptr<Entity> Entity::singletonExists(Name const& name) {
  auto const it = singletons().find(name);
  return it == singletons().end() ? nullptr : it->second;
}

Ptr<Entity> Entity::singletonIs(ZetType const* type, Name const& name) {
  if (auto existing = singletonExists(name)) {
    return existing;
  }
  ZET_ASSERT(type && type->newEntity);
  auto made = type->newEntity(name);
  singletons()[name] = made;
  return made;
}

}  // namespace Zet
