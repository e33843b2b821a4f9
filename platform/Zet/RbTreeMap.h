#pragma once
// The ordered collection behind every sorted table: an intrusive red-black tree of counted
// members, with iterators that keep their place across changes of the tree.
//
// An iterator holds a counted reference to its row and the collection's version at the time it
// got there. While the version still agrees it steps along the links; once it differs, the
// next step finds the first key above the held row's key by a descent from the root. So a walk
// survives deletion of its own row, insertion ahead of it, and even an emptied collection.

#include <cstddef>
#include <cstdint>

#include "Zet/Assert.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"

namespace Zet {

class RbTreeMapGeneric;
template <class Tag, class Key, class Value>
class RbTreeMap;

// The links a member carries to stand in one RbTreeMap. A member is in at most one tree at a
// time; the links are the tree's business alone.
class RbTreeNode {
 protected:
  RbTreeNode() = default;
  RbTreeNode(RbTreeNode const&) = delete;
  RbTreeNode& operator=(RbTreeNode const&) = delete;
  // A member still linked into a tree cannot go: the tree holds a reference to it.
  ~RbTreeNode();

 private:
  friend class RbTreeMapGeneric;
  enum class Colour : std::uint8_t { detached, red, black };

  RbTreeNode* parent_ = nullptr;
  RbTreeNode* left_ = nullptr;
  RbTreeNode* right_ = nullptr;
  Colour colour_ = Colour::detached;
};

// The part of the tree that knows no key: linking, unlinking and balancing, the version and the
// count.
class RbTreeMapGeneric {
 public:
  RbTreeMapGeneric(RbTreeMapGeneric const&) = delete;
  RbTreeMapGeneric& operator=(RbTreeMapGeneric const&) = delete;

  // Moves with every insertion, replacement and deletion; iterators compare against it.
  std::uint32_t version() const { return version_; }
  std::size_t count() const { return count_; }

  // Parent links, red-black rules and count agree. Costs a full traversal: for tests and
  // debugging, never on a request path.
  bool invariantHolds() const;

 protected:
  RbTreeMapGeneric() = default;
  ~RbTreeMapGeneric() = default;

  RbTreeNode* rootNode() const { return root_; }
  static RbTreeNode* childOf(RbTreeNode const* node, bool left) { return left ? node->left_ : node->right_; }
  static RbTreeNode* leftmost(RbTreeNode* node);
  // The in-order successor through the links; null after the last.
  static RbTreeNode* successor(RbTreeNode const* node);
  static bool isLinked(RbTreeNode const* node) { return node->colour_ != RbTreeNode::Colour::detached; }
  // Linked into this very tree, not merely into some tree.
  bool isMember(RbTreeNode const* node) const;

  // Links `node` in as the `left` or right child of `parent` (null: as the root) and rebalances.
  void memberNewChild(RbTreeNode* parent, RbTreeNode* node, bool left);
  // `node` takes the place, links and colour of `old`, which leaves the tree.
  void memberReplace(RbTreeNode* old, RbTreeNode* node);
  // Unlinks `node` and rebalances.
  void _memberDelG(RbTreeNode* node);
  // Unlinks every member, leaf by leaf, handing each to `release` once it is out; the tree is a
  // valid (if unbalanced) search tree at each call.
  void memberDelAllG(void (*release)(RbTreeNode*));

 private:
  void rotate(RbTreeNode* node, bool left);
  void transplant(RbTreeNode* out, RbTreeNode* in);
  void insertFixup(RbTreeNode* node);
  void deleteFixup(RbTreeNode* node, RbTreeNode* parent);
  // The subtree's black height, or -1 where a rule is broken; counts the nodes into `seen`.
  static int blackHeight(RbTreeNode const* node, RbTreeNode const* parent, std::size_t& seen);

  std::uint32_t version_ = 1;
  RbTreeNode* root_ = nullptr;
  std::size_t count_ = 0;
};

// Members derive from PtrInterface (directly or through Entity) and from RbTreeNode, and give
// their key through `fwkKey()`. Keys are compared with `==` first and `<` second; nothing else
// is asked of them. The tree holds one reference per member.
template <class Tag, class Key, class Value>
class RbTreeMap : public RbTreeMapGeneric {
  enum class Descent { exact, atOrAbove, above };

 public:
  class IteratorConst {
   public:
    IteratorConst() = default;

    // The row stays readable after it left the collection: the iterator's reference keeps it.
    Ptr<Value const> row() const { return row_; }
    Value const* get() const { return row_.get(); }
    Value const* operator->() const { return row_.get(); }
    bool atEnd() const { return !row_; }
    explicit operator bool() const { return static_cast<bool>(row_); }

    // To the next larger key. Along the links while the collection is unchanged; after a
    // change, by one descent for the first key above the current row's, which need no longer
    // be present. At the end it stays at the end. Never allocates.
    void advance() {
      if (!row_) {
        return;
      }
      RbTreeNode* next = nullptr;
      if (version_ == collection_->version()) {
        next = successor(row_.get());
      } else {
        next = collection_->descend(row_->fwkKey(), Descent::above);
        version_ = collection_->version();
      }
      row_ = next != nullptr ? static_cast<Value*>(next) : nullptr;
    }

   protected:
    friend class RbTreeMap;
    IteratorConst(RbTreeMap const* collection, Value* row, std::uint32_t version)
        : collection_(collection), row_(row), version_(version) {}

    RbTreeMap const* collection_ = nullptr;
    Ptr<Value> row_;
    std::uint32_t version_ = 0;
  };

  // An IteratorConst that hands out its row for change, and names a row to delete by position.
  class Iterator : public IteratorConst {
   public:
    Iterator() = default;

    Ptr<Value> row() const { return this->row_; }
    Value* get() const { return this->row_.get(); }
    Value* operator->() const { return this->row_.get(); }

   private:
    friend class RbTreeMap;
    explicit Iterator(IteratorConst const& position) : IteratorConst(position) {}
  };

  RbTreeMap() = default;
  ~RbTreeMap() { memberDelAllG(&releaseNode); }

  // The member with `key`, or null.
  Ptr<Value> operator[](Key const& key) const { return asValue(descend(key, Descent::exact)); }

  // Inserts `member`, or puts it in the place of the member with an equal key, which leaves the
  // tree and is given back. Either way the version moves. Giving a member that is already in
  // the tree changes nothing and gives null.
  Ptr<Value> memberIs(Ptr<Value> const& member) {
    ZET_ASSERT(member);
    Key const& key = member->fwkKey();
    RbTreeNode* parent = nullptr;
    bool left = false;
    for (RbTreeNode* node = rootNode(); node != nullptr; node = childOf(node, left)) {
      Value* const row = static_cast<Value*>(node);
      if (key == row->fwkKey()) {
        if (row == member.get()) {
          return nullptr;
        }
        ZET_ASSERT(!isLinked(member.get()));
        member->newRef();
        memberReplace(node, member.get());
        return adopt(row);
      }
      left = key < row->fwkKey();
      parent = node;
    }
    ZET_ASSERT(!isLinked(member.get()));
    member->newRef();
    memberNewChild(parent, member.get(), left);
    return nullptr;
  }

  // Unlinks the member with `key` and gives it back; null when absent.
  Ptr<Value> memberDel(Key const& key) {
    RbTreeNode* const node = descend(key, Descent::exact);
    if (node == nullptr) {
      return nullptr;
    }
    _memberDelG(node);
    return adopt(static_cast<Value*>(node));
  }

  // Unlinks the row the iterator stands on, if it is still a member here. The iterator keeps
  // the row and, the version having moved, goes on to the next larger key.
  Ptr<Value> memberDel(Iterator const& position) {
    Value* const row = position.get();
    if (row == nullptr || !isMember(row)) {
      return nullptr;
    }
    _memberDelG(row);
    return adopt(row);
  }

  // The member with `key`, or else the first with a larger key; null past the last.
  Value* atOrAbove(Key const& key) const { return asRaw(descend(key, Descent::atOrAbove)); }
  // The first member with a key strictly larger than `key`; null past the last.
  Value* above(Key const& key) const { return asRaw(descend(key, Descent::above)); }

  // At the smallest key; at the end when empty.
  IteratorConst iterator() const { return IteratorConst(this, asRaw(leftmost(rootNode())), version()); }
  // At `row`, or at the end for null. A row that is no longer a member is held all the same,
  // and the first step finds its place by key.
  IteratorConst iterator(Value const* row) const {
    Value* const held = const_cast<Value*>(row);
    bool const current = row == nullptr || isMember(held);
    return IteratorConst(this, held, current ? version() : version() - 1);
  }
  Iterator iteratorMutable() { return Iterator(iterator()); }

 private:
  static Value* asRaw(RbTreeNode* node) { return node != nullptr ? static_cast<Value*>(node) : nullptr; }
  static Ptr<Value> asValue(RbTreeNode* node) { return Ptr<Value>(asRaw(node)); }

  // Turns the tree's reference to a member that has just left it into the caller's.
  static Ptr<Value> adopt(Value* row) {
    Ptr<Value> out(row);
    row->deleteRef();
    return out;
  }
  static void releaseNode(RbTreeNode* node) { static_cast<Value*>(node)->deleteRef(); }

  // Compares `==` then `<` at each row; the last row passed on its left is the candidate for
  // the first larger key.
  RbTreeNode* descend(Key const& key, Descent descent) const {
    RbTreeNode* candidate = nullptr;
    RbTreeNode* node = rootNode();
    while (node != nullptr) {
      Value const* const row = static_cast<Value const*>(node);
      if (key == row->fwkKey()) {
        if (descent != Descent::above) {
          return node;
        }
        RbTreeNode* const right = childOf(node, false);
        return right != nullptr ? leftmost(right) : candidate;
      }
      if (key < row->fwkKey()) {
        candidate = node;
        node = childOf(node, true);
      } else {
        node = childOf(node, false);
      }
    }
    return descent == Descent::exact ? nullptr : candidate;
  }
};

}  // namespace Zet
