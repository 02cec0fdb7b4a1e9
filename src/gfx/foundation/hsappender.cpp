#include "gfx/foundation/hsappender.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>

#include "gfx/foundation/hsdebug.h"

// Validates on entry and on exit, but not when an exception is on its way out: a second one would end the process.
class hsAppender::Guard {
 public:
  explicit Guard(const hsAppender* appender) : appender(appender), pending(std::uncaught_exceptions()) {
    appender->Validate();
  }
  ~Guard() {
    if (std::uncaught_exceptions() == pending) appender->Validate();
  }

 private:
  const hsAppender* appender;
  int pending;
};

void* hsAppender::Block::Prepend(int32_t elemSize) {
  if (!hsAssert(CanPrepend(1), "bad prepend") || !hsAssert(CanPrepend(elemSize), "bad elemSize")) return nullptr;
  return fBegin -= elemSize;
}

void* hsAppender::Block::Append(int32_t elemSize) {
  if (!hsAssert(CanAppend(1), "bad append") || !hsAssert(CanAppend(elemSize), "bad elemSize")) return nullptr;
  void* element = fEnd;
  fEnd += elemSize;
  return element;
}

bool hsAppender::Block::PopHead(int32_t elemSize, void* data) {
  if (!hsAssert(fEnd > fBegin, "Empty")) return false;
  if (data) std::memcpy(data, fBegin, size_t(elemSize));
  fBegin += elemSize;
  return true;
}

bool hsAppender::Block::PopTail(int32_t elemSize, void* data) {
  if (!hsAssert(fEnd > fBegin, "Empty")) return false;
  fEnd -= elemSize;
  if (data) std::memcpy(data, fEnd, size_t(elemSize));
  return true;
}

hsAppender::Block* hsAppender::NewBlock() const {
  const int64_t space = std::max<int64_t>(0, int64_t{fElemSize} * fElemCount);
  Block* block = static_cast<Block*>(::operator new(sizeof(Block) + size_t(space)));
  block->fNext = block->fPrev = nullptr;
  block->fBegin = block->fEnd = block->Storage();
  block->fStop = block->Storage() + space;
  return block;
}

void hsAppender::ChainAtHead(Block* block) {
  block->fBegin = block->fEnd = block->fStop;  // it fills downward
  block->fNext = fFirstBlock;
  (fFirstBlock ? fFirstBlock->fPrev : fLastBlock) = block;
  fFirstBlock = block;
}

void hsAppender::ChainAtTail(Block* block) {
  block->fPrev = fLastBlock;
  (fLastBlock ? fLastBlock->fNext : fFirstBlock) = block;
  fLastBlock = block;
}

void hsAppender::Unchain(Block* block) {
  (block->fPrev ? block->fPrev->fNext : fFirstBlock) = block->fNext;
  (block->fNext ? block->fNext->fPrev : fLastBlock) = block->fPrev;
  ::operator delete(block);
}

void* hsAppender::Put(void* element, const void* data) {
  if (!element) return nullptr;
  if (data) std::memcpy(element, data, size_t(fElemSize));
  ++fCount;
  return element;
}

void* hsAppender::Prepend(const void* data) {
  Guard guard(this);
  if (!hsAssert(fElemSize > 0 && fElemCount > 0, "bad appendsize")) return nullptr;
  if (!fFirstBlock || !fFirstBlock->CanPrepend(fElemSize)) ChainAtHead(NewBlock());
  return Put(fFirstBlock->Prepend(fElemSize), data);
}

void* hsAppender::Append(const void* data) {
  Guard guard(this);
  if (!hsAssert(fElemSize > 0 && fElemCount > 0, "bad appendsize")) return nullptr;
  if (!fLastBlock || !fLastBlock->CanAppend(fElemSize)) ChainAtTail(NewBlock());
  return Put(fLastBlock->Append(fElemSize), data);
}

void hsAppender::Append(int32_t count, const void* data) {
  Guard guard(this);
  const char* from = static_cast<const char*>(data);
  int64_t bytes = std::max<int64_t>(0, int64_t{count} * fElemSize);
  if (bytes > 0 && !fLastBlock && !hsAssert(fCount == 0, "uninited count")) return;
  while (bytes > 0) {
    if (!hsAssert(fElemSize > 0 && fElemCount > 0, "bad appendsize")) return;
    if (!fLastBlock || !fLastBlock->CanAppend(fElemSize)) ChainAtTail(NewBlock());
    const int64_t space = (fLastBlock->fStop - fLastBlock->fEnd) / fElemSize * fElemSize;
    const int64_t size = std::min(bytes, space);
    if (from) {
      std::memcpy(fLastBlock->fEnd, from, size_t(size));
      from += size;
    }
    fLastBlock->fEnd += size;
    fCount += int32_t(size / fElemSize);
    bytes -= size;
  }
}

void* hsAppender::PeekHead() const {
  Guard guard(this);
  return fFirstBlock ? fFirstBlock->fBegin : nullptr;
}

bool hsAppender::PopHead(void* data) {
  Guard guard(this);
  if (fCount == 0 || !fFirstBlock->PopHead(fElemSize, data)) return false;
  --fCount;
  if (fFirstBlock->Size() == 0) Unchain(fFirstBlock);
  return true;
}

bool hsAppender::PopTail(void* data) {
  Guard guard(this);
  if (fCount == 0 || !fLastBlock->PopTail(fElemSize, data)) return false;
  --fCount;
  if (fLastBlock->Size() == 0) Unchain(fLastBlock);
  return true;
}

int32_t hsAppender::PopHead(int32_t count, void* data) {
  Guard guard(this);
  char* to = static_cast<char*>(data);
  int32_t left = std::max(0, std::min(count, fCount));
  const int32_t popped = left;
  while (left > 0) {
    const int32_t here = std::min(left, fFirstBlock->Size() / fElemSize);
    const size_t size = size_t(here) * size_t(fElemSize);
    if (to) {
      std::memcpy(to, fFirstBlock->fBegin, size);
      to += size;
    }
    fFirstBlock->fBegin += size;
    fCount -= here;
    left -= here;
    if (fFirstBlock->Size() == 0) Unchain(fFirstBlock);
  }
  hsAssert(fCount >= 0, "bad fElemSize");
  return popped;
}

void hsAppender::Reset() {
  Guard guard(this);
  while (fFirstBlock) Unchain(fFirstBlock);
  fCount = 0;
}

int32_t hsAppender::CopyTo(void* buffer) const {
  Guard guard(this);
  const int32_t size = fCount * fElemSize;
  if (!buffer) return size;
  char* to = static_cast<char*>(buffer);
  for (const Block* block = fFirstBlock; block; block = block->fNext) {
    std::memcpy(to, block->fBegin, size_t(block->Size()));
    to += block->Size();
  }
  hsAssert(to - static_cast<char*>(buffer) == size, "bad size");
  return size;
}

void hsAppender::Validate() const {
  const auto check = [](bool good) { return hsAssert(good, "appender assert failed"); };
  if (!check((fCount == 0) == (fFirstBlock == nullptr)) || !check(!fFirstBlock || fLastBlock)) return;
  int64_t size = 0;
  const Block* prev = nullptr;
  for (const Block* block = fFirstBlock; block; prev = block, block = block->fNext) {
    check(block->Size() % fElemSize == 0);
    check(block->fPrev == prev);
    size += block->Size();
  }
  check(prev == fLastBlock);
  check(size == int64_t{fElemSize} * fCount);
}

void hsAppenderIterator::Reset(const hsAppender* appender) {
  fAppender = appender;
  EnterBlock(appender ? appender->fFirstBlock : nullptr);
}

void hsAppenderIterator::EnterBlock(hsAppender::Block* block) {
  fBlock = block;
  fElem = block ? block->fBegin : nullptr;
}

void* hsAppenderIterator::Next() {
  if (!fBlock) return nullptr;
  char* element = fElem;
  fElem += fAppender->fElemSize;
  if (fElem >= fBlock->fEnd) {
    hsAssert(fBlock->fNext || fBlock == fAppender->fLastBlock, "oops");
    EnterBlock(fBlock->fNext);
  }
  return element;
}

bool hsAppenderIterator::Next(void* data) {
  const void* element = Next();
  if (element && data) std::memcpy(data, element, size_t(fAppender->fElemSize));
  return element != nullptr;
}

int32_t hsAppenderIterator::Next(int32_t count, void* data) {
  char* to = static_cast<char*>(data);
  int32_t copied = 0;
  while (copied < count && Next(static_cast<void*>(to))) {
    ++copied;
    if (to) to += fAppender->fElemSize;
  }
  return copied;
}

void* hsAppenderIterator::NextBlock(int32_t* count) {
  void* elements = fElem;
  const int32_t left = fBlock ? int32_t(fBlock->fEnd - fElem) / fAppender->fElemSize : 0;
  if (count) *count = left;
  if (fBlock) EnterBlock(fBlock->fNext);
  return elements;
}

void hsAppenderReverseIterator::Reset(const hsAppender* appender) {
  fAppender = appender;
  fBlock = appender ? appender->fLastBlock : nullptr;
  fElem = fBlock ? fBlock->fEnd : nullptr;
}

void* hsAppenderReverseIterator::Next() {
  if (!fBlock) return nullptr;
  char* element = fElem -= fAppender->fElemSize;
  if (fElem <= fBlock->fBegin) {
    hsAssert(fBlock->fPrev || fBlock == fAppender->fFirstBlock, "oops");
    fBlock = fBlock->fPrev;
    fElem = fBlock ? fBlock->fEnd : nullptr;
  }
  return element;
}

bool hsAppenderReverseIterator::Next(void* data) {
  const void* element = Next();
  if (element && data) std::memcpy(data, element, size_t(fAppender->fElemSize));
  return element != nullptr;
}
