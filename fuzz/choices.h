// An input as a row of choices, for targets that make something well formed of it. After its end every choice is the
// first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <string_view>

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

// Whether the input is one of so many, for what takes long. It goes by a hash, so that what a mutation makes of such an
// input mostly isn't one, too; otherwise they would soon be the most that are kept, since they reach more.
inline bool isOneOf(uint32_t many, const uint8_t* data, size_t size) {
  return std::hash<std::string_view>()({reinterpret_cast<const char*>(data), size}) % many == 0;
}
