// An input as a row of choices, for targets that make something well formed of it. After its end every choice is the
// first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

class Choices {
 public:
  Choices(const uint8_t* data, size_t size) : at(data), end(data + size) {}

  bool isEmpty() const { return at == end; }
  size_t left() const { return size_t(end - at); }
  uint8_t byte() { return isEmpty() ? 0 : *at++; }
  uint32_t word() {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | byte();
    return value;
  }
  uint32_t below(uint32_t count) { return (count <= 256 ? byte() : word()) % count; }
  bool oneIn(uint32_t count) { return below(count) == count - 1; }

  template <class List>
  auto& pick(List& list) {
    return list[below(uint32_t(std::size(list)))];
  }

 private:
  const uint8_t *at, *end;
};
