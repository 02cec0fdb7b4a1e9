// Streams over files: by the C library's handle, by a reference of the operating system, and the same over memory.
#pragma once

#include <cstdio>
#include <vector>

#include "gfx/foundation/hsstream.h"

class hsFileStream : public hsStream {
 public:
  hsFileStream() = default;
  ~hsFileStream() override { Close(); }
  hsFileStream(const hsFileStream&) = delete;
  hsFileStream& operator=(const hsFileStream&) = delete;

  // mode as for fopen. False when the file doesn't open.
  bool Open(const char* name, const char* mode = "rb");
  void Close();  // harmless when closed

  void Rewind() override { Seek(0); }
  void Skip(int32_t count) override { Seek(hsWrapAdd(fPosition, count)); }
  void Seek(int32_t position) override;
  void Read(int32_t count, void* buffer) override;
  void Write(int32_t count, const void* buffer) override;
  bool AtEnd() override;
  int32_t GetPosition() const override { return fPosition; }
  int32_t GetEOF() override;
  void CopyToMem(void* mem) override;

 private:
  std::FILE* fFile = nullptr;
  int32_t fPosition = 0;
};

// A file that someone else has opened and will close.
class hsFileRefStream : public hsStream {
 public:
  static constexpr int kNoRef = -1;

  int GetRef() const { return fRef; }
  void SetRef(int ref);  // "bad ref" for -1

  void Rewind() override { Seek(0); }
  void Skip(int32_t count) override { Seek(hsWrapAdd(fPosition, count)); }
  void Seek(int32_t position) override;
  void Read(int32_t count, void* buffer) override;
  void Write(int32_t count, const void* buffer) override;
  int32_t GetPosition() const override { return fPosition; }
  int32_t GetEOF() override;

 private:
  int fRef = kNoRef;
  int32_t fPosition = 0;
};

// Bytes in memory. Writing past the end makes it longer.
class hsMemoryStream : public hsStream {
 public:
  hsMemoryStream() = default;
  hsMemoryStream(const void* bytes, int32_t count);

  void Rewind() override { fPosition = 0; }
  void Skip(int32_t count) override { Seek(hsWrapAdd(fPosition, count)); }
  void Seek(int32_t position) override;
  void Read(int32_t count, void* buffer) override;
  void Write(int32_t count, const void* buffer) override;
  bool AtEnd() override { return fPosition >= GetEOF(); }
  int32_t GetPosition() const override { return fPosition; }
  int32_t GetEOF() override { return int32_t(fBytes.size()); }
  void CopyToMem(void* mem) override;

 private:
  std::vector<uint8_t> fBytes;
  int32_t fPosition = 0;  // 0 to the size
};
