#include "gfx/pixel/hsgalphamode.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/lerp.h"
#include "gfx/vector/hsmeta.h"

namespace {

constexpr const char kModeKey[] = "mode";
constexpr const char* kWords[] = {"clear", "src", "srcOver", "dstOver", "srcIn", "dstIn", "srcOut", "dstOut"};

class hsGAlphaClearMode : public hsGAlphaCompositeMode {
 public:
  hsGAlphaClearMode() : hsGAlphaCompositeMode(ClearTag{}) {}

  void XferA(int32_t count, const uint8_t*, uint8_t* dst, const uint8_t* alpha) override {
    if (!alpha) {
      std::memset(dst, 0, size_t(count));
      return;
    }
    for (int32_t i = 0; i < count; ++i) dst[i] = uint8_t((dst[i] * (256u - alpha[i])) >> 8);
  }
};

// dst = formula(src, dst), or on the way there under partial coverage.
template <class Formula>
void Combine(int32_t count, const uint8_t* src, uint8_t* dst, const uint8_t* alpha, Formula formula) {
  if (!alpha) {
    for (int32_t i = 0; i < count; ++i) dst[i] = uint8_t(formula(src[i], dst[i]));
    return;
  }
  for (int32_t i = 0; i < count; ++i) dst[i] = uint8_t(Lerp(formula(src[i], dst[i]), dst[i], alpha[i] + 1u));
}

void RefuseDevice() { hsDebugMessage("bad device for alpha mode", 0); }

}  // namespace

hsGXferMode* hsGAlphaCompositeMode::Create(uint32_t index) {
  if (index >= std::size(kWords)) return nullptr;
  if (index == kClear) return new hsGAlphaClearMode;
  if (index == kSrcOver) return new hsGSrcOverMode;
  return new hsGAlphaCompositeMode(index);
}

hsGXferMode* hsGAlphaCompositeMode::Create(const hsMeta& meta) {
  const int32_t length = meta.GetString(kModeKey, nullptr);
  if (length < 0) return nullptr;
  std::string word(size_t(length) + 1, '\0');
  meta.GetString(kModeKey, word.data());
  const auto found = std::find(std::begin(kWords), std::end(kWords), std::string(word.c_str()));
  return Create(uint32_t(found - std::begin(kWords)));
}

hsGAlphaCompositeMode::hsGAlphaCompositeMode(uint32_t index) : fMode(index) {
  (void)hsAssert(index < std::size(kWords) && index != kClear && index != kSrcOver, "missing proc");
}

void hsGAlphaCompositeMode::Describe(hsMeta* meta) const {
  if (meta && fMode < std::size(kWords)) meta->AddString(kModeKey, kWords[fMode]);
}

void hsGAlphaCompositeMode::Xfer32(int32_t, const hsGColor32*, hsGColor32*, const uint8_t*) { RefuseDevice(); }

void hsGAlphaCompositeMode::Xfer16(int32_t, const hsGColor32*, uint16_t*, const uint8_t*) { RefuseDevice(); }

void hsGAlphaCompositeMode::Xfer8(int32_t, const hsGColor32*, uint8_t*, const hsGColorTable*, const uint8_t*) {
  RefuseDevice();
}

void hsGAlphaCompositeMode::XferA(int32_t count, const uint8_t* src, uint8_t* dst, const uint8_t* alpha) {
  const auto combine = [=](auto formula) { Combine(count, src, dst, alpha, formula); };
  switch (fMode) {
    case kSrc: return combine([](uint32_t s, uint32_t) { return s; });
    case kDstOver: return combine([](uint32_t s, uint32_t d) { return d + ((s * (256 - d)) >> 8); });
    case kSrcIn: return combine([](uint32_t s, uint32_t d) { return (s * (d + 1)) >> 8; });
    case kDstIn: return combine([](uint32_t s, uint32_t d) { return (d * (s + 1)) >> 8; });
    case kSrcOut: return combine([](uint32_t s, uint32_t d) { return (s * (256 - d)) >> 8; });
    case kDstOut: return combine([](uint32_t s, uint32_t d) { return (d * (256 - s)) >> 8; });
  }
}
