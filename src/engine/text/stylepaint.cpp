#include "engine/text/stylepaint.h"

#include <algorithm>

#include "engine/text/utf8.h"
#include "gfx/foundation/hsfixed.h"

namespace {
constexpr uint32_t kGridFitFlags = 0xC0;
}

void styleToAttribute(hsGAttribute* attribute, const TextStyle& style) {
  uint32_t flags = attribute->Flags() & ~(uint32_t{hsGAttribute::kAntiAlias} | kGridFitFlags);
  if (style.styleFlags & kTextStyleAntialias) flags |= hsGAttribute::kAntiAlias;
  if (!(style.styleFlags & kTextStyleGridfit)) flags |= kGridFitFlags;
  attribute->SetFlags(flags);
  attribute->SetFontID(style.font->scalerFont);
  attribute->SetTextEncoding(style.encoding);
  hsGTextSpacing spacing;
  spacing.fWordExtra = style.spaceExtra;
  spacing.fCharExtra = style.letterExtra;
  attribute->SetTextSpacing(&spacing);
  if (style.horScale != kFixed1) {
    hsGTextFace face;
    attribute->GetTextFace(&face);
    face.fScaleX = style.horScale;
    attribute->SetTextFace(&face);
  }
  attribute->SetTextSize(hsIntToFixed(style.size));
}

uint32_t usableLength(uint32_t encoding, const char* text, uint32_t length) {
  if (encoding == hsGAttribute::kUTF16) return length & ~1u;
  if (encoding != hsGAttribute::kUTF8) return length;
  const auto* bytes = reinterpret_cast<const uint8_t*>(text);
  uint32_t used = 0;
  int step = 0;
  while (used < length && utf8Decode(bytes + used, length - used, &step) >= 0) used += uint32_t(step);
  return used;
}

uint32_t characterCount(uint32_t encoding, const char* text, uint32_t length) {
  if (encoding == hsGAttribute::kUTF16) return length / 2;
  if (encoding != hsGAttribute::kUTF8) return length;
  return uint32_t(std::count_if(text, text + length, [](char c) { return (c & 0xC0) != 0x80; }));
}
