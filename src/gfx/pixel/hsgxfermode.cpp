#include "gfx/pixel/hsgxfermode.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgcolortable.h"
#include "gfx/pixel/lerp.h"

namespace {

uint16_t Pack(hsGColor32 c) { return hsPack32To16(c); }

uint16_t LerpTo16(hsGColor32 s, uint32_t d, uint32_t scale) {
  return hsPack16(Lerp(hsColor32R(s) >> 2, hsRed6(d), scale), Lerp(hsColor32G(s) >> 3, hsGreen5(d), scale),
                  Lerp(hsColor32B(s) >> 3, hsBlue5(d), scale));
}

// The palette walk that remembers how far each index fell short.
class ErrorCarrier {
 public:
  explicit ErrorCarrier(const hsGColorTable* table) : fColors(table->Colors()), fInverse(table->GetInverseTable()) {}

  uint8_t Next(uint32_t r, uint32_t g, uint32_t b) {
    const int32_t vr = fR + int32_t(r), vg = fG + int32_t(g), vb = fB + int32_t(b);
    const uint8_t index = fInverse[hsInverseCell(Clamped(vr), Clamped(vg), Clamped(vb))];
    const hsGColor32 entry = fColors[index];
    fR = vr - int32_t(hsColor32R(entry));
    fG = vg - int32_t(hsColor32G(entry));
    fB = vb - int32_t(hsColor32B(entry));
    return index;
  }

 private:
  static uint32_t Clamped(int32_t v) { return uint32_t(std::clamp(v, 0, 255)); }

  const hsGColor32* fColors;
  const uint8_t* fInverse;
  int32_t fR = 0, fG = 0, fB = 0;
};

// src + device * u / 256 for each channel, where the source is scaled already.
uint16_t Over16(uint32_t r6, uint32_t g5, uint32_t b5, uint32_t d, uint32_t u) {
  return hsPack16(r6 + ((hsRed6(d) * u) >> 8), g5 + ((hsGreen5(d) * u) >> 8), b5 + ((hsBlue5(d) * u) >> 8));
}

uint32_t Over8(hsGColor32 s, hsGColor32 e, uint32_t u) {
  const auto over = [u](uint32_t sc, uint32_t ec) { return (sc + ((ec * u) >> 8)) & 255; };
  return hsInverseCell(over(hsColor32R(s), hsColor32R(e)), over(hsColor32G(s), hsColor32G(e)),
                       over(hsColor32B(s), hsColor32B(e)));
}

uint8_t OverA(uint32_t s, uint32_t d) { return uint8_t(s + ((d * (256 - s)) >> 8)); }

}  // namespace

void hsGSrcMode::Xfer16(int32_t count, const hsGColor32* src, uint16_t* dst, const uint8_t* alpha) {
  if (!hsAssert(count > 0, "bad count")) return;
  if (!alpha) {
    for (int32_t i = 0; i < count; ++i) dst[i] = Pack(src[i]);
    return;
  }
  for (int32_t i = 0; i < count; ++i) {
    const uint32_t c = alpha[i];
    if (c == 255) {
      dst[i] = Pack(src[i]);
    } else if (c != 0) {
      dst[i] = LerpTo16(src[i], dst[i], c + 1);
    }
  }
}

void hsGSrcMode::Xfer8(int32_t count, const hsGColor32* src, uint8_t* dst, const hsGColorTable* table,
                       const uint8_t* alpha) {
  ErrorCarrier carrier(table);
  for (int32_t i = 0; i < count; ++i) {
    uint32_t r = hsColor32R(src[i]), g = hsColor32G(src[i]), b = hsColor32B(src[i]);
    if (alpha && alpha[i] != 255) {
      if (alpha[i] == 0) continue;  // the error stays
      const hsGColor32 e = table->Colors()[dst[i]];
      r = Lerp(r, hsColor32R(e), alpha[i] + 1u) & 255;
      g = Lerp(g, hsColor32G(e), alpha[i] + 1u) & 255;
      b = Lerp(b, hsColor32B(e), alpha[i] + 1u) & 255;
    }
    dst[i] = carrier.Next(r, g, b);
  }
}

void hsGSrcMode::XferA(int32_t count, const uint8_t* src, uint8_t* dst, const uint8_t* alpha) {
  if (!alpha) {
    std::copy_n(src, count, dst);
    return;
  }
  for (int32_t i = 0; i < count; ++i) dst[i] = uint8_t(Lerp(src[i], dst[i], alpha[i] + 1u));
}

void hsGSrcOverMode::Xfer16(int32_t count, const hsGColor32* src, uint16_t* dst, const uint8_t* alpha) {
  for (int32_t i = 0; i < count; ++i) {
    const hsGColor32 s = src[i];
    const uint32_t a = hsColor32A(s), c = alpha ? alpha[i] : 255u;
    if (a == 0 || c == 0) continue;
    if (a == 255 && c == 255) {
      dst[i] = Pack(s);
    } else if (!alpha) {
      dst[i] = Over16(hsColor32R(s) >> 2, hsColor32G(s) >> 3, hsColor32B(s) >> 3, dst[i], 256 - a);
    } else {
      const uint32_t scale = c + 1;
      dst[i] = Over16((hsColor32R(s) * scale) >> 10, (hsColor32G(s) * scale) >> 11, (hsColor32B(s) * scale) >> 11,
                      dst[i], 256 - ((a * scale) >> 8));
    }
  }
}

void hsGSrcOverMode::Xfer8(int32_t count, const hsGColor32* src, uint8_t* dst, const hsGColorTable* table,
                           const uint8_t* alpha) {
  const hsGColor32* colors = table->Colors();
  const uint8_t* inverse = table->GetInverseTable();
  for (int32_t i = 0; i < count; ++i) {
    hsGColor32 s = src[i];
    const uint32_t c = alpha ? alpha[i] : 255u;
    if (hsColor32A(s) == 0 || c == 0) continue;
    if (hsColor32A(s) == 255 && c == 255) {
      dst[i] = inverse[hsInverseCell(s)];
      continue;
    }
    if (alpha) s = hsScaleColor32(s, c + 1);
    dst[i] = inverse[Over8(s, colors[dst[i]], 256 - hsColor32A(s))];
  }
}

void hsGSrcOverMode::XferA(int32_t count, const uint8_t* src, uint8_t* dst, const uint8_t* alpha) {
  for (int32_t i = 0; i < count; ++i) {
    if (!alpha) {
      dst[i] = OverA(src[i], dst[i]);
    } else if (alpha[i] != 0) {
      dst[i] = uint8_t(Lerp(OverA(src[i], dst[i]), dst[i], alpha[i] + 1u));
    }
  }
}
