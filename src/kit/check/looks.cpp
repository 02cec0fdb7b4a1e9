// What is drawn otherwise than its source looks.
#include "engine/screen/display.h"
#include "kit/check/checks.h"

namespace {

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

bool showsFocus(const CheckedWidget& widget) {
  return widget.has("navigate") || widget.has("onClick") || widget.has("master");
}

void checkVanishing(const CheckedWidget& widget, const Find& find) {
  if (showsFocus(widget) && widget.has("textStyle") && !widget.has("highlightTextStyle"))
    find("vanishes", widget.place(),
         widget.label + " has no highlightTextStyle, so it disappears while it has, or shares, the focus");
}

void checkStyleSizes(const CheckedPage& page, const CheckedWidget& widget, const Find& find) {
  const CheckedStyle* plain = page.style(widget.text("textStyle"));
  const CheckedStyle* highlit = page.style(widget.text("highlightTextStyle"));
  if (!widget.isTrue("showAll") || !plain || !highlit || plain->size == highlit->size) return;
  find("two-sizes", widget.place("highlightTextStyle"),
       widget.label + " keeps for each choice the size that it is first drawn in, and its styles have the sizes " +
           std::to_string(plain->size) + " and " + std::to_string(highlit->size));
}

void checkPicture(const CheckedWidget& widget, const Find& find) {
  if (showsFocus(widget) && widget.has("src") && !widget.has("highlightSrc"))
    find("vanishes", widget.place(),
         widget.label + " has no highlightSrc, so its picture disappears while it has, or shares, the focus");
}

// Choices side by side paint no background, not even before they are drawn in another style.
void checkRow(const CheckedPage& page, const CheckedWidget& widget, const Find& find) {
  if (!widget.isTrue("showAll") || widget.isTrue("vertical")) return;
  for (const char* attribute : {"bgColor", "background"})
    if (widget.has(attribute))
      find("row-not-erased", widget.place(attribute),
           widget.label + " shows its choices in a row, and the player paints no background under that; " +
               "let a group around it have one");
  for (const char* attribute : {"textStyle", "highlightTextStyle"})
    if (const CheckedStyle* style = page.style(widget.text(attribute)); style && style->antialias)
      find("row-not-erased", widget.place(attribute),
           widget.label + " shows its choices in a row, which the player draws over the old ones, so that " +
               "antialiased text grows thicker with each change");
}

void checkEcho(const CheckedWidget& widget, const Find& find) {
  if (widget.has("maxLength") && widget.has("echoChar") && !widget.text("value").empty())
    find("echoed-value", widget.place("value"),
         widget.label + " has an echoChar, and the player draws empty boxes for a value that wasn't typed");
}

void checkBar(const CheckedPage& page, const CheckedWidget& widget, const Find& find) {
  if (widget.number("min").value_or(1) == widget.number("max").value_or(100))
    find("empty-bar", widget.place("max"), widget.label + " has a range of one value, and the player draws no bar");
  const bool is16Bit = !(page.tree.flags & kPageIs8Bit);
  for (const char* attribute : {"fgColor", "bgColor"})
    if (is16Bit && !widget.has(attribute))
      find("bar-color", widget.place(),
           widget.label + " has no " + attribute + ", and when this is the first page, the player chooses a wrong one");
}

// Without a selection the list scrolls at once; with one it scrolls along.
void checkList(const CheckedWidget& widget, const Find& find) {
  const bool isSelecting = widget.number("selectedLine").value_or(0) > 0;
  if (isSelecting && !widget.has("selectTextStyle"))
    find("stuck-selection", widget.place("selectedLine"),
         widget.label + " has no selectTextStyle, and the player neither shows its selection nor moves it");
}

void checkHiding(const CheckedWidget& widget, const Find& find) {
  const bool backgroundShows = widget.has("background") && widget.text("hidden") == "content";
  if (backgroundShows)
    find("shown-anyway", widget.place("hidden"),
         "hidden content above a background picture: the player shows all of " + widget.label + " as the page opens");
}

void checkScreen(const CheckedWidget& widget, const Find& find) {
  if (widget.width == 0 || widget.height == 0) return;
  const int32_t right = widget.x + widget.width, bottom = widget.y + widget.height;
  const auto say = [&](const char* does, int32_t x, int32_t y, const char* seen) {
    find("outside-screen", widget.place(),
         widget.label + does + std::to_string(x) + ", " + std::to_string(y) +
             ", outside the screen of 720 x 480: " + seen + " of it is seen");
  };
  if (widget.x >= kScreenWidth || widget.y >= kScreenHeight) return say(" begins at ", widget.x, widget.y, "nothing");
  const bool shows = widget.type != "group" || widget.has("bgColor") || widget.has("background");
  if (shows && (right > kScreenWidth || bottom > kScreenHeight)) say(" ends at ", right, bottom, "only a part");
}

}  // namespace

void checkLooks(const CheckedPage& page, const Find& find) {
  for (const CheckedWidget& widget : page.widgets) {
    if (widget.type == "slider") {
      checkSlider(widget, find);
      checkBar(page, widget, find);
    }
    if (widget.type == "number") checkVanishing(widget, find);
    if (widget.type == "select") {
      if (!widget.isTrue("showAll")) checkVanishing(widget, find);
      checkStyleSizes(page, widget, find);
      checkRow(page, widget, find);
    }
    if (widget.type == "image") checkPicture(widget, find);
    if (widget.type == "text") checkEcho(widget, find);
    if (widget.type == "textContainer") checkList(widget, find);
    checkHiding(widget, find);
    checkScreen(widget, find);
  }
}
