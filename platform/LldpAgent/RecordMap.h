#pragma once
// The value records of an entity (a neighbour's addresses, TLVs, VLANs) and
// its unordered maps: an unordered map kept in one vector. A neighbour holds one or two records of
// a kind, and a node-based hash map spends more on buckets, nodes and its own
// header than on them: with tens of thousands of neighbours this is most of
// what the LLDP state costs beyond its strings. Lookup is a linear scan,
// which for the handful a neighbour announces is also the faster one.

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Lldp::detail {

template <class K, class V>
class RecordMap {
 public:
  using key_type = K;
  using mapped_type = V;
  using value_type = std::pair<K, V>;
  using iterator = typename std::vector<value_type>::iterator;
  using const_iterator = typename std::vector<value_type>::const_iterator;

  const_iterator begin() const { return entries_.begin(); }
  const_iterator end() const { return entries_.end(); }
  iterator begin() { return entries_.begin(); }
  iterator end() { return entries_.end(); }
  std::size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }

  const_iterator find(K const& key) const {
    return std::find_if(entries_.begin(), entries_.end(), [&](value_type const& e) { return e.first == key; });
  }
  iterator find(K const& key) {
    return std::find_if(entries_.begin(), entries_.end(), [&](value_type const& e) { return e.first == key; });
  }
  bool contains(K const& key) const { return find(key) != end(); }

  // As std::unordered_map's: the entry at `key`, and whether it is new.
  std::pair<iterator, bool> try_emplace(K const& key, V const& value) {
    if (auto const it = find(key); it != end()) {
      return {it, false};
    }
    // Exactly as many as there are while few: most hold one or two for good.
    if (entries_.size() < 4) {
      entries_.reserve(entries_.size() + 1);
    }
    entries_.emplace_back(key, value);
    return {std::prev(entries_.end()), true};
  }

  // Order is not kept: the last entry takes the place of the one that goes.
  void erase(iterator it) {
    if (it != std::prev(entries_.end())) {
      *it = std::move(entries_.back());
    }
    entries_.pop_back();
  }

 private:
  std::vector<value_type> entries_;
};

}  // namespace Lldp::detail
