// Counted pointers: the count and the two flags share one word.

#include <gtest/gtest.h>

#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace {

struct Tracked : Zet::PtrInterface {
  explicit Tracked(int* destroyed) : destroyed_(destroyed) {}
  ~Tracked() override { ++*destroyed_; }
  int* destroyed_;
};

TEST(Ptr, ObjectGoesWithTheLastReference) {
  int destroyed = 0;
  auto a = Zet::makePtr<Tracked>(&destroyed);
  {
    Zet::Ptr<Tracked const> view = a;
    EXPECT_EQ(a->references(), 2u);
  }
  EXPECT_EQ(a->references(), 1u);
  auto moved = std::move(a);
  EXPECT_FALSE(a);
  EXPECT_EQ(destroyed, 0);
  moved = nullptr;
  EXPECT_EQ(destroyed, 1);
}

TEST(Ptr, FlagsLeaveTheCountAlone) {
  int destroyed = 0;
  auto p = Zet::makePtr<Tracked>(&destroyed);
  p->hasNotificationActiveIs(true);
  p->zetMarkedForDeletionIs(true);
  EXPECT_EQ(p->references(), 1u);
  EXPECT_TRUE(p->hasNotificationActive());
  EXPECT_TRUE(p->zetMarkedForDeletion());
  Zet::Ptr<Tracked> second = p;
  second = nullptr;
  EXPECT_EQ(destroyed, 0);  // the flag bits did not hide the remaining reference
  p->zetMarkedForDeletionIs(false);
  EXPECT_TRUE(p->hasNotificationActive());
  EXPECT_FALSE(p->zetMarkedForDeletion());
  p = nullptr;
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

TEST(ZetString, CopiesShareBytesAndCompareByContent) {
  Zet::String const a(std::string_view("a\0b", 3));
  Zet::String const b = a;
  EXPECT_EQ(a.charPtr(), b.charPtr());
  EXPECT_EQ(a.size(), 3u);
  EXPECT_EQ(a, Zet::String(std::string_view("a\0b", 3)));
  EXPECT_LT(Zet::String("abc"), Zet::String("abd"));
  EXPECT_STREQ(Zet::String().charPtr(), "");
}

}  // namespace
