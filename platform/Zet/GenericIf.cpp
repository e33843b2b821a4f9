#include "Zet/GenericIf.h"

#include <iostream>
#include <map>
#include <string>

#include "Zet/Assert.h"
#include "Zet/Entity.h"
#include "Zet/TextForm.h"
#include "Zet/ZetType.h"

namespace Zet {
namespace {

using GenericIf::AttributeOp;

struct Registry {
  std::vector<ZetType const*> inOrder;
  std::map<std::string, ZetType const*, std::less<>> byName;
};

Registry& registry() {
  static Registry r;
  return r;
}

GenericIf::Cursor* cursor(void* iterator) { return static_cast<GenericIf::Cursor*>(iterator); }

// The five attributes every entity inherits; only their reads are offered.
int entityGet(void* result, void* object, ZetAttr const* attribute) {
  auto const* entity = static_cast<Entity const*>(static_cast<PtrInterface const*>(object));
  switch (attribute->id) {
    case 0x82:  // name
      *static_cast<Name*>(result) = entity->name();
      return GenericIf::done;
    case 0x8a:  // parent
      *static_cast<Entity**>(result) = entity->parent();
      return GenericIf::done;
    case 0x8d:  // fullName
      *static_cast<String*>(result) = entity->fullName();
      return GenericIf::done;
    default:
      return GenericIf::notAllowed;
  }
}

int entityAttributeOp(void* result, void* object, ZetAttr const* attribute, AttributeOp op, void*, void*) {
  if (!attribute || attribute->owner != &Entity::_zetType) {
    return GenericIf::unknownId;
  }
  return op == AttributeOp::get ? entityGet(result, object, attribute) : GenericIf::notAllowed;
}

int ptrInterfaceAttributeOp(void*, void*, ZetAttr const*, AttributeOp, void*, void*) { return GenericIf::unknownId; }

std::vector<ZetAttr> entityAttributes() {
  std::vector<ZetAttr> attrs;
  for (auto const& [name, type, id] : {std::tuple{"name", "Zet::Name", 0x82u}, {"parent", "Zet::Entity", 0x8au},
                                       {"parentAttrName", "Zet::String", 0x8bu}, {"fullName", "Zet::String", 0x8du},
                                       {"entity", "Zet::Entity", 0x8fu}}) {
    ZetAttr a;
    a.name = name;
    a.owner = &Entity::_zetType;
    a.valueType = type;
    a.kind = AttrKind::derived;
    a.id = id;
    attrs.push_back(a);
  }
  attrs[0].strRep = [](void const* o) { return valueToStrep(static_cast<Entity const*>(static_cast<PtrInterface const*>(o))->name()); };
  attrs[3].strRep = [](void const* o) { return valueToStrep(static_cast<Entity const*>(static_cast<PtrInterface const*>(o))->fullName()); };
  return attrs;
}

}  // namespace

ZetType const PtrInterface::_zetType{.name = "Zet::PtrInterface",
                                     .genericIfAttributeOp = &ptrInterfaceAttributeOp,
                                     .size = sizeof(PtrInterface),
                                     .polymorphic = true};

ZetType const Entity::_zetType{.name = "Zet::Entity",
                               .base = &PtrInterface::_zetType,
                               .attributes = entityAttributes(),
                               .genericIfAttributeOp = &entityAttributeOp,
                               .size = sizeof(Entity),
                               .polymorphic = true};

bool ZetAttr::allows(AttributeOp op) const {
  switch (kind) {
    case AttrKind::ctorParam:
    case AttrKind::derived:
      return op == AttributeOp::get;
    case AttrKind::stored:
      return op == AttributeOp::get || op == AttributeOp::set;
    case AttrKind::owned:
      return op == AttributeOp::get || op == AttributeOp::set || op == AttributeOp::del;
    case AttrKind::collection:
      return op <= AttributeOp::has;
    case AttrKind::method:
      return op == AttributeOp::call;
  }
  return false;
}

ZetAttr const* ZetType::attribute(std::string_view attrName) const {
  for (ZetType const* t = this; t; t = t->base) {
    for (auto const& a : t->attributes) {
      if (a.name.view() == attrName) {
        return &a;
      }
    }
  }
  return nullptr;
}

void typeNodeIs(ZetType const* type) {
  ZET_ASSERT(type);
  auto const [it, inserted] = registry().byName.emplace(type->name, type);
  if (!inserted) {
    std::cerr << "typeNodeIs: type " << type->name << " registered twice" << std::endl;
  }
  ZET_ASSERT(inserted);
  registry().inOrder.push_back(type);
}

ZetType const* typeNode(std::string_view name) {
  auto const it = registry().byName.find(name);
  return it == registry().byName.end() ? nullptr : it->second;
}

std::vector<ZetType const*> const& typeNodes() { return registry().inOrder; }

int attributeOp(ZetType const* type, void* object, ZetAttr const* attribute, AttributeOp op, void* result, void* key,
                void* arguments) {
  for (; type; type = type->base) {
    if (!type->genericIfAttributeOp) {
      continue;
    }
    int const code = type->genericIfAttributeOp(result, object, attribute, op, key, arguments);
    if (code != GenericIf::unknownId) {
      return code;
    }
  }
  return GenericIf::unknownId;
}

GenericIf::Iterator::IteratorVTable const GenericIf::Iterator::cursorTable{
    .iterObj = [](ZetAttr const*, void* it, void* result) { cursor(it)->obj(result); },
    .iterKey = [](ZetAttr const*, void* it, void* result) { cursor(it)->key(result); },
    .iterNonnull = [](ZetAttr const*, void* it) { return cursor(it)->nonnull(); },
    .iterInc = [](ZetAttr const*, void* it) { cursor(it)->inc(); },
    .iterDel = [](ZetAttr const*, void* it) { std::unique_ptr<Cursor> const owned(cursor(it)); },
};

namespace GenericIfImpl {

void throwUnhashableException(ZetType const* type) {
  throw UnhashableException(std::string("unhashable type: ") + (type ? type->name : "?"));
}

void throwTypeException(ZetType const* from, ZetType const* to) {
  throw TypeException(std::string("no conversion from ") + (from ? from->name : "?") + " to " +
                      (to ? to->name : "?"));
}

void const* voidPtrIs(void const* pointer, ZetType const* from, ZetType const* to) {
  if (from == to) {
    return pointer;
  }
  // Only identity relates a value record to another type: it has no vtable and
  // no bases. An entity would reach a base through its vtable.
  if (from && to) {
    if (from->valueMethods) {
      ZetType const* const t = from;
      ZET_ASSERT(!t->isPolymorphic());
    } else {
      ZetType const* const type = from;
      ZET_ASSERT(type->isPolymorphic());
    }
  }
  throwTypeException(from, to);
}

}  // namespace GenericIfImpl

}  // namespace Zet
