#include "bob/base/stream.h"

#include <algorithm>
#include <cstdarg>

#include "platform/openfile.h"

bool BobStream::GetLine(std::string& line, size_t most) {
  while (line.size() < most) {
    const int c = GetC();
    if (c == -1) return false;
    line += char(c);
    if (c == '\n') break;
  }
  return true;
}

bool BobStringInput::GetLine(std::string& line, size_t most) {
  const size_t wanted = most - line.size();
  const std::string_view piece(cursor, std::min(left, wanted));
  const size_t newline = piece.find('\n');
  const size_t count = newline == piece.npos ? piece.size() : newline + 1;
  line.append(cursor, count);
  cursor += count;
  left -= count;
  return newline != piece.npos || count == wanted;
}

int BobFileStream::Close() {
  if (!file) return 0;
  const int result = std::fclose(file);
  file = nullptr;
  return result;
}

int BobFileStream::GetC() { return file ? std::fgetc(file) : -1; }
int BobFileStream::PutC(int c) { return file ? std::fputc(c, file) : -1; }

std::unique_ptr<BobStream> bobOpenPlainFile(const char* path, const char* mode) {
  std::unique_ptr<FILE, int (*)(FILE*)> file(openFile(path, mode), std::fclose);
  if (!file) return nullptr;
  auto stream = std::make_unique<BobFileStream>(file.get());
  file.release();  // the stream's now
  return stream;
}

bool bobPutText(BobStream* stream, std::string_view text) {
  for (char c : text)
    if (stream->PutC(uint8_t(c)) == -1) return false;
  return true;
}

bool bobPutFormat(BobStream* stream, const char* format, ...) {
  char buffer[512];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  return bobPutText(stream, std::string_view(buffer, std::min<size_t>(size_t(length), sizeof buffer - 1)));
}
