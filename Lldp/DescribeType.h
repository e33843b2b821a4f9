#pragma once
// How a mirror type describes itself: a table of attribute descriptors, one
// per attribute, each made from member pointers by the kind of the attribute.
// The table is all a type writes; numbering, the generic operations, the
// iterators and the value methods are derived here, once for every type.
//
// To describe a type: list its attributes in order with the kind helpers
// below (ctorParam, derived, stored, owned, collection, method) and hand the
// list to valueType, entityType or reactorType as its `_zetType`.
//
// The `object` of a generic operation is the value itself for a value type,
// and the object's Zet::PtrInterface for an entity or a reactor.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "Zet/Entity.h"
#include "Zet/GenericIf.h"
#include "Zet/GenericIfValueMethods.h"
#include "Zet/HashMap.h"
#include "Zet/RbTreeMap.h"
#include "Zet/TextForm.h"
#include "Zet/ZetType.h"

namespace Lldp::Snmp::Describe {

using Zet::AttrKind;
using Zet::ZetArg;
using Zet::ZetAttr;
using Zet::GenericIf::AttributeOp;
using Zet::GenericIf::done;
using Zet::GenericIf::notAllowed;

// --- member pointers: what a descriptor is made of --------------------------

template <class F>
struct Member;
template <class C, class R, class... A>
struct Member<R (C::*)(A...) const> {
  using Class = C;
  using Result = R;
  using Args = std::tuple<std::remove_cvref_t<A>...>;
};
template <class C, class R, class... A>
struct Member<R (C::*)(A...)> {
  using Class = C;
  using Result = R;
  using Args = std::tuple<std::remove_cvref_t<A>...>;
};
template <class C, class V>
  requires(!std::is_function_v<V>)
struct Member<V C::*> {
  using Class = C;
  using Result = V const&;
  using Args = std::tuple<>;
};

// Picks `x()` or `x(key)` out of an overloaded name.
template <class C, class R>
constexpr auto nullary(R (C::*f)() const) {
  return f;
}
template <class C, class R, class K>
constexpr auto unary(R (C::*f)(K) const) {
  return f;
}
// Picks `xDel(key)` out of its overloads, the key type given.
template <class K, class C, class R>
constexpr auto byKey(R (C::*f)(K const&)) {
  return f;
}
template <class K, class C, class R>
constexpr auto byKey(R (C::*f)(K)) {
  return f;
}

template <auto F>
using ClassOf = typename Member<decltype(F)>::Class;
template <auto F>
using ValueOf = std::remove_cvref_t<typename Member<decltype(F)>::Result>;

// The described object behind the `object` of a generic operation.
template <class T>
T& objectOf(void* object) {
  if constexpr (std::is_base_of_v<Zet::PtrInterface, T>) {
    return static_cast<T&>(*static_cast<Zet::PtrInterface*>(object));
  } else {
    return *static_cast<T*>(object);
  }
}

template <auto F, class C>
decltype(auto) read(C const& object) {
  if constexpr (std::is_member_function_pointer_v<decltype(F)>) {
    return (object.*F)();
  } else {
    return (object.*F);
  }
}

// Calls F with one pointer per parameter.
template <auto F, class C>
decltype(auto) invokeWith(C& object, void* arguments) {
  using Args = typename Member<decltype(F)>::Args;
  auto const* const pointers = static_cast<void* const*>(arguments);
  return [&]<std::size_t... I>(std::index_sequence<I...>) -> decltype(auto) {
    return (object.*F)(*static_cast<std::tuple_element_t<I, Args>*>(pointers[I])...);
  }(std::make_index_sequence<std::tuple_size_v<Args>>{});
}

// Stores what an operation gave where the caller asked for it.
template <auto F, class Call>
void give(void* result, Call&& call) {
  if constexpr (std::is_void_v<typename Member<decltype(F)>::Result>) {
    call();
  } else if (result) {
    *static_cast<ValueOf<F>*>(result) = call();
  } else {
    call();
  }
}

// --- type names and text forms ---------------------------------------------

template <class T>
struct PtrTarget {
  using type = void;
};
template <class T>
struct PtrTarget<Zet::Ptr<T>> {
  using type = std::remove_const_t<T>;
};

// A counted attribute is named by what it points at.
template <class T>
Zet::String typeLabel() {
  using Target = typename PtrTarget<T>::type;
  if constexpr (std::is_void_v<Target>) {
    return Zet::String(Zet::typeName(typeid(T)));
  } else {
    return Zet::String(Zet::typeName(typeid(Target)));
  }
}

template <class T>
Zet::String textOf(T const& value) {
  return Zet::strepOf(value);
}

template <class T>
Zet::ZetType const* describedValue() {
  if constexpr (std::is_base_of_v<Zet::PtrInterface, T> || !requires { T::_zetType; }) {
    return nullptr;
  } else {
    return &T::_zetType;
  }
}

template <class T>
std::vector<ZetArg> argsOf() {
  std::vector<ZetArg> args;
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    (args.push_back({Zet::String("arg" + std::to_string(I)), typeLabel<std::tuple_element_t<I, T>>()}), ...);
  }(std::make_index_sequence<std::tuple_size_v<T>>{});
  return args;
}

// --- the kinds of attribute ------------------------------------------------

template <auto Get>
ZetAttr readable(char const* name, AttrKind kind) {
  using C = ClassOf<Get>;
  using V = ValueOf<Get>;
  ZetAttr a;
  a.name = name;
  a.valueType = typeLabel<V>();
  a.kind = kind;
  a.valueTypeNode = describedValue<V>();
  a.op = [](void* result, void* object, AttributeOp op, void*, void*) {
    if (op != AttributeOp::get) {
      return notAllowed;
    }
    *static_cast<V*>(result) = read<Get>(objectOf<C>(object));
    return done;
  };
  a.strRep = [](void const* object) { return textOf(read<Get>(objectOf<C>(const_cast<void*>(object)))); };
  return a;
}

// Given at construction, read only: a member function or a data member.
template <auto Get>
ZetAttr ctorParam(char const* name) {
  return readable<Get>(name, AttrKind::ctorParam);
}

// Computed from the object, read only.
template <auto Get>
ZetAttr derived(char const* name) {
  return readable<Get>(name, AttrKind::derived);
}

// Read and written as a value: set takes the value.
template <auto Get, auto Set>
ZetAttr stored(char const* name) {
  ZetAttr a = readable<Get>(name, AttrKind::stored);
  a.op = [](void* result, void* object, AttributeOp op, void*, void* arguments) {
    using C = ClassOf<Get>;
    using V = ValueOf<Get>;
    auto& o = objectOf<C>(object);
    if (op == AttributeOp::get) {
      *static_cast<V*>(result) = read<Get>(o);
      return done;
    }
    if (op == AttributeOp::set) {
      (o.*Set)(*static_cast<V const*>(arguments));
      return done;
    }
    return notAllowed;
  };
  return a;
}

// One object the owner makes (set, with the parameters of Set) and lets go (delete).
template <auto Get, auto Set, auto Del>
ZetAttr owned(char const* name, std::vector<char const*> const& paramNames) {
  ZetAttr a = readable<Get>(name, AttrKind::owned);
  a.args = argsOf<typename Member<decltype(Set)>::Args>();
  a.ownedObject = [](void const* object) -> Zet::PtrInterface const* {
    return read<Get>(objectOf<ClassOf<Get>>(const_cast<void*>(object))).get();
  };
  for (std::size_t i = 0; i < a.args.size() && i < paramNames.size(); ++i) {
    a.args[i].name = paramNames[i];
  }
  a.op = [](void* result, void* object, AttributeOp op, void*, void* arguments) {
    using C = ClassOf<Get>;
    auto& o = objectOf<C>(object);
    switch (op) {
      case AttributeOp::get:
        *static_cast<ValueOf<Get>*>(result) = read<Get>(o);
        return done;
      case AttributeOp::set:
        give<Set>(result, [&] { return invokeWith<Set>(o, arguments); });
        return done;
      case AttributeOp::del:
        give<Del>(result, [&] { return (o.*Del)(); });
        return done;
      default:
        return notAllowed;
    }
  };
  return a;
}

// The key type of a collection and how it walks.
template <class Map>
struct Collection;
template <class Tag, class K, class V>
struct Collection<Zet::RbTreeMap<Tag, K, V>> {
  static constexpr bool ordered = true;
  using Key = K;
  using Position = typename Zet::RbTreeMap<Tag, K, V>::IteratorConst;
  static Position first(Zet::RbTreeMap<Tag, K, V> const& map) { return map.iterator(); }
  static K const& keyAt(Position const& p) { return p->fwkKey(); }
  static V const& memberAt(Position const& p) { return *p.get(); }
  static bool has(Zet::RbTreeMap<Tag, K, V> const& map, K const& key) { return static_cast<bool>(map[key]); }
};
template <class K, class M>
struct HashCollection {
  static constexpr bool ordered = false;
  using Key = K;
  using Position = typename Zet::HashMapBase<K, M>::IteratorConst;
  static Position first(Zet::HashMapBase<K, M> const& map) { return map.iterator(); }
  static K const& keyAt(Position const& p) { return p.currNodeMaybeStale().first; }
  static M const& memberAt(Position const& p) { return p.currNodeMaybeStale().second; }
  static bool has(Zet::HashMapBase<K, M> const& map, K const& key) { return map.memberExists(key); }
};
template <class K, class V>
struct Collection<Zet::HashMap<K, V>> : HashCollection<K, Zet::Ptr<V>> {};
template <class Tag, class K, class V>
struct Collection<Zet::HashMap2018<Tag, K, V>> : HashCollection<K, V> {};

// What a collection holds, seen from outside: a counted element as a
// Ptr<PtrInterface const>, a value record or a value as itself. A node of a
// collection of values says which value it holds through elementOf.
template <class Member>
decltype(auto) elementOf(Member const& member) {
  if constexpr (requires { member.value; }) {
    return (member.value);
  } else if constexpr (requires { member.get(); }) {
    return Zet::Ptr<Zet::PtrInterface const>(member.get());
  } else if constexpr (std::is_base_of_v<Zet::PtrInterface, Member> && requires { member.key(); } &&
                       !std::is_base_of_v<Zet::Entity, Member>) {
    return member.key();
  } else if constexpr (std::is_base_of_v<Zet::PtrInterface, Member>) {
    return Zet::Ptr<Zet::PtrInterface const>(&member);
  } else {
    return (member);
  }
}

template <class Map>
class MapCursor : public Zet::GenericIf::Cursor {
  using C = Collection<Map>;

 public:
  explicit MapCursor(Map const& map) : position_(C::first(map)) {}
  void obj(void* result) const override {
    using E = std::remove_cvref_t<decltype(elementOf(C::memberAt(position_)))>;
    *static_cast<E*>(result) = elementOf(C::memberAt(position_));
  }
  void key(void* result) const override { *static_cast<typename C::Key*>(result) = C::keyAt(position_); }
  Zet::String keyStrRep() const override { return textOf(C::keyAt(position_)); }
  Zet::PtrInterface* entity() const override {
    auto const& e = elementOf(C::memberAt(position_));
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(e)>, Zet::Ptr<Zet::PtrInterface const>>) {
      return const_cast<Zet::PtrInterface*>(e.get());
    } else {
      return nullptr;
    }
  }
  Zet::String objStrRep() const override { return textOf(elementOf(C::memberAt(position_))); }
  bool nonnull() const override { return !position_.atEnd(); }
  void inc() override { position_.advance(); }

 private:
  typename C::Position position_;
};

// A collection: `Map` is the `x()` accessor, `Lookup` `x(key)`, `Is` `xIs`, `Del` `xDel(key)`.
// A set takes the element itself when Is takes just the element, else one pointer per parameter.
template <auto Map, auto Lookup, auto Is, auto Del>
ZetAttr collection(char const* name, char const* keyName, std::vector<char const*> const& paramNames = {}) {
  using C = ClassOf<Map>;
  using M = ValueOf<Map>;
  using K = typename Collection<M>::Key;
  using E = ValueOf<Lookup>;
  ZetAttr a;
  a.name = name;
  a.kind = AttrKind::collection;
  a.valueType = typeLabel<E>();
  a.keyType = typeLabel<K>();
  a.keyName = keyName;
  a.valueTypeNode = describedValue<E>();
  a.args = argsOf<typename Member<decltype(Is)>::Args>();
  for (std::size_t i = 0; i < a.args.size() && i < paramNames.size(); ++i) {
    a.args[i].name = paramNames[i];
  }
  a.keyStrRep = [](void const* key) { return textOf(*static_cast<K const*>(key)); };
  a.ordered = Collection<M>::ordered;
  a.iterator = [](void* object) {
    return Zet::GenericIf::Iterator::release(std::make_unique<MapCursor<M>>(read<Map>(objectOf<C>(object))));
  };
  a.op = [](void* result, void* object, AttributeOp op, void* key, void* arguments) {
    auto& o = objectOf<C>(object);
    auto const& k = [&]() -> K const& { return *static_cast<K const*>(key); };
    switch (op) {
      case AttributeOp::get:
        *static_cast<E*>(result) = (o.*Lookup)(k());
        return done;
      case AttributeOp::set:
        if constexpr (std::is_same_v<typename Member<decltype(Is)>::Args, std::tuple<E>>) {
          give<Is>(result, [&] { return (o.*Is)(*static_cast<E const*>(arguments)); });
        } else {
          give<Is>(result, [&] { return invokeWith<Is>(o, arguments); });
        }
        return done;
      case AttributeOp::del:
        give<Del>(result, [&] { return (o.*Del)(k()); });
        return done;
      case AttributeOp::count:
        *static_cast<std::size_t*>(result) = read<Map>(o).count();
        return done;
      case AttributeOp::version:
        *static_cast<std::uint32_t*>(result) = read<Map>(o).version();
        return done;
      case AttributeOp::has:
        *static_cast<bool*>(result) = Collection<M>::has(read<Map>(o), k());
        return done;
      default:
        return notAllowed;
    }
  };
  return a;
}

// A method: call, with one pointer per argument.
template <auto F>
ZetAttr method(char const* name, std::vector<char const*> const& argNames = {}) {
  ZetAttr a;
  a.name = name;
  a.kind = AttrKind::method;
  a.valueType = "void";
  a.args = argsOf<typename Member<decltype(F)>::Args>();
  for (std::size_t i = 0; i < a.args.size() && i < argNames.size(); ++i) {
    a.args[i].name = argNames[i];
  }
  a.op = [](void*, void* object, AttributeOp op, void*, void* arguments) {
    if (op != AttributeOp::call) {
      return notAllowed;
    }
    invokeWith<F>(objectOf<ClassOf<F>>(object), arguments);
    return done;
  };
  return a;
}

// --- the types -------------------------------------------------------------

// The attribute of `type` that `attribute` is, or null when it is none of them.
inline ZetAttr const* ownAttribute(Zet::ZetType const& type, ZetAttr const* attribute) {
  if (!attribute || attribute->owner != &type) {
    return nullptr;
  }
  for (auto const& a : type.attributes) {
    if (a.id == attribute->id) {
      return &a;
    }
  }
  return nullptr;
}

template <class T>
int attributeOpOf(void* result, void* object, ZetAttr const* attribute, AttributeOp op, void* key, void* arguments) {
  if (!attribute) {
    if constexpr (std::is_base_of_v<Zet::PtrInterface, T>) {
      return Zet::GenericIf::unknownId;
    } else {
      T const& o = objectOf<T>(object);
      switch (op) {
        case AttributeOp::isDefault:
          *static_cast<bool*>(result) = !o;
          return done;
        case AttributeOp::equal:
          *static_cast<bool*>(result) = o == *static_cast<T const*>(key);
          return done;
        case AttributeOp::less:
          // Keys are ordered; the records holding them are not.
          if constexpr (requires { o < o; }) {
            *static_cast<bool*>(result) = o < *static_cast<T const*>(key);
            return done;
          }
          return notAllowed;
        default:
          return notAllowed;
      }
    }
  }
  ZetAttr const* const own = ownAttribute(T::_zetType, attribute);
  if (!own) {
    return Zet::GenericIf::unknownId;
  }
  return own->op(result, object, op, key, arguments);
}

// Finishes a type: owner and ids (from `firstId`), constructor parameters by
// name (a name no attribute has is the entity's name).
Zet::ZetType finish(Zet::ZetType type, Zet::ZetType const* self, std::uint32_t firstId,
                    std::vector<char const*> const& ctorParams);

// Constructs T from its constructor parameters, one pointer each.
template <class T, class... P>
void constructFrom(void* destination, void* const* arguments) {
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    std::construct_at(static_cast<T*>(destination), *static_cast<P const*>(arguments[I])...);
  }(std::index_sequence_for<P...>{});
}

template <class T>
void* iteratorOf(void* object, ZetAttr const* attribute, Zet::GenericIf::Iterator::IteratorVTable const** table) {
  ZetAttr const* const own = ownAttribute(T::_zetType, attribute);
  if (!own || !own->iterator) {
    return nullptr;
  }
  *table = &Zet::GenericIf::Iterator::cursorTable;
  return own->iterator(object);
}

// A value type whose constructor parameters P... are its first attributes.
template <class T, class... P>
Zet::ZetType valueType(char const* name, std::vector<ZetAttr> attributes, std::vector<char const*> const& ctorParams) {
  return finish(Zet::ZetType{.name = name,
                             .attributes = std::move(attributes),
                             .valueMethods = &Zet::GenericIfImpl::GenericIfValueMethods<T>::table,
                             .genericIfConstructFromCtorArgs = &constructFrom<T, P...>,
                             .genericIfAttributeOp = &attributeOpOf<T>,
                             .size = sizeof(T)},
                &T::_zetType, 2, ctorParams);
}

// An entity (ids from 0x102, under the five every entity has) or a reactor (from 0x82).
template <class T>
Zet::ZetType countedType(char const* name, std::vector<ZetAttr> attributes,
                         std::vector<char const*> const& ctorParams) {
  constexpr bool entity = std::is_base_of_v<Zet::Entity, T>;
  return finish(Zet::ZetType{.name = name,
                             .base = entity ? &Zet::Entity::_zetType : &Zet::PtrInterface::_zetType,
                             .attributes = std::move(attributes),
                             .genericIfAttributeOp = &attributeOpOf<T>,
                             .genericIfIterator = &iteratorOf<T>,
                             .size = sizeof(T),
                             .polymorphic = true},
                &T::_zetType, entity ? 0x102 : 0x82, ctorParams);
}

}  // namespace Lldp::Snmp::Describe
