#include "gfx/foundation/hsfilestream.h"

#include <algorithm>
#include <cstring>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "gfx/foundation/hsdebug.h"
#include "platform/openfile.h"

bool hsFileStream::Open(const char* name, const char* mode) {
  Close();
  fFile = openFile(name, mode);
  fPosition = 0;
  return fFile != nullptr;
}

void hsFileStream::Close() {
  if (!fFile) return;
  std::FILE* file = fFile;
  fFile = nullptr;  // first, so that a report which throws doesn't leave it to be closed twice
  const int flushed = std::fflush(file), closed = std::fclose(file);
  if (flushed != 0) hsDebugMessage("fflush failed", flushed);
  if (closed != 0) hsDebugMessage("fclose failed", closed);
}

void hsFileStream::Seek(int32_t position) {
  hsThrowIfFalse(fFile && position >= 0);
  fPosition = position;
  hsThrowIfFalse(std::fseek(fFile, position, SEEK_SET) == 0);
}

void hsFileStream::Read(int32_t count, void* buffer) {
  hsThrowIfFalse(fFile && count >= 0 && std::fread(buffer, 1, size_t(count), fFile) == size_t(count));
  fPosition += count;
}

void hsFileStream::Write(int32_t count, const void* buffer) {
  hsThrowIfFalse(fFile && count >= 0 && std::fwrite(buffer, 1, size_t(count), fFile) == size_t(count));
  fPosition += count;
}

bool hsFileStream::AtEnd() { return !fFile || fPosition >= GetEOF(); }

int32_t hsFileStream::GetEOF() {
  hsThrowIfFalse(fFile != nullptr);
  std::fseek(fFile, 0, SEEK_END);
  const long size = std::ftell(fFile);
  std::fseek(fFile, fPosition, SEEK_SET);
  hsThrowIfFalse(size >= 0 && size <= INT32_MAX);
  return int32_t(size);
}

void hsFileStream::CopyToMem(void* mem) {
  const int32_t position = fPosition, size = GetEOF();
  Rewind();
  Read(size, mem);
  Seek(position);
}

void hsFileRefStream::SetRef(int ref) {
  hsAssert(ref != kNoRef, "bad ref");
  fRef = ref;
  fPosition = 0;
}

void hsFileRefStream::Read(int32_t count, void* buffer) {
  if (!hsAssert(fRef != kNoRef, "fRef uninitialized")) return;
  hsThrowIfFalse(count >= 0 && ::read(fRef, buffer, size_t(count)) == count);
  fPosition += count;
}

void hsFileRefStream::Write(int32_t count, const void* buffer) {
  if (!hsAssert(fRef != kNoRef, "fRef uninitialized")) return;
  hsThrowIfFalse(count >= 0 && ::write(fRef, buffer, size_t(count)) == count);
  fPosition += count;
}

void hsFileRefStream::Seek(int32_t) { hsAssert(false, "Seek"); }

int32_t hsFileRefStream::GetEOF() {
  hsAssert(false, "geteof");
  return 0;
}

hsMemoryStream::hsMemoryStream(const void* bytes, int32_t count)
    : fBytes(static_cast<const uint8_t*>(bytes), static_cast<const uint8_t*>(bytes) + count) {}

void hsMemoryStream::Seek(int32_t position) {
  hsThrowIfFalse(position >= 0 && position <= GetEOF());
  fPosition = position;
}

void hsMemoryStream::Read(int32_t count, void* buffer) {
  hsThrowIfFalse(count >= 0 && count <= GetEOF() - fPosition);
  if (count > 0) std::memcpy(buffer, fBytes.data() + fPosition, size_t(count));
  fPosition += count;
}

void hsMemoryStream::Write(int32_t count, const void* buffer) {
  hsThrowIfFalse(count >= 0 && count <= INT32_MAX - fPosition);
  if (count == 0) return;
  fBytes.resize(std::max(fBytes.size(), size_t(fPosition) + size_t(count)));
  std::memcpy(fBytes.data() + fPosition, buffer, size_t(count));
  fPosition += count;
}

void hsMemoryStream::CopyToMem(void* mem) {
  if (!fBytes.empty()) std::memcpy(mem, fBytes.data(), fBytes.size());
}
