// Taking a Type 1 font's wrappings off: the PC form's segments, and both layers of encryption.
#include <cstdlib>

#include "gfx/foundation/hsascii.h"
#include "t2k/t1.h"
#include "t2k/t1text.h"

namespace {

constexpr uint8_t kSegmentMark = 128;
constexpr uint8_t kSegmentEnd = 3;

constexpr uint16_t kEexecKey = 55665;
constexpr uint16_t kProgramKey = 4330;

class Cipher {
 public:
  explicit Cipher(uint16_t key) : r_(key) {}
  uint8_t Decrypt(uint8_t cipher) {
    const uint8_t plain = uint8_t(cipher ^ (r_ >> 8));
    r_ = uint16_t((cipher + r_) * 52845u + 22719u);
    return plain;
  }

 private:
  uint16_t r_;
};

// Turns eexec's bytes, one after the other, into plain ones. It watches what it writes for " RD " or " -| ": the number
// before it says how many bytes after it are a program, which has a second layer.
class EexecReader {
 public:
  explicit EexecReader(uint8_t* out) : begin_(out), out_(out) {}

  void Put(uint8_t cipher) {
    uint8_t plain = eexec_.Decrypt(cipher);
    if (byteCount_) {
      *out_++ = program_.Decrypt(plain);
      if (--byteCount_ == 0) programEnd_ = out_;
      return;
    }
    *out_++ = plain;
    if (out_ - programEnd_ < 4 || !IsProgramMark(out_ - 4)) return;
    byteCount_ = NumberEndingAt(begin_, out_ - 4);
    program_ = Cipher(kProgramKey);
  }
  bool InProgram() const { return byteCount_ != 0; }
  uint8_t* End() const { return out_; }

 private:
  uint8_t* begin_;
  uint8_t* out_;
  uint8_t* programEnd_ = begin_;  // the window never reaches back into a program
  Cipher eexec_{kEexecKey};
  Cipher program_{kProgramKey};
  uint32_t byteCount_ = 0;
};

int HexValue(uint8_t c) {
  if (hsAsciiIsDigit(char(c))) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// The next hexadecimal digit's value after blanks, or -1.
int NextHexDigit(const uint8_t* bytes, uint32_t* at, uint32_t length) {
  while (*at < length && (bytes[*at] == ' ' || bytes[*at] == '\n' || bytes[*at] == '\r' || bytes[*at] == '\t')) ++*at;
  return *at < length ? HexValue(bytes[(*at)++]) : -1;
}

bool LooksHexadecimal(const uint8_t* bytes, uint32_t length) {
  for (uint32_t i = 0; i < 4; ++i) {
    if (i >= length || HexValue(bytes[i]) < 0) return false;
  }
  return true;
}

}  // namespace

uint8_t* ExtractPureT1FromPCType1(uint8_t* bytes, uint32_t* length) {
  const uint32_t total = *length;
  uint32_t in = 0, out = 0;
  while (in < total) {
    if (bytes[in] != kSegmentMark || total - in < 2) return nullptr;
    const uint8_t type = bytes[in + 1];
    if (type == kSegmentEnd) break;
    if (total - in < 6) return nullptr;
    const uint8_t* size = bytes + in + 2;
    const uint32_t count =
        uint32_t(size[0]) | uint32_t(size[1]) << 8 | uint32_t(size[2]) << 16 | uint32_t(size[3]) << 24;
    in += 6;
    if (count > total - in) return nullptr;
    std::memmove(bytes + out, bytes + in, count);
    in += count;
    out += count;
  }
  *length = out;
  return bytes;
}

uint32_t DecryptEexec(tsiMemObject* mem, uint8_t* bytes, uint32_t begin, uint32_t length) {
  EexecReader reader(bytes + begin);
  if (LooksHexadecimal(bytes + begin, length - begin)) {
    // Two digits are read for each byte that is written, so writing never overtakes reading.
    for (uint32_t at = begin;;) {
      const int high = NextHexDigit(bytes, &at, length);
      const int low = high < 0 ? -1 : NextHexDigit(bytes, &at, length);
      if (low < 0) break;
      reader.Put(uint8_t(high << 4 | low));
    }
  } else {
    for (uint32_t at = begin; at < length; ++at) reader.Put(bytes[at]);
    tsi_Assert(mem, !reader.InProgram());
  }
  return uint32_t(reader.End() - bytes);
}
