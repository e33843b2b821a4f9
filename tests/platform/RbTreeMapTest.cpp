// The ordered collection and its versioned iterators: order, lookup, ownership of members,
// and the walks that go on while the tree changes under them.

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <vector>

#include "Zet/Ptr.h"
#include "Zet/RbTreeMap.h"

namespace {

// Shaped like a mirror key, and offering only == and <, as the collection promises to need.
struct RowKey {
  std::uint16_t port = 0;
  std::int32_t index = 0;

  friend bool operator==(RowKey const&, RowKey const&) = default;
  friend bool operator<(RowKey const& a, RowKey const& b) {
    return a.port != b.port ? a.port < b.port : a.index < b.index;
  }
};

// Test keys are small numbers; 205 stands for port 2, index 5, so both fields take part.
RowKey keyOf(int n) { return {static_cast<std::uint16_t>(n / 100), n % 100}; }
int numberOf(RowKey const& key) { return key.port * 100 + key.index; }

struct Row : Zet::PtrInterface, Zet::RbTreeNode {
  explicit Row(int n, int* released = nullptr, int serial = 0) : key_(keyOf(n)), serial_(serial), released_(released) {}
  ~Row() override {
    if (released_ != nullptr) {
      ++*released_;
    }
  }
  RowKey const& fwkKey() const { return key_; }
  int number() const { return numberOf(key_); }

  RowKey key_;
  int serial_;
  int* released_;
};

using Tree = Zet::RbTreeMap<Row, RowKey, Row>;

Zet::Ptr<Row> add(Tree& tree, int n, int* released = nullptr) {
  auto row = Zet::makePtr<Row>(n, released);
  tree.memberIs(row);
  return row;
}

// The numbers from the iterator's row on; never more steps than the tree can hold.
std::vector<int> rest(Tree::IteratorConst it, std::size_t limit) {
  std::vector<int> out;
  for (std::size_t step = 0; step <= limit && !it.atEnd(); ++step, it.advance()) {
    out.push_back(it->number());
  }
  return out;
}
std::vector<int> walk(Tree const& tree) { return rest(tree.iterator(), tree.count()); }

int numberAt(Row const* row) { return row != nullptr ? row->number() : -1; }

TEST(RbTreeMap, EmptyCollectionStartsAtVersionOneWithAnIteratorAtTheEnd) {
  Tree const tree;
  EXPECT_EQ(tree.version(), 1u);
  EXPECT_EQ(tree.count(), 0u);
  EXPECT_FALSE(tree[keyOf(1)]);
  EXPECT_EQ(tree.atOrAbove(keyOf(1)), nullptr);
  auto it = tree.iterator();
  EXPECT_TRUE(it.atEnd());
  EXPECT_FALSE(it);
  it.advance();
  EXPECT_TRUE(it.atEnd());
  EXPECT_TRUE(tree.invariantHolds());
}

TEST(RbTreeMap, VersionMovesOnInsertReplaceAndDeleteOnly) {
  Tree tree;
  auto const first = add(tree, 10);
  EXPECT_EQ(tree.version(), 2u);
  add(tree, 20);
  EXPECT_EQ(tree.version(), 3u);

  tree.memberIs(Zet::makePtr<Row>(20));
  EXPECT_EQ(tree.version(), 4u);
  tree.memberDel(keyOf(10));
  EXPECT_EQ(tree.version(), 5u);

  // Nothing changed: a lookup, a miss, and the present member given again.
  tree.memberDel(keyOf(99));
  (void)tree[keyOf(20)];
  EXPECT_FALSE(tree.memberIs(tree[keyOf(20)]));
  EXPECT_EQ(tree.version(), 5u);
  EXPECT_EQ(tree.count(), 1u);
}

TEST(RbTreeMap, ReplaceGivesBackTheOldMemberWhichGoesWithItsLastReference) {
  int released = 0;
  Tree tree;
  Row* const old = add(tree, 10, &released).get();
  add(tree, 20, &released);

  auto const newer = Zet::makePtr<Row>(10, &released, 7);
  auto replaced = tree.memberIs(newer);
  EXPECT_EQ(replaced.get(), old);
  EXPECT_EQ(tree[keyOf(10)], newer);
  EXPECT_EQ(tree.count(), 2u);
  EXPECT_EQ(released, 0);
  replaced = nullptr;
  EXPECT_EQ(released, 1);
  EXPECT_TRUE(tree.invariantHolds());
}

TEST(RbTreeMap, DeleteByKeyHandsTheMemberOverUnlinked) {
  Tree tree;
  Tree other;
  add(tree, 10);
  add(tree, 20);
  auto const row = tree.memberDel(keyOf(10));
  ASSERT_TRUE(row);
  EXPECT_EQ(row->number(), 10);
  EXPECT_FALSE(tree.memberDel(keyOf(10)));
  EXPECT_EQ(tree.count(), 1u);
  // Unlinked for good: it can stand in another tree.
  other.memberIs(row);
  EXPECT_EQ(walk(other), std::vector<int>{10});
}

TEST(RbTreeMap, DestructionReleasesEveryMemberButThoseHeldElsewhere) {
  int released = 0;
  Zet::Ptr<Row> kept;
  {
    Tree tree;
    for (int n = 0; n < 100; ++n) {
      add(tree, n * 7 % 100, &released);
    }
    kept = tree[keyOf(42)];
  }
  EXPECT_EQ(released, 99);
  EXPECT_EQ(kept->number(), 42);
  kept = nullptr;
  EXPECT_EQ(released, 100);
}

TEST(RbTreeMap, AtOrAboveAndAboveAtBetweenBelowAndPastTheKeys) {
  Tree tree;
  for (int n : {110, 120, 199, 200}) {
    add(tree, n);
  }
  EXPECT_EQ(numberAt(tree.atOrAbove(keyOf(120))), 120);
  EXPECT_EQ(numberAt(tree.above(keyOf(120))), 199);
  EXPECT_EQ(numberAt(tree.atOrAbove(keyOf(115))), 120);
  EXPECT_EQ(numberAt(tree.above(keyOf(115))), 120);
  EXPECT_EQ(numberAt(tree.atOrAbove(keyOf(5))), 110);
  EXPECT_EQ(numberAt(tree.above(keyOf(5))), 110);
  // Across the first field: port 1 index 99 is below port 2 index 0.
  EXPECT_EQ(numberAt(tree.above(keyOf(199))), 200);
  EXPECT_EQ(numberAt(tree.atOrAbove(keyOf(200))), 200);
  EXPECT_EQ(tree.above(keyOf(200)), nullptr);
  EXPECT_EQ(tree.atOrAbove(keyOf(201)), nullptr);
}

TEST(RbTreeMap, DeleteByPositionTakesOnlyAPresentMember) {
  Tree tree;
  Tree other;
  add(tree, 10);
  add(other, 10);
  auto position = tree.iteratorMutable();
  auto const removed = tree.memberDel(position);
  ASSERT_TRUE(removed);
  EXPECT_EQ(removed.get(), position.get());
  EXPECT_FALSE(tree.memberDel(position));  // already gone
  EXPECT_FALSE(tree.memberDel(other.iteratorMutable()));
  EXPECT_FALSE(tree.memberDel(Tree::Iterator()));
  EXPECT_EQ(tree.count(), 0u);
  EXPECT_EQ(other.count(), 1u);
}

TEST(RbTreeMap, IteratorAtAGivenRowEvenOneThatLeft) {
  Tree tree;
  for (int n : {10, 20, 30}) {
    add(tree, n);
  }
  EXPECT_EQ(rest(tree.iterator(tree.atOrAbove(keyOf(20))), 3), (std::vector<int>{20, 30}));
  auto const gone = tree.memberDel(keyOf(20));
  auto it = tree.iterator(gone.get());
  EXPECT_EQ(it->number(), 20);
  it.advance();
  EXPECT_EQ(it->number(), 30);
  EXPECT_TRUE(tree.iterator(nullptr).atEnd());
}

TEST(RbTreeMapIterator, DeletingTheCurrentRowThenAdvancingGoesToTheNextLargerKey) {
  Tree tree;
  for (int n : {10, 20, 30, 40}) {
    add(tree, n);
  }
  auto it = tree.iterator(tree.atOrAbove(keyOf(20)));
  tree.memberDel(keyOf(20));
  EXPECT_EQ(it->number(), 20);  // still readable through the iterator's reference
  it.advance();
  EXPECT_EQ(it->number(), 30);
  it.advance();
  EXPECT_EQ(it->number(), 40);  // current again: the plain step
}

TEST(RbTreeMapIterator, DeletingTheLastRowUnderTheIteratorGivesTheEnd) {
  Tree tree;
  for (int n : {10, 20}) {
    add(tree, n);
  }
  auto it = tree.iteratorMutable();
  it.advance();
  tree.memberDel(it);
  it.advance();
  EXPECT_TRUE(it.atEnd());
  EXPECT_EQ(walk(tree), std::vector<int>{10});
}

TEST(RbTreeMapIterator, RowInsertedAheadIsVisitedAndOneBehindIsNot) {
  Tree tree;
  for (int n : {10, 30}) {
    add(tree, n);
  }
  auto it = tree.iterator();
  it.advance();  // at 30
  add(tree, 40);
  add(tree, 20);
  add(tree, 5);
  EXPECT_EQ(rest(it, 5), (std::vector<int>{30, 40}));
}

TEST(RbTreeMapIterator, ReplacingTheCurrentRowGoesOnToTheNextLargerKey) {
  Tree tree;
  for (int n : {10, 20, 30}) {
    add(tree, n);
  }
  auto it = tree.iterator(tree.atOrAbove(keyOf(20)));
  Row const* const old = it.get();
  tree.memberIs(Zet::makePtr<Row>(20));
  EXPECT_EQ(it.get(), old);
  it.advance();
  EXPECT_EQ(it->number(), 30);
}

TEST(RbTreeMapIterator, EmptiedCollectionEndsTheWalkAndThenReleasesTheHeldRow) {
  int released = 0;
  Tree tree;
  for (int n : {10, 20, 30}) {
    add(tree, n, &released);
  }
  auto it = tree.iterator(tree.atOrAbove(keyOf(20)));
  for (int n : {10, 20, 30}) {
    tree.memberDel(keyOf(n));
  }
  EXPECT_EQ(released, 2);  // the iterator still holds 20
  EXPECT_EQ(it->number(), 20);
  it.advance();
  EXPECT_TRUE(it.atEnd());
  EXPECT_EQ(released, 3);
}

TEST(RbTreeMapIterator, CopiesAdvanceIndependentlyAndAStaleCopyRecoversOnItsOwn) {
  Tree tree;
  for (int n : {10, 20, 30, 40}) {
    add(tree, n);
  }
  auto a = tree.iterator();
  auto b = a;
  a.advance();
  EXPECT_EQ(a->number(), 20);
  EXPECT_EQ(b->number(), 10);

  tree.memberDel(keyOf(20));
  auto c = a;  // stale, like its source
  a.advance();
  EXPECT_EQ(a->number(), 30);
  EXPECT_EQ(c->number(), 20);
  c.advance();
  EXPECT_EQ(c->number(), 30);
  b.advance();
  EXPECT_EQ(b->number(), 30);
}

TEST(RbTreeMapIterator, DeletingAtEachStepEmptiesTheCollectionInKeyOrder) {
  int released = 0;
  Tree tree;
  for (int n = 0; n < 50; ++n) {
    add(tree, (n * 37) % 50, &released);
  }
  std::vector<int> visited;
  auto it = tree.iteratorMutable();
  for (int step = 0; step <= 50 && !it.atEnd(); ++step, it.advance()) {
    visited.push_back(it->number());
    EXPECT_TRUE(tree.memberDel(it));
    EXPECT_TRUE(tree.invariantHolds());
  }
  EXPECT_EQ(tree.count(), 0u);
  EXPECT_EQ(released, 50);
  ASSERT_EQ(visited.size(), 50u);
  for (int n = 0; n < 50; ++n) {
    EXPECT_EQ(visited[n], n);
  }
}

// Random inserts, replaces and deletes, with walks that change the tree between steps; each
// step must land where an ordered reference says the first larger key is.
TEST(RbTreeMap, RandomChangesMatchAnOrderedReferenceAndKeepTheTreeBalanced) {
  constexpr int keySpace = 700;
  std::mt19937 rng(2018);
  auto const random = [&rng](int below) { return std::uniform_int_distribution<int>(0, below - 1)(rng); };
  int released = 0;
  int made = 0;
  {
    Tree tree;
    std::map<int, int> reference;  // key number -> serial of its row
    auto const insert = [&](int n) {
      ++made;
      tree.memberIs(Zet::makePtr<Row>(n, &released, made));
      reference[n] = made;
    };
    auto const erase = [&](int n) {
      auto const removed = tree.memberDel(keyOf(n));
      EXPECT_EQ(static_cast<bool>(removed), reference.erase(n) == 1);
    };

    for (int round = 0; round < 4000; ++round) {
      int const op = random(100);
      int const n = random(keySpace);
      if (op < 45) {
        insert(n);
      } else if (op < 75) {
        erase(n);
      } else if (op < 95) {
        auto const atOrAbove = reference.lower_bound(n);
        auto const above = reference.upper_bound(n);
        EXPECT_EQ(numberAt(tree.atOrAbove(keyOf(n))), atOrAbove == reference.end() ? -1 : atOrAbove->first);
        EXPECT_EQ(numberAt(tree.above(keyOf(n))), above == reference.end() ? -1 : above->first);
      } else {
        // A walk with changes between its steps.
        auto it = tree.iteratorMutable();
        for (std::size_t step = 0; step < 2 * keySpace && !it.atEnd(); ++step) {
          int const current = it->number();
          int const change = random(10);
          if (change == 0) {
            EXPECT_TRUE(tree.memberDel(it));
            reference.erase(current);
          } else if (change == 1) {
            insert(random(keySpace));
          } else if (change == 2) {
            erase(random(keySpace));
          }
          auto const expected = reference.upper_bound(current);
          it.advance();
          ASSERT_EQ(numberAt(it.get()), expected == reference.end() ? -1 : expected->first);
        }
      }
      if (round % 50 == 0 || round == 3999) {
        ASSERT_TRUE(tree.invariantHolds());
        ASSERT_EQ(tree.count(), reference.size());
        auto it = tree.iterator();
        for (auto const& [number, serial] : reference) {
          ASSERT_FALSE(it.atEnd());
          EXPECT_EQ(it->number(), number);
          EXPECT_EQ(it->serial_, serial);
          it.advance();
        }
        EXPECT_TRUE(it.atEnd());
      }
    }
    EXPECT_GT(tree.count(), 100u);
  }
  EXPECT_EQ(released, made);
}

}  // namespace
