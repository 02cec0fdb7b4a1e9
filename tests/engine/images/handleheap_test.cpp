#include "engine/images/handleheap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <vector>

namespace {

// A payload begins with its own offset, which the relocator keeps true.
void relocate(uint8_t* payload, int32_t distance) {
  uint32_t word;
  std::memcpy(&word, payload, 4);
  word += uint32_t(distance);
  std::memcpy(payload, &word, 4);
}

class HandleHeapTest : public testing::Test {
 protected:
  HandleHeapTest() { heap.init(memory.data(), memory.size() * 4); }

  HeapHandle allocate(uint32_t size) {
    const HeapHandle handle = heap.heapAlloc(relocate, size);
    if (handle) {
      const uint32_t at = heap.offsetOf(heap.payload(handle));
      std::memcpy(heap.payload(handle), &at, 4);
    }
    return handle;
  }

  std::vector<uint32_t> memory = std::vector<uint32_t>(256);  // 1024 bytes: 20 of head, 128 of handles, 876 for blocks
  HandleHeap heap;
};

TEST_F(HandleHeapTest, RoomIsCountedToTheByte) {
  EXPECT_EQ(allocate(876 - 12 + 1), 0u);
  const HeapHandle all = allocate(876 - 12);
  ASSERT_NE(all, 0u);
  EXPECT_EQ(heap.offsetOf(heap.payload(all)), 148u + 8);
  EXPECT_EQ(allocate(4), 0u);
  heap.heapFree(all);
  const HeapHandle first = allocate(5);  // rounded to 8
  const HeapHandle second = allocate(4);
  EXPECT_EQ(heap.offsetOf(heap.payload(first)), 1024u - 12);
  EXPECT_EQ(heap.offsetOf(heap.payload(second)), 1024u - 20 - 8);
}

TEST_F(HandleHeapTest, TheTableGrowsBy32WhereThereIsRoom) {
  std::vector<HeapHandle> handles;
  while (const HeapHandle handle = allocate(4)) handles.push_back(handle);
  // 64 handles leave 748 bytes, of 16 a block: 46 blocks. The growth at the 33rd still fitted.
  EXPECT_EQ(handles.size(), 46u);
}

TEST_F(HandleHeapTest, TheTableGrowsIntoTheLastByteForGood) {
  std::vector<HeapHandle> handles = {allocate(240)};
  while (handles.size() < 32) handles.push_back(allocate(4));  // 252 + 31 * 16 bytes: 128 are left
  EXPECT_EQ(allocate(4), 0u);
  for (const HeapHandle handle : handles) heap.heapFree(handle);
  EXPECT_EQ(allocate(876 - 128 - 12 + 1), 0u);
  EXPECT_NE(allocate(876 - 128 - 12), 0u);
}

TEST(HandleHeap, RefusesMemoryThatIsTooSmall) {
  uint32_t memory[64];
  HandleHeap heap;
  EXPECT_FALSE(heap.init(memory, 147));
  EXPECT_TRUE(heap.init(memory, 148));
  EXPECT_EQ(heap.heapAlloc(relocate, 0), 0u);
}

TEST_F(HandleHeapTest, LiveBlocksKeepTheirBytesThroughEveryMove) {
  std::mt19937 random(3);
  std::map<HeapHandle, std::vector<uint8_t>> model;  // bytes after the first word
  for (int i = 0; i < 20000; ++i) {
    if (random() % 2 || model.empty()) {
      const uint32_t size = 4 + random() % 120;
      uint32_t used = 0;
      for (const auto& [handle, bytes] : model) used += (uint32_t(bytes.size()) + 4 + 3) / 4 * 4 + 12;
      const HeapHandle handle = allocate(size);
      ASSERT_EQ(handle != 0, used + (size + 3) / 4 * 4 + 12 <= 876) << i;
      if (!handle) continue;
      std::vector<uint8_t> bytes(size - 4);
      for (uint8_t& byte : bytes) byte = uint8_t(random());
      std::copy(bytes.begin(), bytes.end(), heap.payload(handle) + 4);
      ASSERT_TRUE(model.emplace(handle, bytes).second);
    } else {
      auto victim = std::next(model.begin(), long(random() % model.size()));
      heap.heapFree(victim->first);
      model.erase(victim);
    }
    for (const auto& [handle, bytes] : model) {
      uint32_t own;
      std::memcpy(&own, heap.payload(handle), 4);
      ASSERT_EQ(own, heap.offsetOf(heap.payload(handle)));
      ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), heap.payload(handle) + 4));
    }
    if (model.size() > 28) {  // stay below the table's first size, whose growth would take space
      heap.heapFree(model.begin()->first);
      model.erase(model.begin());
    }
  }
}

}  // namespace
