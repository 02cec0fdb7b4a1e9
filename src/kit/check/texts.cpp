// Texts that don't fit, can't be drawn or can't be read.
#include <algorithm>
#include <cstdio>
#include <set>

#include "engine/engine.h"
#include "engine/inspect/shown.h"
#include "engine/text/stylepaint.h"
#include "engine/text/textdraw.h"
#include "engine/text/utf8.h"
#include "engine/widgets/linebreak.h"
#include "gfx/foundation/hsascii.h"
#include "gfx/foundation/hsbytes.h"
#include "gfx/text/hsgscalercontextt2k.h"
#include "kit/check/checks.h"
#include "kit/check/pagetexts.h"
#include "kit/pictures/showncolor.h"

namespace {

constexpr int32_t kMarginAcross = kScreenWidth / 10, kMarginDown = kScreenHeight / 10;  // of the title-safe area
constexpr double kLeastContrast = 3;

bool isBlank(std::string_view text) { return std::all_of(text.begin(), text.end(), hsAsciiIsSpace); }

// A text as a finding quotes it, cut where that would be long.
std::string excerpt(std::string_view text) {
  constexpr size_t kMost = 40;
  size_t end = std::min(text.size(), kMost);
  while (end > 0 && end < text.size() && (text[end] & 0xC0) == 0x80) --end;
  return "'" + std::string(text.substr(0, end)) + (end < text.size() ? "...'" : "'");
}

struct Character {
  uint16_t code;
  std::string bytes;
};

// Of a text that decodes.
std::vector<Character> charactersOf(uint16_t encoding, std::string_view text) {
  std::vector<Character> characters;
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  for (size_t at = 0; at < text.size();) {
    int length = encoding == hsGAttribute::kUTF16 ? 2 : 1;
    uint16_t code = encoding == hsGAttribute::kUTF16 ? hsLittle16(bytes + at) : bytes[at];
    if (encoding == hsGAttribute::kUTF8) code = uint16_t(utf8Decode(bytes + at, text.size() - at, &length));
    characters.push_back({code, std::string(text.substr(at, size_t(length)))});
    at += size_t(length);
  }
  return characters;
}

class Texts {
 public:
  Texts(OpenedPage& o, const Find& f) : opened(o), find(f) {}

  void check(const PageText& text) {
    text.multiline ? checkLines(text) : checkLine(text);
    checkSafeArea(text);
    checkEncoding(text);
    checkGlyphs(text);
    if (text.style.styleFlags & kTextStyleAntialias) checkContrast(text);
  }

  void sayUnsafe(const CheckedPage& page) const {
    if (unsafe == 0 || !page.fillsScreen()) return;
    find("title-safe", page.root().place(),
         "a television may cut off texts outside the title-safe area, x 72 to 648 and y 48 to 432: " + firstUnsafe +
             (unsafe > 1 ? ", and others" : ""));
  }

 private:
  // Once for a widget, and for a line of a list.
  void say(const char* check, const PageText& text, const std::string& what) {
    if (said.emplace(check, text.widget, text.place.line).second)
      find(check, text.place, text.widget->label + ": " + what);
  }

  // ---- how much space it takes

  void checkLine(const PageText& text) {
    const int32_t right = text.box.x + text.box.w;
    const int32_t beyond = text.drawn.x + text.drawn.w - right;
    if (text.box.w > 0 && beyond > 0)
      say("text-overflow", text,
          excerpt(text.text) + " runs " + std::to_string(beyond) +
              " pixels out of the widget on the right; the player draws that, too, and never erases it");
  }

  void checkLines(const PageText& text) {
    const std::vector<TextLine> lines = breakLines(text.style, text.text, text.box.w);
    const std::string_view whole = text.text;
    const auto endOf = [&](const TextLine& line) { return size_t(line.text.data() + line.text.size() - whole.data()); };
    const size_t end = lines.empty() ? 0 : endOf(lines.back());
    if (!isBlank(whole.substr(end)))
      say("text-cut", text,
          "the player draws 20 lines of the first 100 words at most, and not " +
              excerpt(whole.substr(whole.find_first_not_of(" \t\r\n", end))));
    for (size_t i = 0; i + 1 < lines.size(); ++i)
      if (!lines[i].text.empty() && lines[i + 1].text.data() == lines[i].text.data() + lines[i].text.size())
        say("broken-word", text, "a word is too wide, and the player breaks it after " + excerpt(lines[i].text));
    if (text.box.h > 0 && text.drawn.h > text.box.h)
      say("text-overflow", text,
          std::to_string(lines.size()) + " lines are " + std::to_string(text.drawn.h) +
              " pixels high; the player draws those that don't fit below the widget, and never erases them");
  }

  // Said once for the page: where a page begins at the very edge, all of it lies too far out. A line of a list that
  // lies beyond its box is drawn only where it comes to lie by scrolling.
  void checkSafeArea(const PageText& text) {
    const Bounds& drawn = text.drawn;
    const bool isOnScreen = drawn.x < kScreenWidth && drawn.y < kScreenHeight;
    const bool isScrolledAway =
        text.widget->type == "textContainer" && (drawn.y < text.box.y || drawn.y + drawn.h > text.box.y + text.box.h);
    const bool isSafe =
        drawn.x >= kMarginAcross && drawn.x + drawn.w <= kScreenWidth - kMarginAcross &&
        (isScrolledAway || (drawn.y >= kMarginDown && drawn.y + drawn.h <= kScreenHeight - kMarginDown));
    if (isSafe || !isOnScreen || isBlank(text.text)) return;
    if (unsafe++ == 0) firstUnsafe = text.widget->label + ", " + excerpt(text.text);
  }

  // ---- its characters

  void checkEncoding(const PageText& text) {
    const uint32_t usable = usableLength(text.style.encoding, text.text.data(), uint32_t(text.text.size()));
    if (usable < text.text.size())
      say("undecodable", text,
          excerpt(std::string_view(text.text).substr(usable)) + " doesn't decode, and the player " +
              "draws nothing from there on");
    const auto isNoAscii = [](char c) { return c & 0x80; };
    if (text.style.encoding == hsGAttribute::kSingleBytes && std::any_of(text.text.begin(), text.text.end(), isNoAscii))
      say("undecodable", text,
          "in a style with encoding: ascii the player draws a character for each byte, so " + excerpt(text.text) +
              " comes out with wrong ones");
  }

  void checkGlyphs(const PageText& text) {
    const uint32_t font = text.style.font->scalerFont;
    if (!hsFontOpens(font)) return;
    const bool isUnicode = text.style.encoding != hsGAttribute::kSingleBytes;
    const uint32_t usable = usableLength(text.style.encoding, text.text.data(), uint32_t(text.text.size()));
    for (const Character& c : charactersOf(text.style.encoding, std::string_view(text.text).substr(0, usable))) {
      if (hsFontHasGlyph(font, c.code, isUnicode) || (text.multiline && isBlank(c.bytes))) continue;
      char code[16];
      std::snprintf(code, sizeof code, "U+%04X", unsigned(c.code));
      const std::string name = c.code < ' ' ? code : "'" + c.bytes + "' (" + code + ")";
      return say("missing-glyph", text,
                 text.style.font->name + " has no " + name +
                     ", and the player draws a box, or what else the font has for that");
    }
  }

  // ---- its colour

  // By drawing it on such a ground and looking at the screen.
  void checkContrast(const PageText& text) {
    const Widget* under = backgroundOf(text.made);
    const bool hasBox = text.style.styleFlags & kTextStyleBackground;
    if (!hasBox && under && under->background) return;
    const uint32_t ground = hasBox ? text.style.bgColor : under ? under->bgColor : standardColor(kColorTransparent);
    const double contrast = contrastDrawn(text, ground);
    if (contrast >= kLeastContrast || contrast == 0) return;
    char ratio[16];
    std::snprintf(ratio, sizeof ratio, "%.1f", contrast);
    say("faint-text", text,
        std::string("antialiased text arrives with less than half of its colour, and ") + excerpt(text.text) +
            " has a contrast of " + ratio + " to its ground");
  }

  // Of the pixel that stands out most; 0 for a text that draws none.
  double contrastDrawn(const PageText& text, uint32_t ground) {
    const int32_t height = std::clamp<int32_t>(text.drawn.h, 1, kScreenHeight);
    displayFillRect({0, 0, kScreenWidth, height}, ground);
    const uint32_t plain = opened.screen().front();
    textDrawAt(text.style, text.text.data(), uint32_t(text.text.size()), 0, 0);
    const auto rows = opened.screen().begin();
    double most = 0;
    for (const uint32_t color : std::set<uint32_t>(rows, rows + ptrdiff_t(kScreenWidth) * height))
      if (color != plain) most = std::max(most, contrastOf(color, plain));
    return most;
  }

  OpenedPage& opened;
  const Find& find;
  std::set<std::tuple<std::string, const CheckedWidget*, int>> said;
  size_t unsafe = 0;
  std::string firstUnsafe;
};

}  // namespace

void checkTexts(const CheckedPage& page, OpenedPage& opened, const Find& find) {
  const std::vector<PageText> texts = pageTexts(page, opened);
  const EngineScope here(opened.engine());
  Texts checks(opened, find);
  for (const PageText& text : texts) checks.check(text);
  checks.sayUnsafe(page);
}
