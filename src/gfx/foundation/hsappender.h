// A sequence that grows at both ends without ever moving an element.
//
// Elements are raw bytes of one size, in a chain of blocks. A block made for appending fills upward and one made
// for prepending fills downward from its end, so either end is cheap. Every public operation validates the whole chain
// on its way in and out: "appender assert failed".
#pragma once

#include <cstddef>
#include <cstdint>

class hsAppender {
 public:
  // elemSize in bytes; elemCount elements to a block. Both above 0.
  hsAppender(int32_t elemSize, int32_t elemCount) : fElemSize(elemSize), fElemCount(elemCount) {}
  ~hsAppender() { Reset(); }
  hsAppender(const hsAppender&) = delete;
  hsAppender& operator=(const hsAppender&) = delete;

  int32_t Count() const { return fCount; }
  int32_t ElemSize() const { return fElemSize; }

  // One element more at an end, copied from data unless that is null. Returns its address, valid until it is popped.
  void* Prepend(const void* data = nullptr);
  void* Append(const void* data = nullptr);
  void Append(int32_t count, const void* data);

  void* PeekHead() const;  // null when empty
  // False when empty. data may be null.
  bool PopHead(void* data);
  bool PopTail(void* data);
  // Up to count elements; returns how many there were.
  int32_t PopHead(int32_t count, void* data);

  void Reset();
  // All elements in order; returns their size in bytes, which is all it does without a buffer.
  int32_t CopyTo(void* buffer) const;

 private:
  friend class hsAppenderIterator;
  friend class hsAppenderReverseIterator;
  class Guard;

  struct alignas(std::max_align_t) Block {
    Block* fNext;
    Block* fPrev;
    char* fBegin;  // first occupied byte
    char* fEnd;    // after the last occupied byte
    char* fStop;   // after the storage, which follows the block

    char* Storage() { return reinterpret_cast<char*>(this + 1); }
    int32_t Size() const { return int32_t(fEnd - fBegin); }
    bool CanPrepend(int32_t size) { return fBegin - Storage() >= size; }
    bool CanAppend(int32_t size) const { return fStop - fEnd >= size; }
    void* Prepend(int32_t elemSize);
    void* Append(int32_t elemSize);
    bool PopHead(int32_t elemSize, void* data);
    bool PopTail(int32_t elemSize, void* data);
  };

  Block* NewBlock() const;
  void ChainAtHead(Block* block);
  void ChainAtTail(Block* block);
  void Unchain(Block* block);
  void* Put(void* element, const void* data);
  void Validate() const;

  Block* fFirstBlock = nullptr;
  Block* fLastBlock = nullptr;
  int32_t fElemSize;
  int32_t fElemCount;
  int32_t fCount = 0;  // elements held
};

// Walks an appender from its head. Good only while the appender doesn't change.
class hsAppenderIterator {
 public:
  explicit hsAppenderIterator(const hsAppender* appender) { Reset(appender); }
  void Reset(const hsAppender* appender);

  void* Next();  // null when there is no more
  bool Next(void* data);
  int32_t Next(int32_t count, void* data);  // returns how many were copied
  // What is left of the current block, and how many elements that is; null and 0 at the end.
  void* NextBlock(int32_t* count);

 private:
  void EnterBlock(hsAppender::Block* block);

  const hsAppender* fAppender = nullptr;
  hsAppender::Block* fBlock = nullptr;
  char* fElem = nullptr;
};

// Walks an appender from its tail.
class hsAppenderReverseIterator {
 public:
  explicit hsAppenderReverseIterator(const hsAppender* appender) { Reset(appender); }
  void Reset(const hsAppender* appender);

  void* Next();
  bool Next(void* data);

 private:
  const hsAppender* fAppender = nullptr;
  hsAppender::Block* fBlock = nullptr;
  char* fElem = nullptr;  // after the element to come
};
