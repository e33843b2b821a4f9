#pragma once
// A type's description, as far as the framework makes objects by type: its
// name, and how to make an entity of it that is known only by its description.

#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace Zet {

class Entity;

struct ZetType {
  // The full type name, as Zet::demangle gives it.
  char const* name = "";
  // Makes an entity of this type with the given name; null for a type that
  // cannot be made from its description alone.
  Ptr<Entity> (*newEntity)(Name const& name) = nullptr;
};

}  // namespace Zet
