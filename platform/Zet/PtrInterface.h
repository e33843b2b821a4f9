#pragma once
// Base of every counted object: the reference count and two flags share one word.

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace Zet {

struct ZetType;

// Process-wide switch: when set, reference counts are changed atomically.
class VFPtrInterface {
 public:
  static bool threadSafePointers_;
};

class PtrInterface {
 public:
  class NotifieeConst;

  PtrInterface();
  PtrInterface(PtrInterface const&) = delete;
  PtrInterface& operator=(PtrInterface const&) = delete;
  virtual ~PtrInterface();

  // The description of the object's class (see Zet/ZetType.h).
  static ZetType const _zetType;
  virtual ZetType const* fwkType() const { return &_zetType; }

  // Counting never fails; the object is released through handleZeroRef()
  // when the count falls to zero.
  // Inline: every step of a table walk moves a reference.
  void newRef() const {
    if (VFPtrInterface::threadSafePointers_) {
      word_.fetch_add(1, std::memory_order_relaxed);
    } else {
      word_.store(word_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
  }
  void deleteRef() const {
    std::uint32_t after;
    if (VFPtrInterface::threadSafePointers_) {
      after = word_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    } else {
      after = word_.load(std::memory_order_relaxed) - 1;
      word_.store(after, std::memory_order_relaxed);
    }
    if ((after & countMask) == 0) {
      handleZeroRef();
    }
  }
  std::uint32_t references() const { return word_.load(std::memory_order_relaxed) & countMask; }

  bool hasNotificationActive() const { return flag(notificationActiveBit); }
  // Stores the notification-active flag; reactors extend this.
  virtual void hasNotificationActiveIs(bool b) { flagIs(notificationActiveBit, b); }

  // A reactor or state machine with this flag set is a zombie.
  bool zetMarkedForDeletion() const { return flag(markedForDeletionBit); }
  void zetMarkedForDeletionIs(bool b) { flagIs(markedForDeletionBit, b); }

  // The notifiees that watch this object; null when none ever registered.
  std::vector<NotifieeConst*> const* notifieeList() const;

  // The object entered at `address` (see liveObjectsEnter), if somebody holds a
  // reference to it, else null: how a reference read back from text finds its
  // object. For the thread that owns the objects.
  static PtrInterface* liveObjectAt(void const* address);

  // The count is the word masked with countMask; the two flags sit outside it.
  static constexpr std::uint32_t countMask = 0x5fffffffu;
  static constexpr std::uint32_t notificationActiveBit = 0x20000000u;
  static constexpr std::uint32_t markedForDeletionBit = 0x80000000u;

 protected:
  virtual void handleZeroRef() const { delete this; }

  // A kind of object that text may refer to enters each object on construction
  // and takes it out on destruction; entities do, strings do not.
  static void liveObjectsEnter(PtrInterface* object);
  static void liveObjectsLeave(PtrInterface const* object);

 private:
  friend class NotifieeConst;
  struct NotifieeList;
  // The notifiees registered with this object as their notifier; made on first use.
  mutable std::unique_ptr<NotifieeList> notifiees_;

  bool flag(std::uint32_t bit) const { return (word_.load(std::memory_order_relaxed) & bit) != 0; }
  void flagIs(std::uint32_t bit, bool b);

  mutable std::atomic<std::uint32_t> word_{0};
};

}  // namespace Zet
