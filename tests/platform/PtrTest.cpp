// Counted pointers: the count and the two flags share one word.

#include <gtest/gtest.h>

#include <utility>

#include "Zet/Ptr.h"

namespace {

struct Tracked : Zet::PtrInterface {
  explicit Tracked(int* destroyed) : destroyed_(destroyed) {}
  ~Tracked() override { ++*destroyed_; }
  int* destroyed_;
};

TEST(Ptr, ObjectGoesWithTheLastReferenceWhateverTheFlags) {
  int destroyed = 0;
  auto p = Zet::makePtr<Tracked>(&destroyed);
  p->hasNotificationActiveIs(true);
  p->zetMarkedForDeletionIs(true);
  {
    Zet::Ptr<Tracked const> view = p;
    EXPECT_EQ(p->references(), 2u);
  }
  EXPECT_EQ(p->references(), 1u);
  p->zetMarkedForDeletionIs(false);
  EXPECT_TRUE(p->hasNotificationActive());
  EXPECT_FALSE(p->zetMarkedForDeletion());
  auto moved = std::move(p);
  EXPECT_FALSE(p);
  EXPECT_EQ(destroyed, 0);
  moved = nullptr;
  EXPECT_EQ(destroyed, 1);
}

TEST(Ptr, ThreadSafeCountingKeepsTheSameRule) {
  Zet::VFPtrInterface::threadSafePointers_ = true;
  int destroyed = 0;
  {
    auto p = Zet::makePtr<Tracked>(&destroyed);
    auto q = p;
    EXPECT_EQ(p->references(), 2u);
  }
  Zet::VFPtrInterface::threadSafePointers_ = false;
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
