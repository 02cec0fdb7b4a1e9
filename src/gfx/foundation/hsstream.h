// Byte streams in and out.
//
// Everything is made of Read and Write. Numbers are little-endian on every host. A short read or write fails
// "throw if false"; what may be short is asked for with AtEnd.
#pragma once

#include <cstdint>

#include "gfx/foundation/hspoint.h"

class hsInputStream {
 public:
  virtual ~hsInputStream() = default;

  virtual void Rewind() = 0;
  virtual void Skip(int32_t count) = 0;
  virtual void Read(int32_t count, void* buffer) = 0;
  virtual bool AtEnd();
  virtual int32_t GetPosition() const = 0;  // bytes from the start

  uint8_t ReadByte();
  uint16_t ReadShort();
  uint32_t ReadLong();
  void ReadShorts(int32_t count, uint16_t buffer[]);
  void ReadLongs(int32_t count, uint32_t buffer[]);
  hsFixed ReadFixed() { return hsFixed(ReadLong()); }
  void ReadPoint(hsPoint* value);
  // A length byte and as many characters, into a buffer of up to 256: a zero follows them. Returns the length.
  int32_t ReadPString(char buffer[]);
};

class hsOutputStream {
 public:
  virtual ~hsOutputStream() = default;

  virtual void Write(int32_t count, const void* buffer);

  void WriteBool(bool value) { WriteByte(value ? 1 : 0); }
  void WriteByte(uint8_t value) { Write(1, &value); }
  void WriteShort(uint16_t value);
  void WriteLong(uint32_t value);
  void WriteShorts(int32_t count, const uint16_t values[]);
  void WriteLongs(int32_t count, const uint32_t values[]);
  void WriteFixed(hsFixed value) { WriteLong(uint32_t(value)); }
  void WritePoint(const hsPoint& value);
  // At most 255 characters ("bad len"; more are cut).
  void WritePString(const char* string);
};

// Both ways, over something that may know its size.
class hsStream : public hsInputStream, public hsOutputStream {
 public:
  virtual void Seek(int32_t position) = 0;  // from the start
  virtual int32_t GetEOF();                 // size in bytes
  virtual void CopyToMem(void* mem);        // all of it, from the start
};
