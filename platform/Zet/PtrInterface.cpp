#include "Zet/PtrInterface.h"

#include <memory>
#include <mutex>
#include <unordered_map>

namespace Zet {

namespace {

struct LiveObjects {
  std::mutex mutex;
  std::unordered_map<void const*, PtrInterface*> byAddress;
};

// Never destroyed: objects held by statics are released after every static
// destructor of this library may have run.
LiveObjects& liveObjects() {
  static LiveObjects* const objects = std::make_unique<LiveObjects>().release();
  return *objects;
}

}  // namespace

bool VFPtrInterface::threadSafePointers_ = false;

void PtrInterface::liveObjectsEnter(PtrInterface* object) {
  LiveObjects& live = liveObjects();
  std::lock_guard const lock(live.mutex);
  live.byAddress.emplace(object, object);
}

void PtrInterface::liveObjectsLeave(PtrInterface const* object) {
  LiveObjects& live = liveObjects();
  std::lock_guard const lock(live.mutex);
  live.byAddress.erase(object);
}

PtrInterface* PtrInterface::liveObjectAt(void const* address) {
  LiveObjects& live = liveObjects();
  std::lock_guard const lock(live.mutex);
  auto const found = live.byAddress.find(address);
  // An object that nobody holds is still being made, or lives outside the
  // counting; taking a reference to it would end its life early.
  if (found == live.byAddress.end() || found->second->references() == 0) {
    return nullptr;
  }
  return found->second;
}

void PtrInterface::flagIs(std::uint32_t bit, bool b) {
  if (b) {
    word_.fetch_or(bit, std::memory_order_relaxed);
  } else {
    word_.fetch_and(~bit, std::memory_order_relaxed);
  }
}

}  // namespace Zet
