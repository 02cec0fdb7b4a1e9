#include "engine/widgets/textparts.h"

#include "engine/page/frame.h"
#include "gfx/foundation/hstypes.h"
#include "host/host.h"

namespace {

constexpr uint32_t kAlignMiddle = 1, kAlignEnd = 2;  // of either direction, the vertical one shifted down

int32_t aligned(int32_t start, int32_t space, uint32_t alignment, int32_t size) {
  const int32_t left = hsWrapSub(space, size);
  if (left <= 0 || (alignment != kAlignMiddle && alignment != kAlignEnd)) return start;
  return hsWrapAdd(start, alignment == kAlignMiddle ? left / 2 : left);
}

std::optional<TextStyle> namedStyle(const Widget* widget, StringAttribute attribute) {
  const char* name = widgetAttrString(widget, attribute);
  if (!name) return std::nullopt;
  if (const TextStyle* style = styleFind(frameOf(widget), name)) return *style;
  hostLog("Unknown text style '%s'\n", name);
  return std::nullopt;
}

}  // namespace

TextStylePair widgetTextStyles(const Widget* widget) {
  return {.plain = namedStyle(widget, "textStyle"), .highlighted = namedStyle(widget, "highlightTextStyle")};
}

int32_t alignedLeft(const Bounds& box, uint32_t alignment, int32_t width) {
  return aligned(box.x, box.w, alignment & 3, width);
}

int32_t alignedTop(const Bounds& box, uint32_t alignment, int32_t height) {
  return aligned(box.y, box.h, alignment >> 2 & 3, height);
}
