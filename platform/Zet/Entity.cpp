#include "Zet/Entity.h"

namespace Zet {

String Entity::fullName() const {
  if (!parent_) {
    return name();
  }
  return parent_->fullName() + "/" + std::string(name().view());
}

}  // namespace Zet
