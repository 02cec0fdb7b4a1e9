// Where the engine reads a font from: bytes in memory, or a callback that fetches them.
//
// A stream over memory doesn't copy it: the caller keeps the bytes alive and unchanged, and tables are read in place.
// Positions count from the beginning of the font, also in a sub-stream. All numbers are big-endian. Reading beyond the
// end is an error of the font (kT2KDamagedFont), never a read outside its bytes.
#pragma once

#include "gfx/foundation/hsbytes.h"
#include "t2k/tsimem.h"

// Copies count bytes at position to destination; false if it can't. Must not throw.
using ReadToRamFunc = bool (*)(void* id, uint8_t* destination, uint32_t position, uint32_t count);

struct InputStream {
  const uint8_t* privateBase;  // byte 0 of the font; null if fed by the callback
  ReadToRamFunc readToRam;
  void* nonRamID;  // the callback's own
  uint8_t tmp;     // the byte read last through the callback
  uint8_t* copy;   // a sub-stream's own copy of what the callback gave, or null
  uint32_t pos;
  uint32_t maxPos;   // one past the last byte
  uint32_t posZero;  // where the stream begins
  tsiMemObject* mem;
};

// Over length bytes in memory. Null on failure (null bytes count as none).
InputStream* New_InputStream3(tsiMemObject* mem, const uint8_t* bytes, uint32_t length, int* errCode);
// Over a callback.
InputStream* New_NonRamInputStream(tsiMemObject* mem, ReadToRamFunc read, void* id, uint32_t length, int* errCode);
void Delete_InputStream(InputStream* stream, int* errCode);

// What follows is for inside the engine and throws tsiError.

// A part of a stream, cut to what the stream has, for the length of a scope. Over a callback it fetches the part once.
class SubStream {
 public:
  SubStream(const InputStream& whole, uint32_t offset, uint32_t length);
  ~SubStream();
  SubStream(const SubStream&) = delete;
  SubStream& operator=(const SubStream&) = delete;

  InputStream& operator*() { return stream_; }
  InputStream* operator->() { return &stream_; }
  // Where it begins; valid for the scope, or null if there is nothing.
  const uint8_t* Bytes() const { return stream_.privateBase ? stream_.privateBase + stream_.posZero : nullptr; }

 private:
  InputStream stream_;
};

inline uint32_t BytesLeft(const InputStream& in) { return in.pos < in.maxPos ? in.maxPos - in.pos : 0; }

inline void Rewind(InputStream& in) { in.pos = in.posZero; }
// To a position counted from where the stream begins.
void SeekTo(InputStream& in, uint32_t offset);
void SkipBytes(InputStream& in, uint32_t count);
void ReadBytes(InputStream& in, uint8_t* destination, uint32_t count);

// Bytes of a font that are wanted for as long as it is open.
struct KeptBytes {
  const uint8_t* at;
  uint8_t* copy;  // a block that holds them, or null if they lie in the caller's memory
};
// The next count of them; whoever keeps them frees the copy.
KeptBytes KeepBytes(InputStream& in, uint32_t count);

uint8_t ReadByteThroughCallback(InputStream& in);

inline uint8_t ReadUInt8(InputStream& in) {
  tsi_Assert(in.mem, in.pos < in.maxPos);
  if (!in.privateBase) return ReadByteThroughCallback(in);
  return in.privateBase[in.pos++];
}

inline uint16_t ReadUInt16(InputStream& in) {
  if (in.privateBase && BytesLeft(in) >= 2) [[likely]] {
    const uint8_t* p = in.privateBase + in.pos;
    in.pos += 2;
    return hsBig16(p);
  }
  const uint8_t high = ReadUInt8(in);
  return uint16_t(high << 8 | ReadUInt8(in));
}

inline int16_t ReadInt16(InputStream& in) { return int16_t(ReadUInt16(in)); }

inline uint32_t ReadUInt32(InputStream& in) {
  const uint32_t high = ReadUInt16(in);
  return high << 16 | ReadUInt16(in);
}

// A number in groups of 7 bits, the low group first; the top bit of a byte says that another follows. Five bytes at
// the most, bits beyond 32 are lost.
uint32_t ReadSevenBitGroups(InputStream& in);
