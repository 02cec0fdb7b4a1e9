// What a registered font says of itself, by the graphics library's own reading of its tables: names, character maps,
// sizes. The last byte chooses the format.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "folder.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgfontscaler.h"
#include "gfx/text/hssfnt.h"

namespace {

constexpr uint32_t kFormats[] = {kFontFormat_TrueType, kFontFormat_SfntInRam, kFontFormat_BitmapOnly};

void askNames(hsGFontScaler& font) {
  for (uint32_t kind = 0; kind <= kFontNameKinds; ++kind) {
    std::string name(font.GetName(kind, nullptr), ' ');
    font.GetName(kind, name.data());
    if (!name.empty() && name.find('\0') == name.npos && !font.MatchName(kind, name.c_str())) __builtin_trap();
    font.MatchName(kind, "Block Sans");
  }
}

void askMaps(hsGFontT2K& font) {
  const std::vector<uint8_t> table = font.ReadTable(hsTag("cmap"));
  for (const bool unicode : {false, true}) {
    uint16_t platform = 0, script = 0;
    if (!font.GetEncoding(unicode, &platform, &script)) continue;
    const uint32_t offset = hsSfnt::FindCmap(table, platform, script);
    if (offset >= table.size()) continue;
    const std::array<uint16_t, 6> text{'A', 'g', 0x8141, 0xE9, 0xFFFF, 0};
    std::array<uint16_t, 12> glyphs;
    const uint32_t length = sizeof text;
    hsSfnt::MapChars(hsSfntBytes(table).subspan(offset), length, text.data(), unicode, glyphs.data());
  }
  for (const int code : {0x41, 0x30, 0xE9}) font.CharToGlyph(uint16_t(code));
}

void ask(hsGFontT2K& font) {
  const hsGFontAccess open(&font);
  askNames(font);
  askMaps(font);
  const std::vector<uint8_t> names = font.ReadTable(hsTag("name"));
  hsSfnt::CompareName(names, hsSfnt::kAny, 1, 1, 0, 5, "Block");
  for (const uint32_t tag : {hsTag("glyf"), hsTag("head"), hsTag("EBLC")}) font.ReadTable(tag);
  uint8_t bytes[4];
  const uint32_t size = font.CalcDataSize();
  if (size < hsSfnt::kDirectoryHeader) return;
  const auto* header = static_cast<const uint8_t*>(font.ReadData(0, hsSfnt::kDirectoryHeader, nullptr));
  hsSfnt::DataSize({header, hsSfnt::kDirectoryHeader});
  font.CopyData(size - 4, sizeof bytes, bytes);
  font.CopyData(size - 3, sizeof bytes, bytes);  // which isn't there
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  hsSetHaltProc([] {});  // a font without a map that is asked for one is reported
  const uint32_t format = kFormats[data[size - 1] % 3];
  enterFolder();
  writeBytes("f.ttf", data, size);
  try {
    hsGFontMemory memory(1, format, uint32_t(size), data, false);
    ask(memory);
  } catch (const hsException&) {
  }
  try {
    hsGFontFile file(2, format, "f.ttf");
    ask(file);
  } catch (const hsException&) {
  }
  return 0;
}
