#include "engine/text/textdraw.h"

#include "engine/base/watch.h"
#include "engine/screen/display.h"
#include "engine/text/stylepaint.h"
#include "engine/text/textmeasure.h"
#include "gfx/foundation/hsfixed.h"
#include "gfx/foundation/hsref.h"
#include "gfx/text/hsgtextcontext.h"

namespace {

// By the encoding of the strike that the paint has, which may still be another style's.
uint32_t drawableLength(hsGAttribute* paint, const char* text, uint32_t length) {
  const auto context = hsAdopt(paint->GetTextContext(nullptr));
  return usableLength(context->Encoding(), text, length);
}

}  // namespace

void textApplyStyle(const TextStyle& style) {
  currentTextPen().style = style;
  if (!style.font) return;
  DisplaySurface& display = currentDisplay();
  styleToAttribute(display.textPaint(), style);
  display.setColor(display.textPaint(), style.color);
}

void textDraw(const char* text, uint32_t length, int32_t x, int32_t y) {
  const TextStyle& style = currentTextPen().style;
  if (!style.font) return;
  DisplaySurface& display = currentDisplay();
  hsGAttribute* paint = display.textPaint();
  length = drawableLength(paint, text, length);
  const hsFixed left = hsWrapShl(x, 16), baseline = hsWrapShl(y, 16);
  if (style.styleFlags & kTextStyleBackground) {
    hsPoint top, bottom;
    const hsFixed width = paint->MeasureText(length, text, &top, &bottom);
    display.fill({left, hsWrapAdd(baseline, top.fY), hsWrapAdd(left, width), hsWrapAdd(baseline, bottom.fY)},
                 style.bgColor);
  }
  if (DrawCost* cost = currentCost()) cost->glyphs += characterCount(style.encoding, text, length);
  if (length != 0) display.rasterDevice()->DrawText(length, text, left, baseline, paint);
  display.flush();
}

void textDrawAt(const TextStyle& style, const char* text, uint32_t length, int32_t x, int32_t top) {
  int32_t ascent = 0;
  textMetrics(style, &ascent, nullptr);
  textApplyStyle(style);
  textDraw(text, length, x, hsWrapAdd(top, ascent));
}
