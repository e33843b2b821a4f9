// The unordered collections: lookups that read absent keys as defaults, and walks that delete
// the member they stand on, as the mirror empties its reactor map and its port lists.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <set>

#include "Interface/EthPortId.h"
#include "Zet/HashMap.h"
#include "Zet/Ptr.h"

namespace {

struct Tracked : Zet::PtrInterface {
  explicit Tracked(int* released) : released_(released) {}
  ~Tracked() override { ++*released_; }
  int* released_;
};

// A key with only its own hash(), and a poor one: long chains in few buckets.
struct CrowdedKey {
  int n = 0;
  std::size_t hash() const { return static_cast<std::size_t>(n % 3); }
  friend bool operator==(CrowdedKey, CrowdedKey) = default;
};

struct PortIdTag {};
using PortSet = Zet::HashMap2018<PortIdTag, std::uint16_t, Interface::EthPortId>;
using CrowdedSet = Zet::HashMap2018<PortIdTag, CrowdedKey, int>;

TEST(HashMap, CountedMembersByKeyWithNullForAbsent) {
  int released = 0;
  Zet::HashMap<int, Tracked> map(4);
  EXPECT_FALSE(map.newMember(1, Zet::makePtr<Tracked>(&released)));
  auto const second = Zet::makePtr<Tracked>(&released);
  EXPECT_TRUE(map.newMember(1, second));  // the replaced member, given back
  EXPECT_EQ(released, 1);
  EXPECT_EQ(map[1], second);
  EXPECT_FALSE(map[2]);
  EXPECT_FALSE(map.deleteMember(2));
  EXPECT_EQ(map.deleteMember(1), second);
  EXPECT_EQ(map.count(), 0u);
}

TEST(HashMap2018, AbsentKeyReadsAsTheDefaultValue) {
  PortSet ports;
  ports.newMember(9, Interface::EthPortId(9));
  EXPECT_EQ(ports[9], Interface::EthPortId(9));
  EXPECT_EQ(ports[8], Interface::EthPortId());
  EXPECT_EQ(ports.deleteMember(8), Interface::EthPortId());
  EXPECT_EQ(ports.deleteMember(9), Interface::EthPortId(9));
  EXPECT_TRUE(ports.iterator().atEnd());
}

// The port lists and the reactor map are emptied by deleting the current member and stepping on;
// both maps share this walk.
TEST(HashMap2018, DeletingTheCurrentMemberWhileWalkingVisitsEveryMemberOnce) {
  for (int size : {1, 2, 17, 500}) {
    CrowdedSet set;
    for (int n = 0; n < size; ++n) {
      set.newMember(CrowdedKey{n}, -n);
    }
    std::set<int> visited;
    auto it = set.iterator();
    for (int step = 0; step <= size && !it.atEnd(); ++step, it.advance()) {
      int const n = it.currNodeMaybeStale().first.n;
      EXPECT_TRUE(visited.insert(n).second) << n;
      EXPECT_EQ(set.deleteMember(CrowdedKey{n}), -n);
      EXPECT_EQ(it.currNodeMaybeStale().second, -n);  // still readable, though gone
    }
    EXPECT_EQ(static_cast<int>(visited.size()), size);
    EXPECT_EQ(set.count(), 0u);
  }
}

// Insertion is no part of the walk's promise, but a regrown table must not lead it astray: it
// finds its member again, then stands only on members and comes to an end.
TEST(HashMap2018, WalkGoesOnAfterTheTableRegrowsUnderIt) {
  CrowdedSet set(1);
  set.newMember(CrowdedKey{1}, 1);
  set.newMember(CrowdedKey{2}, 2);
  auto it = set.iterator();
  for (int n = 100; n < 400; ++n) {
    set.newMember(CrowdedKey{n}, n);
  }
  int steps = 0;
  for (it.advance(); steps <= 302 && !it.atEnd(); ++steps, it.advance()) {
    auto const& [key, value] = it.currNodeNonStale();
    EXPECT_EQ(set[key], key.n);
    EXPECT_EQ(value, key.n);
  }
  EXPECT_TRUE(it.atEnd());
  EXPECT_GT(steps, 0);
}

TEST(HashMap2018DeathTest, ReadingAChangedMemberAsCurrentIsAFault) {
  PortSet ports;
  ports.newMember(3, Interface::EthPortId(3));
  auto it = ports.iterator();
  ports.deleteMember(3);
  EXPECT_DEATH((void)it.currNodeNonStale(), "version_");
}

}  // namespace
