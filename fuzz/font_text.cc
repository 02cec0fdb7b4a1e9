// Texts in any font through the glyph cache, in many sizes, styles and encodings, drawn and measured.
//
// The first byte says how many of the following choose what is done; what is left is the font.
#include <cstring>
#include <string>
#include <vector>

#include "choices.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgcolortable.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/text/hsgfontregistry.h"

namespace {

constexpr uint32_t kFormats[] = {kFontFormat_TrueType, kFontFormat_TrueType, kFontFormat_SfntInRam,
                                 kFontFormat_BitmapOnly};
constexpr uint16_t kWidth = 160, kHeight = 48;
constexpr int kMostTexts = 6;

class Canvas {
 public:
  explicit Canvas(uint32_t font) : pixels(size_t{kWidth} * kHeight) {
    bitmap.SetConfig(hsGBitmap::kConfig_Index8);
    bitmap.SetColorTable(&Colors());
    bitmap.fWidth = kWidth;
    bitmap.fHeight = kHeight;
    bitmap.fRowBytes = kWidth;
    bitmap.fImage = pixels.data();
    attr.SetFontID(font);
    attr.SetColorIndex(1);
    draw.fBitmap = &bitmap;
    draw.fMatrix = &matrix;
    draw.fAttr = &attr;
  }

  void text(Choices& choices) {
    attr.SetFlags(choices.byte());
    attr.SetTextEncoding(choices.below(3));
    attr.SetTextSize(hsFixed(choices.below(64)) * kFixed1 + hsFixed(choices.byte()) * 256);
    std::string bytes;
    for (uint32_t i = choices.below(12); i > 0; --i) bytes += char(choices.byte());
    if (choices.below(2)) bytes += std::string("Ag\0 0\xE9", 6);
    draw.DrawText(uint32_t(bytes.size()), bytes.data(), int32_t(choices.byte()) * kFixed1 - 20 * kFixed1,
                  int32_t(choices.byte()) * kFixed1 / 4);
    attr.MeasureText(uint32_t(bytes.size()), bytes.data(), nullptr, nullptr);
  }

 private:
  // One for all inputs: what it learns of its nearest colors takes longer than the texts.
  static hsGColorTable& Colors() {
    static const auto colors = [] {
      auto made = hsMake<hsGColorTable>();
      made->SetDefaultCube();
      return made;
    }();
    return *colors;
  }

  std::vector<uint8_t> pixels;
  hsGBitmap bitmap;
  hsMatrix matrix;
  hsGAttribute attr;
  hsGRawDraw draw;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size - 1 < data[0]) return 0;
  hsSetHaltProc([] {});  // texts that don't decode are reported, and drawn as far as they do
  Choices choices(data + 1, data[0]);
  const uint8_t* font = data + 1 + data[0];
  hsGFontRegistry::Reset();
  const uint32_t id =
      hsGFontRegistry::RegisterMemory(uint32_t(data + size - font), font, false, choices.pick(kFormats));
  if (id != 0) {
    Canvas canvas(id);
    for (int texts = 0; !choices.isEmpty() && texts < kMostTexts; ++texts) canvas.text(choices);
  }
  hsGFontRegistry::Reset();
  return 0;
}
