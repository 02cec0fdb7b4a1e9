// Text styles that don't look as they say.
#include <map>

#include "kit/check/checks.h"

namespace {

void checkScales(const CheckedPage& page, const Find& find) {
  const CheckedStyle* scaled = nullptr;
  for (const CheckedStyle& style : page.styles)
    if (style.horScale != CheckedStyle::kUnscaled) scaled = &style;
  if (!scaled) return;
  const std::string as = scaled->horScale < CheckedStyle::kUnscaled ? "as narrow" : "as wide";
  for (const CheckedStyle& style : page.styles)
    if (style.horScale == CheckedStyle::kUnscaled)
      find("inherited-scale", style.place(),
           "the style '" + style.name + "' has no horScale of its own, and after a text in '" + scaled->name +
               "' the player draws it " + as + "; give it the same, or 65535");
}

void checkEncodings(const CheckedPage& page, const Find& find) {
  std::map<decltype(page.styles.front().look()), const CheckedStyle*> looks;
  for (const CheckedStyle& style : page.styles) {
    const CheckedStyle& first = *looks.emplace(style.look(), &style).first->second;
    if (first.encoding != style.encoding)
      find("same-strike", style.place(),
           "the styles '" + first.name + "' and '" + style.name +
               "' differ in their encoding alone, and the player reads the texts of both in that of the first one " +
               "that it draws");
  }
}

}  // namespace

void checkStyles(const CheckedPage& page, const Find& find) {
  for (const CheckedStyle& style : page.styles)
    if (style.font.empty())
      find("no-font", style.place(), "the style '" + style.name + "' has no font, and the player draws no text in it");
  checkScales(page, find);
  checkEncodings(page, find);
}
