#include "engine/text/textmeasure.h"

#include <vector>

#include "engine/text/stylepaint.h"
#include "engine/text/utf8.h"
#include "gfx/foundation/hsbytes.h"
#include "gfx/foundation/hsfixed.h"

namespace {

struct Character {
  uint32_t code, length;  // bytes
};

// The first of a text that decodes.
Character firstCharacter(uint32_t encoding, const char* text, uint32_t length) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text);
  if (encoding == hsGAttribute::kUTF16) return {hsLittle16(bytes), 2};
  if (encoding != hsGAttribute::kUTF8) return {bytes[0], 1};
  int used = 1;
  const int32_t code = utf8Decode(bytes, length, &used);
  return {uint32_t(code), uint32_t(used)};
}

// How far each character of a text moves the pen, spacing included.
class CharacterWidths {
 public:
  CharacterWidths(const TextStyle& style, const char* text, uint32_t length) {
    if (!style.font) return;
    usable = usableLength(style.encoding, text, length);
    hsGAttribute paint;
    styleToAttribute(&paint, style);
    const uint32_t bytes = style.encoding == hsGAttribute::kUTF16 ? 2 : 1;
    spaceExtra = measure(paint, " \0", bytes), otherExtra = measure(paint, "x\0", bytes);
    paint.SetTextSpacing(nullptr);
    spaceExtra = hsWrapSub(spaceExtra, measure(paint, " \0", bytes));
    otherExtra = hsWrapSub(otherExtra, measure(paint, "x\0", bytes));
    advances.resize(usable);
    paint.GetTextWidths(usable, text, advances.data());
  }

  hsFixed of(size_t index, uint32_t code) const {
    return hsWrapAdd(advances[index], code == ' ' ? spaceExtra : otherExtra);
  }

  uint32_t usable = 0;  // bytes that decode

 private:
  static hsFixed measure(hsGAttribute& paint, const char* character, uint32_t bytes) {
    return paint.MeasureText(bytes, character, nullptr, nullptr);
  }

  std::vector<hsFixed> advances;
  hsFixed spaceExtra = 0, otherExtra = 0;
};

}  // namespace

void textMeasure(const TextStyle& style, const char* text, uint32_t length, int32_t* width, int32_t* height,
                 int32_t* ascent) {
  hsPoint top{}, bottom{};
  hsFixed advance = 0;
  if (style.font) {
    hsGAttribute paint;
    styleToAttribute(&paint, style);
    advance = paint.MeasureText(usableLength(style.encoding, text, length), text, &top, &bottom);
  }
  *width = hsFixedRound(advance);
  *height = hsFixedRound(hsWrapSub(bottom.fY, top.fY));
  if (ascent) *ascent = -hsFixedRound(top.fY);
}

// Without kerning a text is as wide as its characters together, so one walk finds what trying every length would find.
// An end inside a character of UTF-8 measures the whole of it, since its first byte makes it count; one inside a
// character of UTF-16 measures what comes before it, and so do all ends after the last character that decodes.
uint32_t textFit(const TextStyle& style, const char* text, uint32_t length, int32_t limit, int32_t* width) {
  *width = 0;
  if (length == 0) return 0;
  const CharacterWidths widths(style, text, length);
  uint32_t fitting = 0, at = 0;
  hsFixed advance = 0;
  const auto tryEnd = [&](uint32_t end) {
    if (hsFixedRound(advance) >= limit) return;
    fitting = end;
    *width = hsFixedRound(advance);
  };
  for (size_t i = 0; at < widths.usable; ++i) {
    const Character character = firstCharacter(style.encoding, text + at, widths.usable - at);
    const uint32_t next = at + character.length;
    tryEnd(style.encoding == hsGAttribute::kUTF16 ? next - 1 : at);
    advance = hsWrapAdd(advance, widths.of(i, character.code));
    if (style.encoding == hsGAttribute::kUTF8) tryEnd(next - 1);
    at = next;
  }
  if (at < length) tryEnd(length - 1);
  return fitting;
}

void textMetrics(const TextStyle& style, int32_t* ascent, int32_t* descent) {
  hsPoint top{}, bottom{};
  if (style.font) {
    hsGAttribute paint;
    paint.SetFontID(style.font->scalerFont);
    paint.SetTextSize(hsIntToFixed(style.size));
    paint.MeasureText(0, nullptr, &top, &bottom);
  }
  if (ascent) *ascent = -hsFixedRound(top.fY);
  if (descent) *descent = int16_t(hsFixedRound(bottom.fY));
}
