#include "kit/fonts/fontreport.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include "gfx/text/hssfnt.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/fonts/registeredfont.h"
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

// A font as the engine opens it: the first face of a collection. `error` says why it doesn't.
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

std::string tagText(uint32_t tag) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const char c = char(tag >> shift);
    text += c >= ' ' && c <= '~' ? c : '?';
  }
  return text;
}

// What an error of the font engine means to whoever chose the font.
std::string reasonOf(int error) {
  switch (error) {
    case kT2KDamagedFont: return "it is cut short, or breaks the rules of its format";
    case kT2KBadCmapFormat: return "it has no character map of a format that the player reads";
    case kT2KOutOfMemory: return "it is too large";
    default: return "error " + std::to_string(error);
  }
}

void printNames(uint32_t id, std::ostream& out) {
  constexpr const char* kNames[kFontNameKinds] = {"family", "style", "full name", "PostScript name"};
  for (uint32_t kind = 0; kind < kFontNameKinds; ++kind) {
    std::string name(hsGFontRegistry::GetFontName(id, kind, nullptr), '\0');
    hsGFontRegistry::GetFontName(id, kind, name.data());
    for (char& c : name)
      if (uint8_t(c) < ' ') c = '?';
    if (!name.empty()) out << kNames[kind] << ": " << name << "\n";
  }
}

void printTables(hsSfntBytes directory, std::ostream& out) {
  const uint32_t count = hsSfntU16(directory, 4);
  out << "tables:";
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t entry = hsSfnt::kDirectoryHeader + i * hsSfnt::kDirectoryEntry;
    if (entry + hsSfnt::kDirectoryEntry > directory.size()) break;
    out << " " << tagText(hsSfntU32(directory, entry)) << " " << hsSfntU32(directory, entry + 12)
        << (i + 1 < count ? "," : "");
  }
  out << "\n";
}

// The first missing table of those that the engine needs to draw outlines, or nothing.
std::string missingTable(hsSfntBytes bytes) {
  for (const uint32_t tag : {hsTag("head"), hsTag("hhea"), hsTag("maxp")}) {
    uint32_t length = 0;
    if (hsSfnt::FindTable(bytes, tag, &length) == 0) return tagText(tag);
  }
  return "";
}

void printCharacterMaps(hsSfntBytes bytes, std::ostream& out) {
  uint32_t length = 0;
  const uint32_t offset = hsSfnt::FindTable(bytes, hsTag("cmap"), &length);
  if (offset == 0 || offset >= bytes.size()) return;
  const hsSfntBytes cmap = bytes.subspan(offset, std::min<size_t>(length, bytes.size() - offset));
  out << "character maps:";
  const char* separator = " ";
  for (uint32_t i = 0; i < hsSfntU16(cmap, 2) && 4 + 8 * (size_t{i} + 1) <= cmap.size(); ++i) {
    const uint32_t record = 4 + 8 * i;
    out << separator << "platform " << hsSfntU16(cmap, record) << " encoding " << hsSfntU16(cmap, record + 2)
        << " format " << hsSfntU16(cmap, hsSfntU32(cmap, record + 4));
    separator = ", ";
  }
  out << "\n";
}

// Codes that have a glyph, or an engine error.
int countCharacters(T2K* scaler) {
  int count = 0;
  for (uint32_t code = 0; code <= 0xFFFF; ++code) count += T2K_GetGlyphIndex(scaler, uint16_t(code)) != 0;
  return count;
}

void printMeasures(const OpenedFont& opened, std::ostream& out) {
  int32_t ascent, descent, lineGap, maxAdvance, rise, run;
  GetFontMetrics(opened.font, &ascent, &descent, &lineGap, &maxAdvance, &rise, &run);
  out << "glyphs: " << GetNumGlyphs(opened.font) << " for " << countCharacters(opened.scaler)
      << " characters\nunits an em: " << GetUPEM(opened.font) << ", ascent " << ascent << ", descent " << descent
      << ", line gap " << lineGap << "\nkerning: " << (opened.font->kern ? "yes" : "no") << "\n";
}

void printSfnt(const std::vector<uint8_t>& bytes, std::ostream& out) {
  const RegisteredFont font(bytes);
  printNames(font.id, out);
  printTables(bytes, out);
  printCharacterMaps(bytes, out);
}

}  // namespace

FontReport reportFont(const std::string& path) {
  std::vector<uint8_t> bytes = readFile(path);
  const FontKind kind = kindOf(bytes);
  if (kind == FontKind::none) throw KitError(path, "not a font");
  std::ostringstream out;
  constexpr const char* kKinds[] = {"", "TrueType or OpenType", "collection", "Type 1"};
  out << "format: " << kKinds[int(kind)] << ", " << bytes.size() << " bytes\n";
  if (kind == FontKind::type1) return {out.str(), "the player draws no Type 1 fonts"};
  if (kind == FontKind::collection)
    out << "faces: " << hsSfntU32(bytes, 8) << ", of which the player takes the first\n";
  if (kind == FontKind::sfnt) printSfnt(bytes, out);

  const OpenedFont opened(bytes);
  if (opened.scaler) printMeasures(opened, out);
  out << "opens: " << (opened.scaler ? "yes" : "no") << "\n";
  // A font without one of these tables may still open, but then draws nothing.
  const std::string missing = kind == FontKind::sfnt ? missingTable(bytes) : "";
  if (opened.scaler && (missing.empty() || GetNumGlyphs(opened.font) > 0)) return {out.str(), ""};
  return {out.str(), "the player can't draw with it: " +
                         (missing.empty() ? reasonOf(opened.error) : "it has no '" + missing + "' table")};
}
