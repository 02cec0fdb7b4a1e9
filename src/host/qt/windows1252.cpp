#include "host/qt/windows1252.h"

#include <algorithm>

namespace {

constexpr char16_t kControlPictures = 0x2400;

// 0x80 to 0x9F; the five without a meaning keep their own number.
constexpr char16_t kUpperControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                         0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                         0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QChar characterFromByte(uint8_t byte) {
  if (byte < 0x20 && byte != '\t') return QChar(char16_t(kControlPictures + byte));
  if (byte >= 0x80 && byte < 0xA0) return QChar(kUpperControls[byte - 0x80]);
  return QChar(char16_t(byte));
}

char byteFromCharacter(QChar c) {
  const char16_t code = c.unicode();
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return char(code);
  if (code >= kControlPictures && code < kControlPictures + 0x20) return char(code - kControlPictures);
  const auto* found = std::find(std::begin(kUpperControls), std::end(kUpperControls), code);
  return found == std::end(kUpperControls) ? '?' : char(0x80 + (found - kUpperControls));
}

}  // namespace

QString textFromBytes(std::string_view bytes) {
  QString text;
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (bytes.substr(i, 2) == "\r\n") {
      text += QChar('\n');
      ++i;
    } else {
      text += characterFromByte(uint8_t(bytes[i]));
    }
  }
  return text;
}

std::string bytesFromText(const QString& text) {
  std::string bytes;
  for (QChar c : text) bytes += byteFromCharacter(c);
  return bytes;
}
