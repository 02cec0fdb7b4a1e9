// What is drawn otherwise than its source looks.
#include "kit/check/checks.h"

namespace {

constexpr int32_t kScreenWidth = 720, kScreenHeight = 480;

// As the player compares the sizes of a bar.
uint16_t swapped(uint16_t word) { return uint16_t(word << 8 | word >> 8); }

void checkSlider(const CheckedWidget& widget, const Find& find) {
  const uint16_t width = widget.node->width, height = widget.node->height;
  if (width > height && swapped(width) <= swapped(height))
    find("slider-direction", widget.place("width"),
         widget.label + " is wider than high, and the player draws it vertically: the low byte of the width, " +
             std::to_string(width & 0xFF) + ", is not greater than the height's, " + std::to_string(height & 0xFF));
  if (height > width && swapped(width) > swapped(height))
    find("slider-direction", widget.place("height"),
         widget.label + " is higher than wide, and the player draws it horizontally: the low byte of the width, " +
             std::to_string(width & 0xFF) + ", is greater than the height's, " + std::to_string(height & 0xFF));
}

void checkVanishing(const CheckedWidget& widget, const Find& find) {
  const bool answersFocus = widget.has("navigate") || widget.has("onClick") || widget.has("master");
  if (answersFocus && widget.has("textStyle") && !widget.has("highlightTextStyle"))
    find("vanishes", widget.place(),
         widget.label + " has no highlightTextStyle, so it disappears while it has, or shares, the focus");
}

std::optional<int32_t> sizeOfStyle(const CheckedPage& page, const std::string& name) {
  const PageValue* styles = page.root().find("textStyles");
  if (!styles) return std::nullopt;
  for (const PageValue& style : styles->table) {
    if (style.object.empty()) continue;
    std::string called = "default";
    int32_t size = 24;
    for (const PageEntry& entry : style.object.front().attributes) {
      if (entry.name == "name" && !entry.value.bytes.empty()) called = entry.value.bytes;
      if (entry.name == "size" && entry.value.tag == PageTag::integer) size = int32_t(entry.value.number);
    }
    if (called == name) return size;
  }
  return std::nullopt;
}

void checkStyleSizes(const CheckedPage& page, const CheckedWidget& widget, const Find& find) {
  const auto plain = sizeOfStyle(page, widget.text("textStyle"));
  const auto highlit = sizeOfStyle(page, widget.text("highlightTextStyle"));
  if (!widget.isTrue("showAll") || !plain || !highlit || *plain == *highlit) return;
  find("two-sizes", widget.place("highlightTextStyle"),
       widget.label + " keeps for each choice the size that it is first drawn in, and its styles have the sizes " +
           std::to_string(*plain) + " and " + std::to_string(*highlit));
}

void checkScreen(const CheckedWidget& widget, const Find& find) {
  if (widget.width == 0 || widget.height == 0) return;
  if (widget.x < kScreenWidth && widget.y < kScreenHeight) return;
  find("outside-screen", widget.place(),
       widget.label + " begins at " + std::to_string(widget.x) + ", " + std::to_string(widget.y) +
           ", outside the screen of 720 x 480: nothing of it is seen");
}

}  // namespace

void checkLooks(const CheckedPage& page, const Find& find) {
  for (const CheckedWidget& widget : page.widgets) {
    if (widget.type == "slider") checkSlider(widget, find);
    if (widget.type == "number") checkVanishing(widget, find);
    if (widget.type == "select" && !widget.isTrue("showAll")) checkVanishing(widget, find);
    if (widget.type == "select") checkStyleSizes(page, widget, find);
    checkScreen(widget, find);
  }
}
