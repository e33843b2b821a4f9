#include "Zet/RbTreeMap.h"

namespace Zet {

RbTreeNode::~RbTreeNode() {
  ZET_ASSERT(colour_ == Colour::detached);
}

RbTreeNode* RbTreeMapGeneric::leftmost(RbTreeNode* node) {
  if (node == nullptr) {
    return nullptr;
  }
  while (node->left_ != nullptr) {
    node = node->left_;
  }
  return node;
}

RbTreeNode* RbTreeMapGeneric::successor(RbTreeNode const* node) {
  if (node->right_ != nullptr) {
    return leftmost(node->right_);
  }
  // Climb while we come up from a right subtree; the first parent reached from its left is next.
  RbTreeNode const* child = node;
  RbTreeNode* parent = node->parent_;
  while (parent != nullptr && parent->right_ == child) {
    child = parent;
    parent = parent->parent_;
  }
  return parent;
}

bool RbTreeMapGeneric::isMember(RbTreeNode const* node) const {
  if (node == nullptr || !isLinked(node)) {
    return false;
  }
  // Linked somewhere: the climb tells whether here. Bounded by the height.
  while (node->parent_ != nullptr) {
    node = node->parent_;
  }
  return node == root_;
}

void RbTreeMapGeneric::rotate(RbTreeNode* node, bool left) {
  // A left rotation lifts the right child into the node's place, a right rotation the left one.
  RbTreeNode* const lifted = left ? node->right_ : node->left_;
  RbTreeNode* const inner = left ? lifted->left_ : lifted->right_;
  (left ? node->right_ : node->left_) = inner;
  if (inner != nullptr) {
    inner->parent_ = node;
  }
  transplant(node, lifted);
  (left ? lifted->left_ : lifted->right_) = node;
  node->parent_ = lifted;
}

void RbTreeMapGeneric::transplant(RbTreeNode* out, RbTreeNode* in) {
  RbTreeNode* const parent = out->parent_;
  if (parent == nullptr) {
    root_ = in;
  } else if (parent->left_ == out) {
    parent->left_ = in;
  } else {
    parent->right_ = in;
  }
  if (in != nullptr) {
    in->parent_ = parent;
  }
}

void RbTreeMapGeneric::memberNewChild(RbTreeNode* parent, RbTreeNode* node, bool left) {
  node->parent_ = parent;
  node->left_ = nullptr;
  node->right_ = nullptr;
  node->colour_ = RbTreeNode::Colour::red;
  if (parent == nullptr) {
    ZET_ASSERT(root_ == nullptr);
    root_ = node;
  } else {
    RbTreeNode*& slot = left ? parent->left_ : parent->right_;
    ZET_ASSERT(slot == nullptr);
    slot = node;
  }
  insertFixup(node);
  ++count_;
  ++version_;
}

void RbTreeMapGeneric::insertFixup(RbTreeNode* node) {
  using C = RbTreeNode::Colour;
  // Each round either ends or moves the red-red conflict two levels up: bounded by the height.
  while (node->parent_ != nullptr && node->parent_->colour_ == C::red) {
    RbTreeNode* parent = node->parent_;
    RbTreeNode* const grand = parent->parent_;  // a red parent is never the root
    bool const parentIsLeft = grand->left_ == parent;
    RbTreeNode* const uncle = parentIsLeft ? grand->right_ : grand->left_;
    if (uncle != nullptr && uncle->colour_ == C::red) {
      parent->colour_ = C::black;
      uncle->colour_ = C::black;
      grand->colour_ = C::red;
      node = grand;
      continue;
    }
    if (node == (parentIsLeft ? parent->right_ : parent->left_)) {
      rotate(parent, parentIsLeft);
      node = parent;
      parent = node->parent_;
    }
    parent->colour_ = C::black;
    grand->colour_ = C::red;
    rotate(grand, !parentIsLeft);
  }
  root_->colour_ = C::black;
}

void RbTreeMapGeneric::memberReplace(RbTreeNode* old, RbTreeNode* node) {
  ZET_ASSERT(isLinked(old) && !isLinked(node));
  transplant(old, node);
  node->left_ = old->left_;
  node->right_ = old->right_;
  node->colour_ = old->colour_;
  if (node->left_ != nullptr) {
    node->left_->parent_ = node;
  }
  if (node->right_ != nullptr) {
    node->right_->parent_ = node;
  }
  old->parent_ = old->left_ = old->right_ = nullptr;
  old->colour_ = RbTreeNode::Colour::detached;
  ++version_;
}

void RbTreeMapGeneric::_memberDelG(RbTreeNode* node) {
  using C = RbTreeNode::Colour;
  ZET_ASSERT(isLinked(node));
  // The member is the node itself, so a node with two children swaps places with its successor
  // by relinking rather than by copying a payload.
  RbTreeNode* child = nullptr;
  RbTreeNode* childParent = nullptr;
  C removedColour = node->colour_;
  if (node->left_ == nullptr || node->right_ == nullptr) {
    child = node->left_ != nullptr ? node->left_ : node->right_;
    childParent = node->parent_;
    transplant(node, child);
  } else {
    RbTreeNode* const next = leftmost(node->right_);
    removedColour = next->colour_;
    child = next->right_;
    if (next->parent_ == node) {
      childParent = next;
    } else {
      childParent = next->parent_;
      transplant(next, next->right_);
      next->right_ = node->right_;
      next->right_->parent_ = next;
    }
    transplant(node, next);
    next->left_ = node->left_;
    next->left_->parent_ = next;
    next->colour_ = node->colour_;
  }
  if (removedColour == C::black) {
    deleteFixup(child, childParent);
  }
  node->parent_ = node->left_ = node->right_ = nullptr;
  node->colour_ = C::detached;
  --count_;
  ++version_;
}

void RbTreeMapGeneric::deleteFixup(RbTreeNode* node, RbTreeNode* parent) {
  using C = RbTreeNode::Colour;
  auto const isBlack = [](RbTreeNode const* n) { return n == nullptr || n->colour_ == C::black; };
  // `node` (possibly null) carries one black too few. Each round ends or moves it a level up.
  while (node != root_ && isBlack(node)) {
    bool const nodeIsLeft = parent->left_ == node;
    RbTreeNode* sibling = nodeIsLeft ? parent->right_ : parent->left_;
    if (sibling->colour_ == C::red) {
      sibling->colour_ = C::black;
      parent->colour_ = C::red;
      rotate(parent, nodeIsLeft);
      sibling = nodeIsLeft ? parent->right_ : parent->left_;
    }
    RbTreeNode* const near = nodeIsLeft ? sibling->left_ : sibling->right_;
    RbTreeNode* far = nodeIsLeft ? sibling->right_ : sibling->left_;
    if (isBlack(near) && isBlack(far)) {
      sibling->colour_ = C::red;
      node = parent;
      parent = node->parent_;
      continue;
    }
    if (isBlack(far)) {
      near->colour_ = C::black;
      sibling->colour_ = C::red;
      rotate(sibling, !nodeIsLeft);
      sibling = nodeIsLeft ? parent->right_ : parent->left_;
      far = nodeIsLeft ? sibling->right_ : sibling->left_;
    }
    sibling->colour_ = parent->colour_;
    parent->colour_ = C::black;
    far->colour_ = C::black;
    rotate(parent, nodeIsLeft);
    node = root_;
  }
  if (node != nullptr) {
    node->colour_ = C::black;
  }
}

void RbTreeMapGeneric::memberDelAllG(void (*release)(RbTreeNode*)) {
  ++version_;
  // Post-order, without a stack: each node is passed at most three times.
  RbTreeNode* node = root_;
  while (node != nullptr) {
    if (node->left_ != nullptr) {
      node = node->left_;
      continue;
    }
    if (node->right_ != nullptr) {
      node = node->right_;
      continue;
    }
    RbTreeNode* const parent = node->parent_;
    transplant(node, nullptr);
    node->parent_ = nullptr;
    node->colour_ = RbTreeNode::Colour::detached;
    --count_;
    release(node);
    node = parent;
  }
}

bool RbTreeMapGeneric::invariantHolds() const {
  if (root_ != nullptr && root_->colour_ != RbTreeNode::Colour::black) {
    return false;
  }
  std::size_t seen = 0;
  return blackHeight(root_, nullptr, seen) >= 0 && seen == count_;
}

int RbTreeMapGeneric::blackHeight(RbTreeNode const* node, RbTreeNode const* parent, std::size_t& seen) {
  using C = RbTreeNode::Colour;
  if (node == nullptr) {
    return 0;
  }
  ++seen;
  if (node->parent_ != parent || node->colour_ == C::detached) {
    return -1;
  }
  bool const redUnderRed = node->colour_ == C::red && parent != nullptr && parent->colour_ == C::red;
  int const left = blackHeight(node->left_, node, seen);
  int const right = blackHeight(node->right_, node, seen);
  if (redUnderRed || left < 0 || left != right) {
    return -1;
  }
  return left + (node->colour_ == C::black ? 1 : 0);
}

}  // namespace Zet
