// A pointer that owns one reference of a counted object (hsrefcnt.h), for members and locals.
//
// Functions that the library's interfaces name keep their raw pointers and say in their comment who owns what. Between
// such a function and an hsRef come hsAdopt, for a reference that is handed over, and hsShare, for an object that is
// only looked at.
#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

template <typename T>
class hsRef {
 public:
  hsRef() = default;
  hsRef(std::nullptr_t) {}
  hsRef(const hsRef& other) : fObject(other.fObject) {
    if (fObject) fObject->Ref();
  }
  hsRef(hsRef&& other) noexcept : fObject(other.release()) {}
  // Of a derived class.
  template <typename U>
  requires std::convertible_to<U*, T*> hsRef(hsRef<U> other)
  noexcept : fObject(other.release()) {}
  // Drops the old reference last, so that an object may be assigned to the pointer that keeps it alive.
  hsRef& operator=(hsRef other) noexcept {
    std::swap(fObject, other.fObject);
    return *this;
  }
  ~hsRef() {
    if (fObject) fObject->UnRef();
  }

  T* get() const { return fObject; }
  T* operator->() const { return fObject; }
  T& operator*() const { return *fObject; }
  explicit operator bool() const { return fObject != nullptr; }

  // Hands the reference to the caller.
  [[nodiscard]] T* release() { return std::exchange(fObject, nullptr); }
  void reset() { *this = nullptr; }

 private:
  template <typename U>
  friend hsRef<U> hsAdopt(U* object);

  T* fObject = nullptr;
};

// Takes over a reference that the caller owns. Null makes an empty hsRef.
template <typename T>
hsRef<T> hsAdopt(T* object) {
  hsRef<T> ref;
  ref.fObject = object;
  return ref;
}

// Adds a reference of its own. Null makes an empty hsRef.
template <typename T>
hsRef<T> hsShare(T* object) {
  if (object) object->Ref();
  return hsAdopt(object);
}

template <typename T, typename... Args>
hsRef<T> hsMake(Args&&... args) {
  return hsAdopt(new T(std::forward<Args>(args)...));
}
