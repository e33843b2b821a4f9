#pragma once
// Counted pointer to a PtrInterface; Ptr<T const> is the read-only view.

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#include "Zet/PtrInterface.h"

namespace Zet {

template <class T>
class Ptr {
 public:
  Ptr() = default;
  Ptr(std::nullptr_t) {}
  Ptr(T* p) : p_(p) { acquire(); }
  Ptr(Ptr const& o) : p_(o.p_) { acquire(); }
  Ptr(Ptr&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ptr(Ptr<U> const& o) : p_(o.get()) { acquire(); }
  ~Ptr() { release(); }

  Ptr& operator=(Ptr const& o) {
    Ptr(o).swap(*this);
    return *this;
  }
  Ptr& operator=(Ptr&& o) noexcept {
    Ptr(std::move(o)).swap(*this);
    return *this;
  }

  T* get() const { return p_; }
  T* operator->() const { return p_; }
  T& operator*() const { return *p_; }
  explicit operator bool() const { return p_ != nullptr; }
  void swap(Ptr& o) noexcept { std::swap(p_, o.p_); }

 private:
  void acquire() const {
    if (p_) {
      static_cast<PtrInterface const*>(p_)->newRef();
    }
  }
  void release() {
    if (auto* p = std::exchange(p_, nullptr)) {
      static_cast<PtrInterface const*>(p)->deleteRef();
    }
  }

  T* p_ = nullptr;
};

template <class T, class U>
bool operator==(Ptr<T> const& a, Ptr<U> const& b) {
  return a.get() == b.get();
}
template <class T>
bool operator==(Ptr<T> const& a, std::nullptr_t) {
  return a.get() == nullptr;
}

// The one way counted objects are made: the count owns the object from here on.
template <class T, class... Args>
Ptr<T> makePtr(Args&&... args) {
  return Ptr<T>(new T(std::forward<Args>(args)...));
}

// Run-time down-cast; null when the object is not a T.
template <class T, class U>
Ptr<T> ptrCast(Ptr<U> const& p) {
  return Ptr<T>(dynamic_cast<T*>(p.get()));
}

}  // namespace Zet

template <class T>
struct std::hash<Zet::Ptr<T>> {
  std::size_t operator()(Zet::Ptr<T> const& p) const noexcept { return std::hash<T*>()(p.get()); }
};
