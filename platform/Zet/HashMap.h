#pragma once
// Unordered collections, for where order does not matter: HashMap holds counted members,
// HashMap2018 holds values. Their walks survive deletion of the member they stand on, which is
// how a collection is emptied: walk it and delete each member in turn.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <optional>
#include <unordered_map>
#include <utility>

#include "Zet/Assert.h"
#include "Zet/Ptr.h"

namespace Zet {

// std::hash where the key has one, else the key's own hash().
template <class Key>
struct KeyHash {
  std::size_t operator()(Key const& key) const {
    if constexpr (requires { std::hash<Key>{}(key); }) {
      return std::hash<Key>{}(key);
    } else {
      return key.hash();
    }
  }
};

// Storage and walk shared by both maps. An absent key reads as a default Mapped: a null
// pointer, or a default value.
template <class Key, class Mapped>
class HashMapBase {
  using Table = std::unordered_map<Key, Mapped, KeyHash<Key>>;

 public:
  using Node = std::pair<Key const, Mapped>;

  // A walk in bucket order. The iterator keeps a copy of the current member, so what it stands
  // on stays readable after deletion. It finds its place again by key when the collection has
  // changed: deleting the current member does not disturb the walk; other changes under way may
  // make it miss or repeat a member, but never fault.
  class IteratorConst {
   public:
    IteratorConst() = default;
    explicit IteratorConst(HashMapBase const& map) : map_(&map) { settle(0, 0); }

    bool atEnd() const { return !node_; }
    explicit operator bool() const { return node_.has_value(); }
    // The current member as it was when the iterator reached it, even if gone since.
    Node const& currNodeMaybeStale() const {
      ZET_ASSERT(node_);
      return *node_;
    }
    // The current member, which must be unchanged since the iterator reached it.
    Node const& currNodeNonStale() const {
      ZET_ASSERT(node_ && version_ == map_->version_);
      return *node_;
    }

    void advance() {
      if (!node_) {
        return;
      }
      if (version_ == map_->version_) {
        settle(bucket_, slot_ + 1);
        return;
      }
      Key const& key = node_->first;
      if (buckets_ != map_->table_.bucket_count()) {
        // Regrown: the old position means nothing, only the key can find the place again.
        if (map_->table_.find(key) == map_->table_.end()) {
          node_.reset();
          return;
        }
        bucket_ = map_->table_.bucket(key);
        slot_ = 0;
      }
      // Still here: go on after it. Gone: whatever took its slot has not been visited.
      std::size_t slot = 0;
      for (auto it = map_->table_.begin(bucket_); it != map_->table_.end(bucket_); ++it, ++slot) {
        if (it->first == key) {
          settle(bucket_, slot + 1);
          return;
        }
      }
      settle(bucket_, slot_);
    }

   private:
    // The first member at or after `slot` of `bucket`, in bucket order.
    void settle(std::size_t bucket, std::size_t slot) {
      Table const& table = map_->table_;
      version_ = map_->version_;
      buckets_ = table.bucket_count();
      for (; bucket < buckets_; ++bucket, slot = 0) {
        if (slot < table.bucket_size(bucket)) {
          bucket_ = bucket;
          slot_ = slot;
          node_.emplace(*std::next(table.begin(bucket), static_cast<std::ptrdiff_t>(slot)));
          return;
        }
      }
      node_.reset();
    }

    HashMapBase const* map_ = nullptr;
    std::optional<Node> node_;
    std::size_t bucket_ = 0;
    std::size_t slot_ = 0;
    std::size_t buckets_ = 0;
    std::uint32_t version_ = 0;
  };

  std::size_t count() const { return table_.size(); }
  // Moves with every insertion, replacement and deletion.
  std::uint32_t version() const { return version_; }

  // The member with `key`, or the default.
  Mapped operator[](Key const& key) const {
    auto const it = table_.find(key);
    return it != table_.end() ? it->second : Mapped{};
  }
  bool memberExists(Key const& key) const { return table_.find(key) != table_.end(); }
  // Inserts, or replaces the member with `key` and gives the replaced one back.
  Mapped newMember(Key const& key, Mapped const& member) {
    ++version_;
    auto [it, inserted] = table_.try_emplace(key, member);
    return inserted ? Mapped{} : std::exchange(it->second, member);
  }
  // Removes the member with `key` and gives it back; the default when absent.
  Mapped deleteMember(Key const& key) {
    auto const it = table_.find(key);
    if (it == table_.end()) {
      return Mapped{};
    }
    ++version_;
    Mapped out = std::move(it->second);
    table_.erase(it);
    return out;
  }

  IteratorConst iterator() const { return IteratorConst(*this); }

 protected:
  explicit HashMapBase(std::size_t buckets) : table_(buckets) {}

 private:
  Table table_;
  std::uint32_t version_ = 1;
};

// Counted members by key; a lookup of an absent key gives null.
template <class Key, class Value>
class HashMap : public HashMapBase<Key, Ptr<Value>> {
 public:
  explicit HashMap(std::size_t buckets) : HashMapBase<Key, Ptr<Value>>(buckets) {}
};

// Values by key; a lookup of an absent key gives a default Value. `Tag` names the attribute.
template <class Tag, class Key, class Value>
class HashMap2018 : public HashMapBase<Key, Value> {
 public:
  explicit HashMap2018(std::size_t buckets = 4) : HashMapBase<Key, Value>(buckets) {}
};

}  // namespace Zet
