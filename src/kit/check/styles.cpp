// Text styles that don't look as they say.
#include <tuple>

#include "kit/check/checks.h"

namespace {

constexpr int32_t kUnscaled = 0x10000;

// As the player reads it.
struct Style {
  std::string name = "default", font, encoding = "utf8";
  int32_t size = 24, horScale = kUnscaled;
  bool antialias = false, gridfit = false;
  YamlPlace place;

  void read(const PageEntry& entry) {
    const PageValue& value = entry.value;
    const bool isText = value.tag == PageTag::string && !value.bytes.empty(), isInteger = value.tag == PageTag::integer;
    const bool isTrue = value.tag == PageTag::boolean && value.number != 0;
    if (entry.name == "name" && isText) name = value.bytes;
    if (entry.name == "font" && isText) font = value.bytes;
    if (entry.name == "encoding" && isText) encoding = value.bytes;
    if (entry.name == "size" && isInteger) size = int32_t(value.number);
    if (entry.name == "horScale" && isInteger) horScale = int32_t(value.number);
    if (entry.name == "antialias") antialias = isTrue;
    if (entry.name == "gridfit") gridfit = isTrue;
  }

  // What glyphs are chosen by. They are kept as long as none of this changes, the encoding left aside.
  auto look() const { return std::tie(font, size, horScale, antialias, gridfit); }
};

std::vector<Style> stylesOf(const CheckedPage& page) {
  std::vector<Style> styles;
  const PageValue* table = page.root().find("textStyles");
  if (!table) return styles;
  for (const PageValue& entry : table->table) {
    if (entry.object.empty()) continue;
    Style style;
    for (const PageEntry& each : entry.object.front().attributes) style.read(each);
    style.place = entry.object.front().places.object;
    styles.push_back(std::move(style));
  }
  return styles;
}

}  // namespace

void checkStyles(const CheckedPage& page, const Find& find) {
  const std::vector<Style> styles = stylesOf(page);
  const Style* scaled = nullptr;
  for (const Style& style : styles)
    if (style.horScale != kUnscaled) scaled = &style;
  for (size_t i = 0; i < styles.size(); ++i) {
    const Style& style = styles[i];
    if (style.font.empty())
      find("no-font", style.place, "the style '" + style.name + "' has no font, and the player draws no text in it");
    if (scaled && style.horScale == kUnscaled)
      find("inherited-scale", style.place,
           "the style '" + style.name + "' has no horScale of its own, and after a text in '" + scaled->name +
               "' the player draws it " + (scaled->horScale < kUnscaled ? "as narrow" : "as wide") +
               "; give it the same, or 65535");
    for (size_t before = 0; before < i; ++before)
      if (styles[before].look() == style.look() && styles[before].encoding != style.encoding)
        find("same-strike", style.place,
             "the styles '" + styles[before].name + "' and '" + style.name +
                 "' differ in their encoding alone, and the player reads the texts of both in that of the first one " +
                 "that it draws");
  }
}
