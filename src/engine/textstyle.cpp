#include "engine/textstyle.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "engine/ascii.h"
#include "engine/display.h"
#include "engine/frame.h"
#include "gfx/foundation/hsref.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgscalercontextt2k.h"
#include "gfx/text/hsgtextcontext.h"
#include "host/host.h"

namespace {

constexpr hsFixed kScreenPixelShape = 58254;  // 8/9, of the 720 x 480 picture
constexpr int32_t kFarthest = 8000;           // pixels from the screen's corner; beyond, nothing is drawn
constexpr uint16_t kLargestWarmed = 1024;     // pixels
constexpr uint32_t kGridFitFlags = 0xC0;

FontEntry* fonts = nullptr;
TextStyle currentStyle;

// ---- parsing

bool setBit(const PageAttribute& attribute, uint32_t bit, TextStyle* style) {
  bool value = false;
  if (attrBool(attribute, &value) && value) style->styleFlags |= bit;
  return true;
}

uint16_t encodingNamed(const char* name) {
  if (std::strcmp(name, "ascii") == 0) return 0;
  return std::strcmp(name, "utf16") == 0 ? 2 : 1;
}

// Each sets what its attribute says; a value of the wrong type has been told and changes nothing. False when memory
// runs out.
struct StyleAttribute {
  const char* name;
  bool (*set)(const PageAttribute& attribute, TextStyleNode* node);
};

constexpr StyleAttribute kStyleAttributes[] = {
    {"name",
     [](const PageAttribute& a, TextStyleNode* node) {
       const char* name;
       if (!attrString(a, &name)) return true;
       char* copy = strdup(name);
       if (!copy) return false;
       std::free(node->name);
       node->name = copy;
       return true;
     }},
    {"font",
     [](const PageAttribute& a, TextStyleNode* node) {
       const char* file;
       if (!attrString(a, &file)) return true;
       node->style.font = fontLoad(file);
       if (!node->style.font) hostLog("Error loading font '%s'\n", file);
       return true;
     }},
    {"size",
     [](const PageAttribute& a, TextStyleNode* node) {
       int32_t size;
       if (attrInt(a, &size)) node->style.size = uint16_t(size);
       return true;
     }},
    {"color", [](const PageAttribute& a, TextStyleNode* node) { return attrColor(a, &node->style.color), true; }},
    {"antialias",
     [](const PageAttribute& a, TextStyleNode* node) { return setBit(a, kTextStyleAntialias, &node->style); }},
    {"gridfit", [](const PageAttribute& a, TextStyleNode* node) { return setBit(a, kTextStyleGridfit, &node->style); }},
    {"tracking",
     [](const PageAttribute& a, TextStyleNode* node) {
       int32_t tracking;
       if (attrInt(a, &tracking)) node->style.letterExtra = node->style.spaceExtra = hsWrapShl(tracking, 12);
       return true;
     }},
    {"bgColor",
     [](const PageAttribute& a, TextStyleNode* node) {
       if (attrColor(a, &node->style.bgColor)) node->style.styleFlags |= kTextStyleBackground;
       return true;
     }},
    {"underline",
     [](const PageAttribute& a, TextStyleNode* node) { return setBit(a, kTextStyleUnderline, &node->style); }},
    {"letterExtra",
     [](const PageAttribute& a, TextStyleNode* node) { return attrInt(a, &node->style.letterExtra), true; }},
    {"spaceExtra",
     [](const PageAttribute& a, TextStyleNode* node) { return attrInt(a, &node->style.spaceExtra), true; }},
    {"horScale", [](const PageAttribute& a, TextStyleNode* node) { return attrInt(a, &node->style.horScale), true; }},
    {"encoding",
     [](const PageAttribute& a, TextStyleNode* node) {
       const char* name;
       if (attrString(a, &name)) node->style.encoding = encodingNamed(name);
       return true;
     }},
};

bool readStyle(const PageObject& record, TextStyleNode* node) {
  for (uint32_t i = 0; i < record.attributeCount(); ++i) {
    const PageAttribute attribute = pageAttribute(record, i);
    if (!attribute.name) continue;
    const StyleAttribute* known = nullptr;
    for (const StyleAttribute& candidate : kStyleAttributes)
      if (std::strcmp(candidate.name, attribute.name) == 0) known = &candidate;
    if (!known) {
      hostLog("Unknown style attribute '%s'\n", attribute.name);
    } else if (!known->set(attribute, node)) {
      return false;
    }
  }
  return true;
}

// ---- fonts

struct FileCloser {
  void operator()(HostFile* file) const { hostClose(file); }
};

// The entry with the file's bytes behind it and its name behind those; null if the file can't be read whole.
FontEntry* readFont(HostFile* file, const char* name, uint32_t* size) {
  const size_t length = hostFileSize(file), nameLength = std::strlen(name);
  if (length > INT32_MAX - nameLength) return nullptr;
  auto* entry = static_cast<FontEntry*>(std::malloc(sizeof(FontEntry) + length + nameLength + 1));
  if (!entry) return nullptr;
  char* bytes = reinterpret_cast<char*>(entry + 1);
  if (hostRead(file, bytes, length) != length) {
    std::free(entry);
    return nullptr;
  }
  std::memcpy(bytes + length, name, nameLength + 1);
  *entry = {fonts, bytes + length, 0};
  *size = uint32_t(length);
  return entry;
}

// ---- applying

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

struct Character {
  uint32_t code, length;  // bytes
};

// The first of a text that decodes.
Character firstCharacter(uint32_t encoding, const char* text, uint32_t length) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text);
  if (encoding == hsGAttribute::kUTF16) return {bytes[0] | uint32_t{bytes[1]} << 8, 2};
  if (encoding != hsGAttribute::kUTF8) return {bytes[0], 1};
  int used = 1;
  const int32_t code = utf8Decode(bytes, length, &used);
  return {uint32_t(code), uint32_t(used)};
}

// The bytes at the beginning of the text that decode.
uint32_t usableLength(uint32_t encoding, const char* text, uint32_t length) {
  if (encoding == hsGAttribute::kUTF16) return length & ~1u;
  if (encoding != hsGAttribute::kUTF8) return length;
  const auto* bytes = reinterpret_cast<const uint8_t*>(text);
  uint32_t used = 0;
  int step = 0;
  while (used < length && utf8Decode(bytes + used, length - used, &step) >= 0) used += uint32_t(step);
  return used;
}

// The same for a paint that may still have the strike of another encoding.
uint32_t usableLength(hsGAttribute* paint, const char* text, uint32_t length) {
  const auto context = hsAdopt(paint->GetTextContext(nullptr));
  return usableLength(context->Encoding(), text, length);
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

bool isFar(int32_t v) { return v > kFarthest || v < -kFarthest; }

}  // namespace

int stylesLoad(Frame* frame, const PageTable& table) {
  TextStyleNode** tail = &frame->textStyles;
  for (uint32_t i = 0; i < table.count(); ++i) {
    auto* node = new (std::nothrow) TextStyleNode;
    if (!node) return 0;
    *tail = node;
    tail = &node->next;
    if (!readStyle(table.object(i), node)) return 0;
  }
  return 1;
}

void stylesFree(Frame* frame) {
  while (TextStyleNode* node = frame->textStyles) {
    frame->textStyles = node->next;
    std::free(node->name);
    delete node;
  }
}

const TextStyle* styleFind(const Frame* frame, const char* name) {
  for (const TextStyleNode* node = frame->textStyles; node; node = node->next)
    if (std::strcmp(node->name ? node->name : "default", name) == 0) return &node->style;
  return nullptr;
}

FontEntry* fontLoad(const char* fileName) {
  for (FontEntry* entry = fonts; entry; entry = entry->next)
    if (asciiEqualIgnoringCase(entry->name, fileName)) return entry;
  const std::unique_ptr<HostFile, FileCloser> file(hostOpen(fileName));
  if (!file) return nullptr;
  uint32_t size = 0;
  FontEntry* entry = readFont(file.get(), fileName, &size);
  if (!entry) return nullptr;
  // The bytes lie inside the entry, so the registry doesn't own them.
  entry->scalerFont = hsGFontRegistry::RegisterMemory(size, entry + 1, false, kFontFormat_TrueType);
  if (entry->scalerFont == 0) {
    std::free(entry);
    return nullptr;
  }
  // A file that holds no font is kept, so that it is read and told about once; it draws nothing.
  if (!hsFontOpens(entry->scalerFont)) hostLog("Error loading font '%s'\n", fileName);
  return fonts = entry;
}

void textApplyStyle(const TextStyle& style) {
  currentStyle = style;
  if (!style.font) return;
  hsGAttribute* paint = displayTextPaint();
  styleToAttribute(paint, style);
  displaySetColor(paint, style.color);
}

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
uint32_t textFit(const TextStyle& style, const char* text, uint32_t length, int32_t limit, int32_t* width) {
  *width = 0;
  if (length == 0) return 0;
  const CharacterWidths widths(style, text, length);
  uint32_t fitting = 0, at = 0;
  hsFixed advance = 0;
  for (size_t i = 0;; ++i) {
    // All ends inside a character measure what stands before it; so do all behind the last one that decodes.
    const bool decodes = at < widths.usable;
    const Character character = decodes ? firstCharacter(style.encoding, text + at, widths.usable - at) : Character{};
    const uint32_t next = decodes ? at + character.length : length;
    if (hsFixedRound(advance) < limit) {
      fitting = next - 1;
      *width = hsFixedRound(advance);
    }
    if (next >= length) return fitting;
    advance = hsWrapAdd(advance, widths.of(i, character.code));
    at = next;
  }
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

void textDraw(const char* text, uint32_t length, int32_t x, int32_t y) {
  if (!currentStyle.font || isFar(x) || isFar(y)) return;
  hsGAttribute* paint = displayTextPaint();
  length = usableLength(paint, text, length);
  const hsFixed left = hsIntToFixed(x), baseline = hsIntToFixed(y);
  if (currentStyle.styleFlags & kTextStyleBackground) {
    hsPoint top, bottom;
    const hsFixed width = paint->MeasureText(length, text, &top, &bottom);
    displayFillFixed({left, hsWrapAdd(baseline, top.fY), hsWrapAdd(left, width), hsWrapAdd(baseline, bottom.fY)},
                     currentStyle.bgColor);
  }
  if (length != 0) displayDevice()->DrawText(length, text, left, baseline, paint);
  displayFlush();
}

void textDrawAt(const TextStyle& style, const char* text, uint32_t length, int32_t x, int32_t top) {
  int32_t ascent = 0;
  textMetrics(style, &ascent, nullptr);
  textApplyStyle(style);
  textDraw(text, length, x, hsWrapAdd(top, ascent));
}

void textWarm(const TextStyle& style, const char* text, uint32_t bytes) {
  if (!style.font || style.size == 0 || style.size > kLargestWarmed) return;
  const int32_t side = 2 * style.size;
  const std::unique_ptr<uint16_t[]> scratch(new (std::nothrow) uint16_t[size_t(side) * size_t(side)]());
  if (!scratch) return;
  hsGBitmap bitmap;
  bitmap.SetConfig(hsGBitmap::kConfig_RGB16);
  bitmap.fWidth = bitmap.fHeight = uint32_t(side);
  bitmap.fRowBytes = 4u * style.size;
  bitmap.fImage = scratch.get();
  hsGRasterDevice device;
  device.SetBitmap(&bitmap);
  // Neither encoding nor flags: this is the strike of plain single bytes.
  hsGAttribute paint;
  paint.SetFontID(style.font->scalerFont);
  hsGTextFace face;
  face.fScaleX = kScreenPixelShape;
  paint.SetTextFace(&face);
  paint.SetTextSize(hsIntToFixed(style.size));
  const auto* at = reinterpret_cast<const uint8_t*>(text);
  int length = 0;
  for (; utf8Decode(at, bytes, &length) >= 0; at += length, bytes -= uint32_t(length))
    device.DrawText(uint32_t(length), at, hsIntToFixed(style.size), hsIntToFixed(style.size), &paint);
  device.SetBitmap(nullptr);
}

int32_t utf8Decode(const uint8_t* bytes, size_t available, int* length) {
  const auto continues = [&](size_t i) { return (bytes[i] & 0xC0) == 0x80; };
  if (available < 1) return -1;
  const uint8_t first = bytes[0];
  if (first < 0x80) {
    *length = 1;
    return first;
  }
  if ((first & 0xE0) == 0xC0 && available >= 2 && continues(1)) {
    *length = 2;
    return (first & 0x1F) << 6 | (bytes[1] & 0x3F);
  }
  if ((first & 0xF0) == 0xE0 && available >= 3 && continues(1) && continues(2)) {
    *length = 3;
    return (first & 0x0F) << 12 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F);
  }
  return -1;
}
