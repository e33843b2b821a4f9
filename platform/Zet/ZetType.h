#pragma once
// A type's description: its name, its base, its attributes and the generic
// operations through which code that never saw the type's declaration makes
// it, reads and writes its attributes by name, walks its collections and
// calls its methods. Descriptions are registered by name with typeNodeIs.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Zet/GenericIf.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace Zet {

class Entity;
class Dir;
class PtrInterface;
struct ZetType;

// A constructor parameter or a method argument: its name and its type's name.
struct ZetArg {
  String name;
  String typeName;
};

enum class AttrKind : std::uint8_t { ctorParam, derived, stored, owned, collection, method };

struct ZetAttr {
  String name{};
  ZetType const* owner = nullptr;
  String valueType{};
  // A collection's key type and the name its element knows the key by; empty otherwise.
  String keyType{};
  String keyName{};
  // A method's arguments, or the parameters of what a set makes.
  std::vector<ZetArg> args{};
  AttrKind kind = AttrKind::derived;
  std::uint32_t id = 0;
  // The description of the value (the element of a collection), when it has one.
  ZetType const* valueTypeNode = nullptr;
  // The attribute's part of genericIfAttributeOp; codes as there, never 2.
  int (*op)(void* result, void* object, GenericIf::AttributeOp op, void* key, void* arguments) = nullptr;
  // The text form of the attribute's value on `object`; null for collections and methods.
  String (*strRep)(void const* object) = nullptr;
  // The text form of a key of this collection; null for other kinds.
  String (*keyStrRep)(void const* key) = nullptr;
  // A collection: a new iterator of GenericIf::Iterator::cursorTable on `object`'s collection.
  void* (*iterator)(void* object) = nullptr;
  // A collection that walks in key order (else in an order of its own).
  bool ordered = false;
  // An owned object: the object it holds on `object`, null when none.
  PtrInterface const* (*ownedObject)(void const* object) = nullptr;

  // Which operations the kind allows (see GenericIf::AttributeOp).
  bool allows(GenericIf::AttributeOp op) const;
};

struct ZetType {
  // The full type name, as Zet::demangle gives it.
  char const* name = "";
  // Makes an entity of this type with the given name; null for a type that
  // cannot be made from its description alone.
  Ptr<Entity> (*newEntity)(Name const& name) = nullptr;
  // Null for a value type; Entity's or PtrInterface's node otherwise.
  ZetType const* base = nullptr;
  std::vector<ZetAttr> attributes{};
  std::vector<ZetArg> ctorParams{};
  // Makes the entity under a directory (which may be null).
  Ptr<Entity> (*newEntityForDir)(Name const& name, Dir* dir) = nullptr;
  // Value types only.
  GenericIf::ValueMethods const* valueMethods = nullptr;
  // Value types: constructs at `destination` from one pointer per constructor
  // parameter. An entity: `destination` is a Ptr of the type, which gets the new one.
  void (*genericIfConstructFromCtorArgs)(void* destination, void* const* arguments) = nullptr;
  // Gives 0 done, 1 not allowed on this attribute (nothing changed), 2 not an
  // attribute of this type (look in the base). A null attribute asks the value
  // type itself (operations 9 to 11). Exceptions of the underlying operation pass through.
  int (*genericIfAttributeOp)(void* result, void* object, ZetAttr const* attribute, GenericIf::AttributeOp op,
                              void* key, void* arguments) = nullptr;
  // An iterator on the collection `attribute` of `object`, and in `table` the
  // operations on it; null (table untouched) for a non-collection.
  void* (*genericIfIterator)(void* object, ZetAttr const* attribute,
                             GenericIf::Iterator::IteratorVTable const** table) = nullptr;
  std::size_t size = 0;
  bool polymorphic = false;

  bool isPolymorphic() const { return polymorphic; }
  std::size_t attrCount() const { return attributes.size(); }
  // This type's attribute or its bases', by name; null when none has it.
  ZetAttr const* attribute(std::string_view attrName) const;
};

// Registers `type` under its name; a second type of the same name is fatal.
void typeNodeIs(ZetType const* type);
// The type registered under `name`, or null.
ZetType const* typeNode(std::string_view name);
// Every registered type, in the order of registration.
std::vector<ZetType const*> const& typeNodes();

// Runs `op` on `object` as an instance of `type`, trying the bases when the
// type does not know the attribute. Gives the code of the type that answered, 2 if none did.
int attributeOp(ZetType const* type, void* object, ZetAttr const* attribute, GenericIf::AttributeOp op,
                void* result = nullptr, void* key = nullptr, void* arguments = nullptr);

}  // namespace Zet
