#include "Zet/PtrInterface.h"

namespace Zet {

bool VFPtrInterface::threadSafePointers_ = false;

void PtrInterface::newRef() const {
  if (VFPtrInterface::threadSafePointers_) {
    word_.fetch_add(1, std::memory_order_relaxed);
  } else {
    word_.store(word_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  }
}

void PtrInterface::deleteRef() const {
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

void PtrInterface::flagIs(std::uint32_t bit, bool b) {
  if (b) {
    word_.fetch_or(bit, std::memory_order_relaxed);
  } else {
    word_.fetch_and(~bit, std::memory_order_relaxed);
  }
}

}  // namespace Zet
