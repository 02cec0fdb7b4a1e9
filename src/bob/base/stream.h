// Byte streams: how the language reads source and object files and writes everything it prints.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

class BobStream {
 public:
  virtual ~BobStream() = default;
  virtual int Close() { return 0; }  // 0 on success
  virtual int GetC() { return -1; }  // the next byte, or -1
  // Appends bytes up to a newline, that one included, or until `line` has `most`: false if the stream ended before.
  virtual bool GetLine(std::string& line, size_t most);
  virtual int PutC(int) { return -1; }  // the byte written, or -1
};

// Reads as end of file and drops what is written.
class BobNullStream : public BobStream {
 public:
  int PutC(int c) override { return c; }
};

// Reads bytes that it borrows.
class BobStringInput : public BobStream {
 public:
  explicit BobStringInput(std::string_view bytes) : cursor(bytes.data()), left(bytes.size()) {}
  int GetC() override { return left == 0 ? -1 : (--left, uint8_t(*cursor++)); }
  bool GetLine(std::string& line, size_t most) override;

 private:
  const char* cursor;
  size_t left;
};

// Reads a copy of its own.
class BobStringCopyInput : public BobStream {
 public:
  explicit BobStringCopyInput(std::string_view bytes) : copy(bytes), input(copy) {}
  int GetC() override { return input.GetC(); }
  bool GetLine(std::string& line, size_t most) override { return input.GetLine(line, most); }

 private:
  std::string copy;
  BobStringInput input;
};

// Writes into a buffer that it borrows; a full buffer refuses.
class BobStringOutput : public BobStream {
 public:
  BobStringOutput(char* buffer, size_t size) : start(buffer), cursor(buffer), end(buffer + size) {}
  int PutC(int c) override {
    if (cursor == end) return -1;
    *cursor++ = char(c);
    return c;
  }
  size_t count() const { return size_t(cursor - start); }

 private:
  char *start, *cursor, *end;
};

// Forwards to whatever stream a field holds at that moment.
class BobIndirectStream : public BobStream {
 public:
  explicit BobIndirectStream(BobStream* const* field) : field(field) {}
  int GetC() override { return (*field)->GetC(); }
  int PutC(int c) override { return (*field)->PutC(c); }

 private:
  BobStream* const* field;
};

// A C library file, closed at the latest with the stream.
class BobFileStream : public BobStream {
 public:
  explicit BobFileStream(FILE* file) : file(file) {}
  ~BobFileStream() override { Close(); }
  int Close() override;
  int GetC() override;
  int PutC(int c) override;

 private:
  FILE* file;
};

// Null if the C library doesn't open it in that mode.
std::unique_ptr<BobStream> bobOpenPlainFile(const char* path, const char* mode);

// Each returns false when a byte is refused.
bool bobPutText(BobStream* stream, std::string_view text);
[[gnu::format(printf, 2, 3)]] bool bobPutFormat(BobStream* stream, const char* format, ...);
