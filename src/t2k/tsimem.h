// The memory of one opened font, and how its errors leave.
//
// Everything that belongs to a font (tables, glyphs, bitmaps, the scaler) is a block of one memory handler, which
// knows them all by a table of 256 pointers. An error anywhere in the engine is thrown, caught at the public entry
// and answered as a code; the font is finished then. Its blocks are freed at once. Only the objects that a caller
// holds (handler, stream, font, scaler) stay as empty shells: every later call on one answers the same code, and its
// Delete call frees it. A caller therefore closes a font that has failed exactly like one that hasn't.
//
// Blocks hold plain data only: nothing runs when they are freed wholesale.
#pragma once

#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

// Error codes, as every errCode argument reports them; 0 is success.
enum tsiErrorCode : int {
  kT2KNullHandler = 10000,       // null memory handler at an entry
  kT2KNullMatrix = 10001,        // null transformation matrix
  kT2KBadResolution = 10002,     // resolution below 1
  kT2KBadGreyLevel = 10003,      // grey level above 5
  kT2KBadFraction = 10004,       // fractional pen position outside 0..63
  kT2KNoGlyph = 10005,           // no such glyph; also components nested too deep or too many of them
  kT2KTooManyPoints = 10006,     // more than 32,000 points in a glyph
  kT2KDamagedScaler = 10007,     // a stamp of the scaler has changed
  kT2KOutOfMemory = 10008,       // out of memory, or beyond kMaxBlockBytes or kMaxTotalBytes
  kT2KDamagedBlock = 10009,      // a block's head or tail has been written over
  kT2KNullHandlerAlloc = 10011,  // null memory handler on allocation
  kT2KTooManyBlocks = 10012,     // more than 256 live blocks
  kT2KNoFreeSlot = 10013,        // the pointer table is full although its count says otherwise
  kT2KUnknownReAlloc = 10014,    // reallocation of a block that isn't in the table
  kT2KUnknownBlock = 10015,      // freeing of a block that isn't in the table
  kT2KBadCount = 10017,          // the table's count would fall below 0
  kT2KDamagedHandler = 10019,    // the handler's state word has changed
  kT2KBadCmapFormat = 10021,     // no character map of a format that can be read
  kT2KDamagedFont = 10030,       // the font's bytes break a rule of their format, or end too early
  kT2KBadFontType = 10031,       // New_sfntClass: neither 1 (Type 1) nor 2 or 0x16 (sfnt)
};

struct tsiError {
  int code;
};

inline constexpr int kMaxPointers = 256;
inline constexpr uint32_t kMaxBlockBytes = 64u << 20;   // no single block is larger
inline constexpr uint32_t kMaxTotalBytes = 128u << 20;  // nor all blocks of a font together

struct tsiMemObject {
  uint32_t stamp1;      // kHandlerStamp1
  int32_t numPointers;  // live blocks
  int32_t maxPointers;  // kMaxPointers
  void* base[kMaxPointers];
  // Per slot: not null for an object that the caller holds, which survives a failure as a shell. It makes the object
  // forget what it owned.
  void (*forget[kMaxPointers])(void* object);
  int32_t firstFree;    // no slot below it is free
  int32_t slotsInUse;   // all slots from here on are free
  uint32_t state;       // kHandlerState while sound
  uint32_t totalBytes;  // payload of all live blocks
  int failedCode;       // 0, or the error that finished this font
  bool foundNoMemory;   // that was the machine's want of memory, not what the font asks for
  uint32_t stamp2;      // kHandlerStamp2
};

inline constexpr uint32_t kHandlerStamp1 = 0xAB1500FF;
inline constexpr uint32_t kHandlerStamp2 = 0xA5A55A5A;
inline constexpr uint32_t kHandlerState = 0xAA005501;

// A new handler, or null with kT2KOutOfMemory.
tsiMemObject* tsi_NewMemhandler(int* errCode);
// Frees the handler and whatever is still in it. Null is ignored.
void tsi_DeleteMemhandler(tsiMemObject* mem);

// The three below throw tsiError, and std::bad_alloc when there is no memory. A size of 0 makes a block; null blocks
// are ignored (reallocated: stay null). Blocks are aligned to 8 bytes and not zeroed.
void* tsi_AllocMem(tsiMemObject* mem, uint32_t size);
void* tsi_ReAllocMem(tsiMemObject* mem, void* block, uint32_t size);
void tsi_DeAllocMem(tsiMemObject* mem, void* block);

[[noreturn]] void tsi_Error(tsiMemObject* mem, int code);

// The engine's assertion on font data.
inline void tsi_Assert(tsiMemObject* mem, bool condition, int code = kT2KDamagedFont) {
  if (!condition) [[unlikely]]
    tsi_Error(mem, code);
}

// Frees all blocks but the callers' shells and remembers the code.
void tsi_TearDown(tsiMemObject* mem, int code);

// Frees a caller's shell, whatever state the font is in.
void tsi_FreeShell(tsiMemObject* mem, void* block);

// Marks a block as an object that its caller holds; see tsiMemObject::forget.
void tsi_HoldByCaller(tsiMemObject* mem, void* block, void (*forget)(void* object));

// An array of plain elements; count is checked before it is multiplied.
template <class T>
T* tsi_NewArray(tsiMemObject* mem, uint32_t count) {
  if (count > kMaxBlockBytes / sizeof(T)) tsi_Error(mem, kT2KOutOfMemory);
  return static_cast<T*>(tsi_AllocMem(mem, uint32_t(count * sizeof(T))));
}

// A zeroed record.
template <class T>
T* tsi_NewRecord(tsiMemObject* mem) {
  void* block = tsi_AllocMem(mem, sizeof(T));
  std::memset(block, 0, sizeof(T));
  return static_cast<T*>(block);
}

// Owns one block for the length of a scope; for work that is thrown away when it fails halfway.
template <class T>
class tsiBlock {
 public:
  tsiBlock(tsiMemObject* mem, uint32_t count) : mem_(mem), data_(tsi_NewArray<T>(mem, count)) {}
  ~tsiBlock() {
    if (data_ && !mem_->failedCode) tsi_DeAllocMem(mem_, data_);
  }
  tsiBlock(const tsiBlock&) = delete;
  tsiBlock& operator=(const tsiBlock&) = delete;

  void Resize(uint32_t count) {
    if (count > kMaxBlockBytes / sizeof(T)) tsi_Error(mem_, kT2KOutOfMemory);
    data_ = static_cast<T*>(tsi_ReAllocMem(mem_, data_, uint32_t(count * sizeof(T))));
  }
  T* get() const { return data_; }
  T& operator[](size_t index) const { return data_[index]; }
  T* Release() { return std::exchange(data_, nullptr); }

 private:
  tsiMemObject* mem_;
  T* data_;
};

// Space for count plain elements for the length of a scope: kInline of them in place, more in a block.
template <class T, uint32_t kInline>
class tsiBuffer {
 public:
  tsiBuffer(tsiMemObject* mem, uint32_t count) : mem_(mem) { Renew(count); }
  ~tsiBuffer() { Drop(); }
  tsiBuffer(const tsiBuffer&) = delete;
  tsiBuffer& operator=(const tsiBuffer&) = delete;

  // Allocates anew; what was there is lost.
  void Renew(uint32_t count) {
    Drop();
    if (count > kInline) data_ = tsi_NewArray<T>(mem_, count);
  }
  T* get() { return data_; }
  const T* get() const { return data_; }

 private:
  void Drop() {
    if (data_ != inline_) tsi_DeAllocMem(mem_, data_);
    data_ = inline_;
  }

  tsiMemObject* mem_;
  T* data_ = inline_;
  T inline_[kInline];
};

// Runs the body of a public entry and makes a code of what it throws. A font that has failed before answers its old
// code at once. The result is the body's, or a default one (null, 0) on failure.
template <class Body>
auto tsi_Enter(tsiMemObject* mem, int* errCode, Body body) -> decltype(body()) {
  using Result = decltype(body());
  int code = !mem ? kT2KNullHandler : mem->failedCode;
  if (!code) {
    try {
      if (errCode) *errCode = 0;
      return body();
    } catch (const tsiError& error) {
      code = error.code;
    } catch (const std::bad_alloc&) {
      code = kT2KOutOfMemory;
      mem->foundNoMemory = true;
    }
    tsi_TearDown(mem, code);
  }
  if (errCode) *errCode = code;
  return Result();
}

// A Delete call on an object that the caller holds: body frees what it owns, then the object itself goes. On a font
// that has failed only the shell is left to free; errCode gets the font's code.
template <class Body>
void tsi_DeleteHeld(tsiMemObject* mem, void* object, int* errCode, Body body) {
  tsi_Enter(mem, errCode, body);
  if (mem) tsi_FreeShell(mem, object);
}
