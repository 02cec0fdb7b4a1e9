// kpg font: what a font file holds, whether the player can draw with it, and how that looks.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string_view>

#include "gfx/pixel/hsgrasterdevice.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hssfnt.h"
#include "kpg/commands.h"
#include "kpg/errors.h"
#include "kpg/files.h"
#include "kpg/png.h"
#include "kpg/stdoutaside.h"
#include "t2k/t2k.h"

namespace {

enum class FontKind { none, sfnt, collection, type1 };

FontKind kindOf(const std::vector<uint8_t>& bytes) {
  const uint32_t tag = hsSfntU32(bytes, 0);
  if (tag == hsTag("ttcf")) return FontKind::collection;
  if (tag == 0x10000 || tag == hsTag("true") || tag == hsTag("OTTO")) return FontKind::sfnt;
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.starts_with("%!") || text.starts_with("\x80\x01")) return FontKind::type1;
  return FontKind::none;
}

// A font as the engine opens it: the first face of a collection. `error` tells why it doesn't.
class OpenedFont {
 public:
  explicit OpenedFont(std::vector<uint8_t>& bytes) {
    memory = tsi_NewMemhandler(&error);
    stream = New_InputStream3(memory, bytes.data(), uint32_t(bytes.size()), &error);
    if (error == 0) font = New_sfntClass(memory, kFontTypeSfnt, 0, stream, nullptr, &error);
    if (font) scaler = NewT2K(memory, font, &error);
  }
  ~OpenedFont() {
    int ignored = 0;
    if (scaler) DeleteT2K(scaler, &ignored);
    if (font) Delete_sfntClass(font, &ignored);
    if (stream) Delete_InputStream(stream, &ignored);
    tsi_DeleteMemhandler(memory);
  }
  OpenedFont(const OpenedFont&) = delete;
  OpenedFont& operator=(const OpenedFont&) = delete;

  int error = 0;
  sfntClass* font = nullptr;
  T2K* scaler = nullptr;

 private:
  tsiMemObject* memory = nullptr;
  InputStream* stream = nullptr;
};

// ---- what it holds

std::string tagText(uint32_t tag) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const char c = char(tag >> shift);
    text += c >= ' ' && c <= '~' ? c : '?';
  }
  return text;
}

void printNames(uint32_t id) {
  constexpr const char* kNames[kFontNameKinds] = {"family", "style", "full name", "PostScript name"};
  for (uint32_t kind = 0; kind < kFontNameKinds; ++kind) {
    std::string name(hsGFontRegistry::GetFontName(id, kind, nullptr), '\0');
    hsGFontRegistry::GetFontName(id, kind, name.data());
    for (char& c : name)
      if (uint8_t(c) < ' ') c = '?';
    if (!name.empty()) std::cout << kNames[kind] << ": " << name << "\n";
  }
}

void printTables(hsSfntBytes directory) {
  const uint32_t count = hsSfntU16(directory, 4);
  std::cout << "tables:";
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t entry = hsSfnt::kDirectoryHeader + i * hsSfnt::kDirectoryEntry;
    if (entry + hsSfnt::kDirectoryEntry > directory.size()) break;
    std::cout << " " << tagText(hsSfntU32(directory, entry)) << " " << hsSfntU32(directory, entry + 12)
              << (i + 1 < count ? "," : "");
  }
  std::cout << "\n";
}

void printCharacterMaps(hsSfntBytes bytes) {
  uint32_t length = 0;
  const uint32_t offset = hsSfnt::FindTable(bytes, hsTag("cmap"), &length);
  if (offset == 0 || offset >= bytes.size()) return;
  const hsSfntBytes cmap = bytes.subspan(offset, std::min<size_t>(length, bytes.size() - offset));
  std::cout << "character maps:";
  const char* separator = " ";
  for (uint32_t i = 0; i < hsSfntU16(cmap, 2) && 4 + 8 * (size_t{i} + 1) <= cmap.size(); ++i) {
    const uint32_t record = 4 + 8 * i;
    std::cout << separator << "platform " << hsSfntU16(cmap, record) << " encoding " << hsSfntU16(cmap, record + 2)
              << " format " << hsSfntU16(cmap, hsSfntU32(cmap, record + 4));
    separator = ", ";
  }
  std::cout << "\n";
}

// Codes that have a glyph, or an engine error.
int countCharacters(T2K* scaler) {
  int count = 0;
  for (uint32_t code = 0; code <= 0xFFFF; ++code) count += T2K_GetGlyphIndex(scaler, uint16_t(code)) != 0;
  return count;
}

void printMeasures(const OpenedFont& opened) {
  int32_t ascent, descent, lineGap, maxAdvance, rise, run;
  GetFontMetrics(opened.font, &ascent, &descent, &lineGap, &maxAdvance, &rise, &run);
  std::cout << "glyphs: " << GetNumGlyphs(opened.font) << " for " << countCharacters(opened.scaler)
            << " characters\nunits an em: " << GetUPEM(opened.font) << ", ascent " << ascent << ", descent " << descent
            << ", line gap " << lineGap << "\nkerning: " << (opened.font->kern ? "yes" : "no") << "\n";
}

// ---- the specimen

constexpr char kPangram[] = "The quick brown fox jumps over the lazy dog. 0123456789";
constexpr int kSizes[] = {12, 16, 20, 24, 32, 48};
constexpr int kSpecimenWidth = 720, kMargin = 12, kBetweenSizes = 12;

// How a page's style asks for it: neither antialias nor gridfit, gridfit, antialias, both.
constexpr uint32_t kUnfitted = hsGAttribute::kLinearText | hsGAttribute::kNoGridFit;
constexpr uint32_t kLooks[] = {kUnfitted, 0, hsGAttribute::kAntiAlias | kUnfitted, hsGAttribute::kAntiAlias};

// Calls draw(paint, baseline) for each line from the top down, and gives the height of all.
template <class Draw>
int layOut(uint32_t id, Draw&& draw) {
  int y = kMargin;
  for (int size : kSizes) {
    for (uint32_t look : kLooks) {
      hsGAttribute paint(look);
      paint.SetFontID(id);
      paint.SetTextSize(hsIntToFixed(size));
      hsPoint top, bottom;
      paint.MeasureText(0, nullptr, &top, &bottom);
      draw(&paint, y - hsFixedRound(top.fY));
      y += std::clamp(hsFixedRound(hsWrapSub(bottom.fY, top.fY)), 1, 4 * size);
    }
    y += kBetweenSizes;
  }
  return y - kBetweenSizes + kMargin;
}

// Black on white, by the coverage that the player would draw with.
void writeSpecimen(uint32_t id, const std::string& path) {
  const int height = layOut(id, [](hsGAttribute*, int) {});
  std::vector<uint8_t> coverage(size_t(kSpecimenWidth) * size_t(height));
  hsGBitmap bitmap;
  bitmap.SetConfig(hsGBitmap::kConfig_Alpha8);
  bitmap.fWidth = bitmap.fRowBytes = kSpecimenWidth;
  bitmap.fHeight = uint32_t(height);
  bitmap.fImage = coverage.data();
  hsGRasterDevice device;
  device.SetBitmap(&bitmap);
  layOut(id, [&](hsGAttribute* paint, int baseline) {
    device.DrawText(sizeof kPangram - 1, kPangram, hsIntToFixed(kMargin), hsIntToFixed(baseline), paint);
  });
  device.SetBitmap(nullptr);
  std::vector<uint32_t> pixels;
  for (uint8_t c : coverage) pixels.push_back((255u - c) * 0x010101);
  writePng(path, kSpecimenWidth, height, pixels);
}

void tell(const std::string& path, const std::string& picture) {
  std::vector<uint8_t> bytes = readFile(path);
  const FontKind kind = kindOf(bytes);
  if (kind == FontKind::none) throw CommandError(path + ": not a font");
  constexpr const char* kKinds[] = {"", "TrueType or OpenType", "collection", "Type 1"};
  std::cout << "format: " << kKinds[int(kind)] << ", " << bytes.size() << " bytes\n";
  if (kind == FontKind::type1) throw CommandError(path + ": the player draws no Type 1 fonts");
  if (kind == FontKind::collection)
    std::cout << "faces: " << hsSfntU32(bytes, 8) << ", of which the player takes the first\n";

  const uint32_t id = hsGFontRegistry::RegisterMemory(uint32_t(bytes.size()), bytes.data(), false, 0);
  if (kind == FontKind::sfnt) {
    printNames(id);
    printTables(bytes);
    printCharacterMaps(bytes);
  }
  {
    OpenedFont opened(bytes);
    if (opened.scaler) printMeasures(opened);
    std::cout << "opens: " << (opened.scaler ? "yes" : "no") << "\n" << std::flush;
    if (!opened.scaler)
      throw CommandError(path + ": the player can't draw with it (error " + std::to_string(opened.error) + ")");
  }
  if (!picture.empty()) {
    const StandardOutputAside aside;
    writeSpecimen(id, picture);
    hsGFontRegistry::Reset();  // the bytes go
  }
}

}  // namespace

void addFontCommand(CommandLine& line) {
  struct Options {
    std::string font, picture;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command(
      "font", "Tell what a font file holds and whether the player can draw with it; exit status 1 if it can't");
  command.add("font", options->font, "The font").required().type("FILE");
  command
      .add("--out", options->picture,
           "A specimen to write: at each size without antialias and gridfit, with gridfit, with antialias, "
           "with both")
      .type("PNG");
  command.runs([options] { tell(options->font, options->picture); });
}
