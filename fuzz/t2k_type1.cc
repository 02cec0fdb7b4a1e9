// Any bytes as a Type 1 font. Bytes that don't begin like one ("%" or a segment's mark) are read as the plain text of
// a private portion and encrypted first: changes to an encrypted font garble all that follows them.
#include <algorithm>
#include <string>
#include <vector>

#include "t2k/t1text.h"
#include "t2k_font.h"

namespace {

class Encrypter {
 public:
  explicit Encrypter(uint16_t key) : r_(key) {}
  uint8_t Encrypt(uint8_t plain) {
    const auto cipher = uint8_t(plain ^ (r_ >> 8));
    r_ = uint16_t((cipher + r_) * 52845u + 22719u);
    return cipher;
  }

 private:
  uint16_t r_;
};

std::vector<uint8_t> FontAround(const uint8_t* text, size_t size) {
  const std::string head = "%!PS\n/FontMatrix [0.001 0 0.0002 0.001 0 0] def currentfile eexec\n";
  std::vector<uint8_t> font(head.begin(), head.end());
  Encrypter outer(55665), inner(4330);
  uint32_t programLeft = 0;
  for (size_t i = 0; i < size; ++i) {
    const bool inProgram = programLeft > 0;
    font.push_back(outer.Encrypt(inProgram ? inner.Encrypt(text[i]) : text[i]));
    if (inProgram) {
      --programLeft;
    } else if (i >= 3 && IsProgramMark(text + i - 3)) {
      programLeft = uint32_t(std::min<size_t>(NumberEndingAt(text, text + i - 3), size - i - 1));
      inner = Encrypter(4330);
    }
  }
  return font;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!size || data[0] == '%' || data[0] == 128) {
    TryFont(data, size, kFontType1);
    return 0;
  }
  const std::vector<uint8_t> font = FontAround(data, std::min<size_t>(size, 1 << 18));
  TryFont(font.data(), font.size(), kFontType1);
  return 0;
}
