// The ordered collection and its versioned iterators: order, lookup, ownership of members,
// and the walks that go on while the tree changes under them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
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

struct Row : Zet::PtrInterface, Zet::RbTreeNode {
  explicit Row(int n, int* released = nullptr) : key_(keyOf(n)), released_(released) {}
  ~Row() override {
    if (released_ != nullptr) {
      ++*released_;
    }
  }
  RowKey const& fwkKey() const { return key_; }
  int number() const { return key_.port * 100 + key_.index; }

  RowKey key_;
  int* released_;
};

using Tree = Zet::RbTreeMap<Row, RowKey, Row>;

void addAll(Tree& tree, std::vector<int> const& numbers, int* released = nullptr) {
  for (int const n : numbers) {
    tree.memberIs(Zet::makePtr<Row>(n, released));
  }
}

// The numbers from the iterator's row on; never more steps than the tree can hold.
std::vector<int> rest(Tree::IteratorConst it, std::size_t limit) {
  std::vector<int> out;
  for (std::size_t step = 0; step <= limit && !it.atEnd(); ++step, it.advance()) {
    out.push_back(it->number());
  }
  return out;
}

int numberAt(Row const* row) { return row != nullptr ? row->number() : -1; }

TEST(RbTreeMap, VersionMovesOnInsertReplaceAndDeleteOnly) {
  Tree tree;
  EXPECT_TRUE(tree.iterator().atEnd());
  addAll(tree, {10, 20, 20});
  tree.memberDel(keyOf(10));
  EXPECT_EQ(tree.version(), 5u);
  // Nothing changed: a miss, and the present member given again.
  tree.memberDel(keyOf(99));
  EXPECT_FALSE(tree.memberIs(tree[keyOf(20)]));
  EXPECT_EQ(tree.version(), 5u);
}

TEST(RbTreeMap, MembersGoWithTheirLastReferenceButNotBefore) {
  int released = 0;
  Zet::Ptr<Row> kept;
  {
    Tree tree;
    addAll(tree, {10, 20}, &released);
    auto const newer = Zet::makePtr<Row>(10, &released);
    auto replaced = tree.memberIs(newer);
    EXPECT_EQ(tree[keyOf(10)], newer);
    EXPECT_EQ(released, 0);
    replaced = nullptr;
    EXPECT_EQ(released, 1);
    kept = tree[keyOf(20)];
  }
  EXPECT_EQ(released, 2);
  kept = nullptr;
  EXPECT_EQ(released, 3);
}

TEST(RbTreeMap, DeleteHandsOverOnlyAPresentMemberUnlinked) {
  Tree tree;
  Tree other;
  addAll(tree, {10, 20});
  addAll(other, {30});
  auto const byKey = tree.memberDel(keyOf(10));
  ASSERT_TRUE(byKey);
  EXPECT_FALSE(tree.memberDel(keyOf(10)));
  auto position = tree.iteratorMutable();
  EXPECT_EQ(tree.memberDel(position).get(), position.get());
  EXPECT_FALSE(tree.memberDel(position));  // already gone
  EXPECT_FALSE(tree.memberDel(other.iteratorMutable()));
  EXPECT_FALSE(tree.memberDel(Tree::Iterator()));
  EXPECT_EQ(tree.count(), 0u);
  // Unlinked for good: it can stand in another tree.
  other.memberIs(byKey);
  EXPECT_EQ(rest(other.iterator(), 2), (std::vector<int>{10, 30}));
}

TEST(RbTreeMap, IteratorAtAGivenRowEvenOneThatLeft) {
  Tree tree;
  addAll(tree, {10, 20, 30});
  EXPECT_EQ(rest(tree.iterator(tree.atOrAbove(keyOf(15))), 3), (std::vector<int>{20, 30}));
  auto const gone = tree.memberDel(keyOf(20));
  EXPECT_EQ(rest(tree.iterator(gone.get()), 3), (std::vector<int>{20, 30}));
}

TEST(RbTreeMapIterator, CopiesAdvanceIndependentlyAndAStaleCopyRecoversOnItsOwn) {
  Tree tree;
  addAll(tree, {10, 20, 30, 40});
  auto a = tree.iterator();
  auto b = a;
  a.advance();
  tree.memberDel(keyOf(20));
  auto c = a;  // stale, like its source
  a.advance();
  EXPECT_EQ(a->number(), 30);
  EXPECT_EQ(rest(c, 4), (std::vector<int>{20, 30, 40}));
  EXPECT_EQ(rest(b, 4), (std::vector<int>{10, 30, 40}));
}

// Random inserts, replaces and deletes, with walks that change the tree between steps: the
// iterator keeps its row readable, and each step lands where an ordered reference says the
// first larger key is.
TEST(RbTreeMap, RandomChangesMatchAnOrderedReferenceAndKeepTheTreeBalanced) {
  constexpr int keySpace = 700;
  std::mt19937 rng(2018);
  auto const random = [&rng](int below) { return std::uniform_int_distribution<int>(0, below - 1)(rng); };
  int released = 0;
  int made = 0;
  {
    Tree tree;
    std::set<int> reference;
    auto const insert = [&](int n) {
      tree.memberIs(Zet::makePtr<Row>(n, &released));
      ++made;
      reference.insert(n);
    };
    auto const erase = [&](int n) { EXPECT_EQ(static_cast<bool>(tree.memberDel(keyOf(n))), reference.erase(n) == 1); };
    auto const firstOf = [&](auto found) { return found == reference.end() ? -1 : *found; };

    for (int round = 0; round < 4000; ++round) {
      int const op = random(100);
      int const n = random(keySpace);
      if (op < 45) {
        insert(n);
      } else if (op < 75) {
        erase(n);
      } else if (op < 95) {
        EXPECT_EQ(numberAt(tree.atOrAbove(keyOf(n))), firstOf(reference.lower_bound(n)));
        EXPECT_EQ(numberAt(tree.above(keyOf(n))), firstOf(reference.upper_bound(n)));
      } else {
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
          ASSERT_EQ(it->number(), current);
          it.advance();
          ASSERT_EQ(numberAt(it.get()), firstOf(reference.upper_bound(current)));
        }
      }
      if (round % 50 == 0 || round == 3999) {
        ASSERT_TRUE(tree.invariantHolds());
        ASSERT_EQ(rest(tree.iterator(), keySpace), std::vector<int>(reference.begin(), reference.end()));
      }
    }
    EXPECT_GT(tree.count(), 100u);
  }
  EXPECT_EQ(released, made);
}

}  // namespace
