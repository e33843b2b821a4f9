#pragma once
// Attributes of the LLDP agent's entities, stamped out from one list per entity.
//
// Each entity header defines one list, in the order of the entity's notification slots:
//
//   #define LLDP_LOCAL_PORT_ATTRIBUTES(scalar, entities, records, map, slotOnly)
//     scalar(Lldp::PortId, portId, PortId, {})
//     scalar(std::uint16_t, maxFrameSize, MaxFrameSize, 0)
//
// and expands it three times: LLDP_NOTIFIEE_SLOTS inside its NotifieeConst, LLDP_ATTRIBUTE_ACCESSORS
// in the public part of the entity, LLDP_ATTRIBUTE_FIELDS in its private part; then #undefs it.
//
// To add an attribute, add one line to the list where its slot belongs. The kinds:
//
//   scalar(Type, name, Name, initial)
//       name(), nameIs(v); a changed value delivers onName().
//   entities(Key, name, Name, Element, keyFn, adopts)
//       counted entities keyed by element->keyFn(): name(key) (null when absent), nameIs(ptr),
//       nameDel(key). With adopts `true` the collection is the members' parent; `false` makes a
//       second view of members that live elsewhere.
//   records(Key, name, Name, Record)
//       value records keyed by Lldp::recordKey(record): name(key) (the default record when
//       absent), nameIs(record), nameDel(key).
//   map(Key, name, Name, Value, Order)
//       key to value, Order Sorted (ascending key) or Hashed: name(key), nameIs(key, value),
//       nameDel(key).
//   slotOnly(Name)
//       only the slot onName(); fields and accessors are written by hand beside the list.
//
// Every collection also has nameHas(key), nameCount() and name() for iteration. A change of an
// entry delivers onName(key), onNamezetImmediate() and onName(), in that order, each to every
// notifiee before the next; storing what is already there delivers nothing.

#include <concepts>
#include <cstddef>
#include <functional>
#include <map>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "LldpAgent/RecordMap.h"
#include "Zet/Assert.h"
#include "Zet/Entity.h"
#include "Zet/Notifiee.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"

namespace Lldp {

// The key of a record that names its own; records keyed by a plain field have an overload of
// their own, declared before the entity that holds them.
template <class R>
auto recordKey(R const& record) -> decltype(record.key()) {
  return record.key();
}

}  // namespace Lldp

namespace Lldp::detail {

// Hashes with std::hash where the key has one, else with the key's own hash().
struct Hasher {
  template <class K>
  std::size_t operator()(K const& key) const {
    if constexpr (requires { std::hash<K>{}(key); }) {
      return std::hash<K>{}(key);
    } else {
      return static_cast<std::size_t>(key.hash());
    }
  }
};

struct Sorted {};
struct Hashed {};

template <class K, class V, class Order>
struct MapOf;
template <class K, class V>
struct MapOf<K, V, Sorted> {
  using type = std::map<K, V>;
};
template <class K, class V>
struct MapOf<K, V, Hashed> {
  using type = RecordMap<K, V>;
};
template <class K, class V, class Order>
using Map = typename MapOf<K, V, Order>::type;

// A record without == is taken as changed on every write: a spare notification is harmless
// to level-triggered handlers, a lost one is not.
template <class T>
bool sameValue(T const& a, T const& b) {
  if constexpr (std::equality_comparable<T>) {
    return a == b;
  } else {
    return false;
  }
}

// A slot may let go of the last outside reference to the notifier; it stays alive until
// delivery is over.
class DeliveryGuard {
 public:
  explicit DeliveryGuard(Zet::PtrInterface const& notifier) {
    if (notifier.references() > 0) {
      keep_ = &notifier;
    }
  }

 private:
  Zet::Ptr<Zet::PtrInterface const> keep_;
};

template <class T, class N>
void scalarIs(Zet::PtrInterface const& notifier, T& field, T const& value, void (N::*slot)()) {
  if (sameValue(field, value)) {
    return;
  }
  field = value;
  DeliveryGuard const guard(notifier);
  Zet::notify(notifier, slot);
}

template <class N, class K>
struct CollectionSlots {
  void (N::*keyed)(K const&);
  void (N::*immediate)();
  void (N::*keyless)();
};

template <class N, class K>
void deliverEntry(Zet::PtrInterface const& notifier, CollectionSlots<N, K> const& slots,
                  std::type_identity_t<K> const& key) {
  DeliveryGuard const guard(notifier);
  Zet::notify(notifier, slots.keyed, key);
  Zet::notify(notifier, slots.immediate);
  Zet::notify(notifier, slots.keyless);
}

template <class C>
typename C::mapped_type entryAt(C const& entries, typename C::key_type const& key) {
  auto const it = entries.find(key);
  return it == entries.end() ? typename C::mapped_type() : it->second;
}

template <class C, class N, class K>
void entryIs(Zet::PtrInterface const& notifier, C& entries, K const& key, typename C::mapped_type const& value,
             CollectionSlots<N, K> const& slots) {
  auto const [it, inserted] = entries.try_emplace(key, value);
  if (!inserted) {
    if (sameValue(it->second, value)) {
      return;
    }
    it->second = value;
  }
  deliverEntry(notifier, slots, key);
}

template <class C, class N, class K>
typename C::mapped_type entryDel(Zet::PtrInterface const& notifier, C& entries, K const& keyIn,
                                 CollectionSlots<N, K> const& slots) {
  // The caller's key may live in the entry that goes.
  K const key = keyIn;
  auto const it = entries.find(key);
  if (it == entries.end()) {
    return typename C::mapped_type();
  }
  auto removed = std::move(it->second);
  entries.erase(it);
  deliverEntry(notifier, slots, key);
  return removed;
}

// Counted entities by key. Readers get read-only views; the writer hands members in writable,
// which is what entityDel gives back.
template <class K, class V, bool adopts>
class EntityMap {
 public:
  using Container = std::unordered_map<K, Zet::Ptr<V const>, Hasher>;

  explicit EntityMap(Zet::Entity* owner) : owner_(owner) {}
  EntityMap(EntityMap const&) = delete;
  EntityMap& operator=(EntityMap const&) = delete;
  // A member may outlive its parent; it must not keep pointing at it.
  ~EntityMap() {
    for (auto const& [key, member] : entries_) {
      release(*member);
    }
  }

  Container const& entries() const { return entries_; }
  Zet::Ptr<V const> find(K const& key) const { return entryAt(entries_, key); }
  bool has(K const& key) const { return entries_.contains(key); }

  // False when `member` already stands at `key`.
  bool put(K const& key, Zet::Ptr<V> const& member) {
    auto& slot = entries_[key];
    if (slot == member) {
      return false;
    }
    if (slot) {
      release(*slot);
    }
    if constexpr (adopts) {
      member->parentIs(owner_);
    }
    slot = member;
    return true;
  }

  // Null when nothing stands at `key`.
  Zet::Ptr<V> take(K const& key) {
    auto const it = entries_.find(key);
    if (it == entries_.end()) {
      return nullptr;
    }
    // Every member was handed in through put() as writable.
    Zet::Ptr<V> member(const_cast<V*>(it->second.get()));
    entries_.erase(it);
    release(*member);
    return member;
  }

 private:
  void release(V const& member) const {
    if constexpr (adopts) {
      if (member.parent() == owner_) {
        const_cast<V&>(member).parentIs(nullptr);
      }
    }
  }

  Zet::Entity* const owner_;
  Container entries_;
};

template <class K, class V, class N, bool adopts>
void entityIs(Zet::PtrInterface const& notifier, EntityMap<K, V, adopts>& entries, K const& key,
              Zet::Ptr<V> const& member, CollectionSlots<N, K> const& slots) {
  if (entries.put(key, member)) {
    deliverEntry(notifier, slots, key);
  }
}

template <class K, class V, class N, bool adopts>
Zet::Ptr<V> entityDel(Zet::PtrInterface const& notifier, EntityMap<K, V, adopts>& entries, K const& keyIn,
                      CollectionSlots<N, K> const& slots) {
  K const key = keyIn;
  auto removed = entries.take(key);
  if (removed) {
    deliverEntry(notifier, slots, key);
  }
  return removed;
}

}  // namespace Lldp::detail

// The three slots of collection `Name` with key `Key` of the enclosing entity's NotifieeConst.
#define LLDP_DETAIL_SLOTS_OF(Key, Name)                                           \
  (::Lldp::detail::CollectionSlots<NotifieeConst, Key>{                           \
      static_cast<void (NotifieeConst::*)(Key const&)>(&NotifieeConst::on##Name), \
      &NotifieeConst::on##Name##zetImmediate, static_cast<void (NotifieeConst::*)()>(&NotifieeConst::on##Name)})

#define LLDP_DETAIL_NOTHING(...)

// Slots.
#define LLDP_DETAIL_SCALAR_SLOT(Type, name, Name, ...) \
  virtual void on##Name() {}
#define LLDP_DETAIL_COLLECTION_SLOTS(Key, name, Name, ...) \
  virtual void on##Name(Key const&) {}                     \
  virtual void on##Name##zetImmediate() {}                 \
  virtual void on##Name() {}
#define LLDP_DETAIL_ONLY_SLOT(Name) \
  virtual void on##Name() {}

#define LLDP_NOTIFIEE_SLOTS(list)                                                           \
  list(LLDP_DETAIL_SCALAR_SLOT, LLDP_DETAIL_COLLECTION_SLOTS, LLDP_DETAIL_COLLECTION_SLOTS, \
       LLDP_DETAIL_COLLECTION_SLOTS, LLDP_DETAIL_ONLY_SLOT)

// Fields.
#define LLDP_DETAIL_SCALAR_FIELD(Type, name, Name, initial) Type name##_ = initial;
#define LLDP_DETAIL_ENTITIES_FIELD(Key, name, Name, Element, keyFn, adopts) \
  ::Lldp::detail::EntityMap<Key, Element, adopts> name##_{this};
#define LLDP_DETAIL_RECORDS_FIELD(Key, name, Name, Record) ::Lldp::detail::RecordMap<Key, Record> name##_;
#define LLDP_DETAIL_MAP_FIELD(Key, name, Name, Value, Order) \
  ::Lldp::detail::Map<Key, Value, ::Lldp::detail::Order> name##_;

#define LLDP_ATTRIBUTE_FIELDS(list)                                                                            \
  list(LLDP_DETAIL_SCALAR_FIELD, LLDP_DETAIL_ENTITIES_FIELD, LLDP_DETAIL_RECORDS_FIELD, LLDP_DETAIL_MAP_FIELD, \
       LLDP_DETAIL_NOTHING)

// Accessors.
#define LLDP_DETAIL_SCALAR_ACCESSORS(Type, name, Name, initial) \
  Type name() const { return name##_; }                         \
  void name##Is(Type const& value) { ::Lldp::detail::scalarIs(*this, name##_, value, &NotifieeConst::on##Name); }

#define LLDP_DETAIL_COLLECTION_READERS(Key, name)                        \
  bool name##Has(Key const& key) const { return name##_.contains(key); } \
  std::size_t name##Count() const { return name##_.size(); }

#define LLDP_DETAIL_ENTITIES_ACCESSORS(Key, name, Name, Element, keyFn, adopts)                                \
  Zet::Ptr<Element const> name(Key const& key) const { return name##_.find(key); }                             \
  bool name##Has(Key const& key) const { return name##_.has(key); }                                            \
  std::size_t name##Count() const { return name##_.entries().size(); }                                         \
  ::Lldp::detail::EntityMap<Key, Element, adopts>::Container const& name() const { return name##_.entries(); } \
  void name##Is(Zet::Ptr<Element> const& member) {                                                             \
    ZET_ASSERT(member);                                                                                        \
    ::Lldp::detail::entityIs(*this, name##_, Key(member->keyFn()), member, LLDP_DETAIL_SLOTS_OF(Key, Name));   \
  }                                                                                                            \
  Zet::Ptr<Element> name##Del(Key const& key) {                                                                \
    return ::Lldp::detail::entityDel(*this, name##_, key, LLDP_DETAIL_SLOTS_OF(Key, Name));                    \
  }

#define LLDP_DETAIL_RECORDS_ACCESSORS(Key, name, Name, Record)                                                        \
  Record name(Key const& key) const { return ::Lldp::detail::entryAt(name##_, key); }                                 \
  LLDP_DETAIL_COLLECTION_READERS(Key, name)                                                                           \
  ::Lldp::detail::RecordMap<Key, Record> const& name() const { return name##_; }                                     \
  void name##Is(Record const& record) {                                                                               \
    ::Lldp::detail::entryIs(*this, name##_, Key(::Lldp::recordKey(record)), record, LLDP_DETAIL_SLOTS_OF(Key, Name)); \
  }                                                                                                                   \
  Record name##Del(Key const& key) {                                                                                  \
    return ::Lldp::detail::entryDel(*this, name##_, key, LLDP_DETAIL_SLOTS_OF(Key, Name));                            \
  }

#define LLDP_DETAIL_MAP_ACCESSORS(Key, name, Name, Value, Order)                                 \
  Value name(Key const& key) const { return ::Lldp::detail::entryAt(name##_, key); }             \
  LLDP_DETAIL_COLLECTION_READERS(Key, name)                                                      \
  ::Lldp::detail::Map<Key, Value, ::Lldp::detail::Order> const& name() const { return name##_; } \
  void name##Is(Key const& key, Value const& value) {                                            \
    ::Lldp::detail::entryIs(*this, name##_, key, value, LLDP_DETAIL_SLOTS_OF(Key, Name));        \
  }                                                                                              \
  Value name##Del(Key const& key) {                                                              \
    return ::Lldp::detail::entryDel(*this, name##_, key, LLDP_DETAIL_SLOTS_OF(Key, Name));       \
  }

#define LLDP_ATTRIBUTE_ACCESSORS(list)                                                              \
  list(LLDP_DETAIL_SCALAR_ACCESSORS, LLDP_DETAIL_ENTITIES_ACCESSORS, LLDP_DETAIL_RECORDS_ACCESSORS, \
       LLDP_DETAIL_MAP_ACCESSORS, LLDP_DETAIL_NOTHING)
