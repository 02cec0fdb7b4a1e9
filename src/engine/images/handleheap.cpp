#include "engine/images/handleheap.h"

#include <cstring>

namespace {

constexpr uint32_t kHandleStep = 32;  // handles that the table starts with and grows by

// Words at the start of the memory; the table follows.
constexpr uint32_t kHandleCount = 0, kHeapBottom = 4, kTableEnd = 8, kHeapEnd = 12, kHandles = 16, kTable = 20;

// A block: owner and relocator, the payload, and its rounded size, by which a walk from the top finds its way.
constexpr uint32_t kOwner = 0, kRelocator = 4, kBlockHead = 8, kBlockOverhead = 12;

}  // namespace

bool HandleHeap::init(void* memory, size_t size) {
  const uint32_t end = uint32_t(size) & ~3u;
  if (!memory || size > INT32_MAX || end < kTable + 4 * kHandleStep) return false;
  base = static_cast<uint8_t*>(memory);
  word(kHandleCount) = kHandleStep;
  word(kHeapBottom) = word(kHeapEnd) = end;
  word(kTableEnd) = kTable + 4 * kHandleStep;
  word(kHandles) = kTable;
  std::memset(base + kTable, 0, 4 * kHandleStep);
  return true;
}

uint64_t HandleHeap::blockSize(uint64_t size) { return ((size + 3) & ~uint64_t{3}) + kBlockOverhead; }

size_t HandleHeap::space(size_t memorySize) { return (memorySize & ~size_t{3}) - (kTable + 4 * kHandleStep); }

uint32_t HandleHeap::relocatorNumber(HeapRelocator relocator) {
  for (size_t i = 0; i < relocators.size(); ++i)
    if (relocators[i] == relocator) return uint32_t(i);
  relocators.push_back(relocator);
  return uint32_t(relocators.size() - 1);
}

HandleHeap::Extent HandleHeap::extent() const {
  if (!base) return {};
  return {word(kHeapEnd), word(kTableEnd), word(kHeapEnd) - word(kHeapBottom)};
}

HeapHandle HandleHeap::findFreeHandle() const {
  for (uint32_t slot = word(kHandles); slot < word(kTableEnd); slot += 4)
    if (word(slot) == 0) return slot;
  return 0;
}

bool HandleHeap::growTable() {
  const uint32_t more = 4 * kHandleStep;
  if (word(kTableEnd) + more > word(kHeapBottom)) return false;
  std::memset(base + word(kTableEnd), 0, more);
  word(kTableEnd) += more;
  word(kHandleCount) += kHandleStep;
  return true;
}

HeapHandle HandleHeap::heapAlloc(HeapRelocator relocator, uint64_t size) {
  if (!base) return 0;
  HeapHandle handle = findFreeHandle();
  if (!handle) {
    compact();
    growTable();
    handle = findFreeHandle();
    if (!handle) return 0;
  }
  const uint64_t whole = blockSize(size);
  const uint64_t rounded = whole - kBlockOverhead;
  const auto fits = [&] { return word(kTableEnd) + whole <= word(kHeapBottom); };
  if (!fits()) compact();
  if (!fits()) return 0;

  const uint32_t block = word(kHeapBottom) - uint32_t(whole);
  word(block + kOwner) = handle;
  word(block + kRelocator) = relocatorNumber(relocator);
  word(block + kBlockHead + uint32_t(rounded)) = uint32_t(rounded);
  word(handle) = block + kBlockHead;
  word(kHeapBottom) = block;
  return handle;
}

void HandleHeap::heapFree(HeapHandle handle) {
  word(word(handle) - kBlockHead + kOwner) = 0;
  word(handle) = 0;
}

// Copies a block upward, a word at a time from its top.
void HandleHeap::moveBlock(uint32_t from, uint32_t to, uint32_t size) {
  std::memmove(base + to, base + from, size);
  const uint32_t payload = to + kBlockHead;
  word(word(to + kOwner)) = payload;
  relocators[word(to + kRelocator)](base + payload, int32_t(to - from));
}

void HandleHeap::compact() {
  uint32_t read = word(kHeapEnd), write = read;
  while (read > word(kHeapBottom)) {
    const uint32_t size = word(read - 4) + kBlockOverhead;
    const uint32_t block = read - size;
    if (word(block + kOwner) != 0) {
      write -= size;
      if (write != block) moveBlock(block, write, size);
    }
    read = block;
  }
  word(kHeapBottom) = write;
}
