// The growing array of the library's plain data: points, verbs, pointers.
//
// Unlike other growing arrays, SetCount beyond the capacity loses the contents (SetCapacity keeps them), and the
// first growth takes twice the space that is needed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "gfx/foundation/hsdebug.h"

template <typename T>
class hsTArray {
 public:
  hsTArray() = default;
  hsTArray(const hsTArray& other) { *this = other; }
  hsTArray(hsTArray&& other) noexcept { Swap(other); }
  ~hsTArray() = default;

  hsTArray& operator=(const hsTArray& other) {
    if (this == &other) return *this;
    if (fCount != other.fCount) SetCount(other.fCount);
    std::copy_n(other.fArray.get(), other.fCount, fArray.get());
    return *this;
  }
  hsTArray& operator=(hsTArray&& other) noexcept {
    Swap(other);
    return *this;
  }
  bool operator==(const hsTArray& other) const {
    return fCount == other.fCount && std::equal(begin(), end(), other.begin());
  }
  void Swap(hsTArray& other) noexcept {
    fArray.swap(other.fArray);
    std::swap(fCount, other.fCount);
    std::swap(fCapacity, other.fCapacity);
  }

  int32_t Count() const { return fCount; }
  bool IsEmpty() const { return fCount == 0; }
  // null while there is no storage. Good until the array next grows.
  T* Array() { return fArray.get(); }
  const T* Array() const { return fArray.get(); }
  T* begin() { return fArray.get(); }
  T* end() { return fArray.get() + fCount; }
  const T* begin() const { return fArray.get(); }
  const T* end() const { return fArray.get() + fCount; }

  // "bad index" outside the array; when the reporter returns, a spare element.
  T& operator[](int32_t index) { return Has(index) ? fArray[size_t(index)] : Spare(); }
  const T& operator[](int32_t index) const { return Has(index) ? fArray[size_t(index)] : Spare(); }
  T Get(int32_t index) const { return (*this)[index]; }

  // The first of count new elements, uninitialised; null for a bad count.
  T* Append(int32_t count) {
    if (!hsAssert(count >= 1, "bad AppendCount")) return nullptr;
    Grow(count);
    T* first = fArray.get() + fCount;
    fCount += count;
    return first;
  }
  void Push(const T& value) {
    const T kept = value;  // value may lie in this array
    Grow(1);
    fArray[size_t(fCount++)] = kept;
  }

  void SetCount(int32_t count) {
    if (count == 0) return Reset();
    if (!hsAssert(count > 0, "bad count")) return;
    if (count > fCapacity) {
      Reset();  // before there is a new block, so that the two never exist side by side
      fArray.reset(new T[size_t(count)]);
      fCapacity = count;
    }
    fCount = count;
  }
  // Space for capacity elements in all; never shrinks.
  void SetCapacity(int32_t capacity) {
    if (capacity > fCapacity) Reallocate(capacity);
  }
  void Reset() {
    fArray.reset();
    fCount = fCapacity = 0;
  }

 private:
  bool Has(int32_t index) const { return hsAssert(uint32_t(index) < uint32_t(fCount), "bad index"); }
  [[gnu::cold, gnu::noinline]] T& Spare() const {
    fSpare = std::make_unique<T>();
    return *fSpare;
  }
  void Grow(int32_t count) {
    const int64_t needed = int64_t{fCount} + count;
    if (needed <= fCapacity) return;
    int64_t capacity = fCapacity == 0 ? needed : fCapacity;
    do capacity *= 2;
    while (capacity < needed);
    if (capacity > INT32_MAX) throw std::bad_alloc();
    Reallocate(int32_t(capacity));
  }
  void Reallocate(int32_t capacity) {
    std::unique_ptr<T[]> bigger(new T[size_t(capacity)]);
    std::copy_n(fArray.get(), fCount, bigger.get());
    fArray = std::move(bigger);
    fCapacity = capacity;
  }

  std::unique_ptr<T[]> fArray;
  int32_t fCount = 0;                 // elements held
  int32_t fCapacity = 0;              // elements that there is space for
  mutable std::unique_ptr<T> fSpare;  // null until a bad index was reported
};
