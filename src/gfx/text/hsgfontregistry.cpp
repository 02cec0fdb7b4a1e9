#include "gfx/text/hsgfontregistry.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gfx/foundation/hsascii.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsfolderiterator.h"
#include "gfx/foundation/hsglibrary.h"
#include "gfx/foundation/hsmemory.h"
#include "gfx/text/hsgfontset.h"
#include "gfx/text/hsgglyphcache.h"
#include "platform/openfile.h"

namespace {

constexpr int32_t kNoMatch = -1;
constexpr uint32_t kAnyKindOrder[] = {kFontName_Full, kFontName_PostScript, kFontName_Family, kFontName_Style};

hsGFontSet& TheFonts() { return *hsGLibrary::Current().fFonts; }

uint32_t FormatOr(uint32_t format) { return format ? format : uint32_t{kFontFormat_TrueType}; }

void Changed(hsGFontSet& set) {
  for (auto& names : set.fNames) names.clear();
  hsGGlyphCache::Shutdown();
}

uint32_t Append(hsGFontSet& set, hsRef<hsGFontScaler> font) {
  set.fFonts.push_back(std::move(font));
  Changed(set);
  return set.fFonts.back()->FontID();
}

uint32_t AddFile(hsGFontSet& set, const char* path, uint32_t format) {
  return Append(set, hsMake<hsGFontFile>(++set.fLastID, FormatOr(format), path));
}

hsRef<hsGFontScaler> MakeMemory(hsGFontSet& set, uint32_t size, const void* data, bool owned, uint32_t format) {
  return hsMake<hsGFontMemory>(++set.fLastID, FormatOr(format), size, data, owned);
}

uint32_t AddMemory(hsGFontSet& set, uint32_t size, const void* data, bool owned, uint32_t format) {
  return Append(set, MakeMemory(set, size, data, owned, format));
}

void ScanFolder(hsGFontSet& set) {
  hsFolderIterator folder;
  folder.UseWindowsFontsPath("Fonts");
  while (folder.NextFileSuffix("ttf")) {
    char path[kFolderIterator_MaxPath];
    folder.GetPathAndName(path);
    AddFile(set, path, 0);
  }
}

hsGFontSet& Loaded() {
  hsGFontSet& set = TheFonts();
  if (set.fLoaded) return set;
  set.fFonts.clear();  // of a load that found no memory
  if (set.fFiles) {
    for (uint32_t i = 0; i < set.fFileCount && set.fFiles[i].fPath; ++i)
      AddFile(set, set.fFiles[i].fPath, set.fFiles[i].fFormat);
  } else if (set.fMemory) {
    for (uint32_t i = 0; i < set.fMemoryCount && set.fMemory[i].fData; ++i)
      AddMemory(set, set.fMemory[i].fSize, set.fMemory[i].fData, false, set.fMemory[i].fFormat);
  }
  if (set.fScanFolder) ScanFolder(set);
  set.fLoaded = true;
  return set;
}

hsGFontScaler* Find(const hsGFontSet& set, uint32_t id) {
  for (const auto& font : set.fFonts)
    if (font->FontID() == id) return font.get();
  return nullptr;
}

int32_t SearchName(const hsGFontSet& set, uint32_t nameKind, const char* name) {
  for (const auto& font : set.fFonts) {
    const hsGFontAccess access(font.get());
    if (font->MatchName(nameKind, name)) return int32_t(font->FontID());
  }
  return kNoMatch;
}

std::string LowerCase(std::string name) {
  for (char& c : name) c = hsAsciiLower(c);
  return name;
}

}  // namespace

uint32_t hsGFontRegistry::RegisterFile(const char* path, uint32_t format) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openFile(path, "rb"), std::fclose);
  return file ? RegisterStream(file.get(), format) : 0;
}

uint32_t hsGFontRegistry::RegisterStream(std::FILE* file, uint32_t format) {
  std::vector<uint8_t> bytes;
  uint8_t piece[4096];
  while (const size_t got = std::fread(piece, 1, sizeof piece, file)) {
    if (bytes.size() + got > INT32_MAX) return 0;
    bytes.insert(bytes.end(), piece, piece + got);
  }
  if (bytes.empty() || std::ferror(file)) return 0;
  std::unique_ptr<void, void (*)(void*)> data(hsMemory::Dup(int32_t(bytes.size()), bytes.data()), hsMemory::Delete);
  const auto font = MakeMemory(Loaded(), uint32_t(bytes.size()), data.get(), true, format);
  data.release();  // the font's now
  return Append(Loaded(), font);
}

uint32_t hsGFontRegistry::RegisterMemory(uint32_t size, const void* data, bool owned, uint32_t format) {
  if (!data) return 0;
  return AddMemory(Loaded(), size, data, owned, format);
}

void hsGFontRegistry::UnregisterFont(uint32_t id) {
  hsGFontSet& set = Loaded();
  const auto font = hsShare(Find(set, id));
  if (!font) return;
  std::erase_if(set.fFonts, [&](const auto& other) { return other.get() == font.get(); });
  Changed(set);
}

void hsGFontRegistry::SetFontFiles(const hsGFontFileEntry* list, uint32_t count) {
  TheFonts().fFiles = list;
  TheFonts().fFileCount = count;
}

void hsGFontRegistry::SetFontMemory(const hsGFontMemoryEntry* list, uint32_t count) {
  TheFonts().fMemory = list;
  TheFonts().fMemoryCount = count;
}

void hsGFontRegistry::SetPreferredNames(const char* const* names) { TheFonts().fPreferred = names; }
void hsGFontRegistry::SetScanFolder(bool scan) { TheFonts().fScanFolder = scan; }

void hsGFontRegistry::Reset() {
  hsGFontSet& set = TheFonts();
  const auto fonts = std::exchange(set.fFonts, {});  // they go last, after the strikes
  set.fLoaded = false;
  Changed(set);
}

uint32_t hsGFontRegistry::FindFontID(uint32_t nameKind, const char* name) {
  if (nameKind == kFontName_Any) {
    for (uint32_t kind : kAnyKindOrder)
      if (const uint32_t id = FindFontID(kind, name)) return id;
    return 0;
  }
  if (nameKind >= kFontNameKinds) return 0;
  hsGFontSet& set = Loaded();
  auto& names = set.fNames[nameKind];
  const std::string lower = LowerCase(name);
  auto entry = names.find(lower);
  if (entry == names.end()) entry = names.emplace(lower, SearchName(set, nameKind, name)).first;
  return entry->second == kNoMatch ? 0 : uint32_t(entry->second);
}

uint32_t hsGFontRegistry::GetFontName(uint32_t id, uint32_t nameKind, char buffer[]) {
  hsGFontScaler* font = Find(Loaded(), id);
  if (!font) return 0;
  const hsGFontAccess access(font);
  if (nameKind != kFontName_Any) return font->GetName(nameKind, buffer);
  for (uint32_t kind : kAnyKindOrder)
    if (const uint32_t length = font->GetName(kind, buffer)) return length;
  return 0;
}

hsGFontScaler* hsGFontRegistry::GetFontByID(uint32_t id) {
  hsGFontSet& set = Loaded();
  if (hsGFontScaler* font = Find(set, id)) return font;
  hsThrowIfBadParam(set.fFonts.empty());
  for (const char* const* name = set.fPreferred; name && *name; ++name)
    if (hsGFontScaler* font = Find(set, FindFontID(kFontName_Any, *name))) return font;
  return set.fFonts.front().get();
}

bool hsGFontRegistry::IsFontID(uint32_t id) { return Find(Loaded(), id) != nullptr; }
uint32_t hsGFontRegistry::FontCount() { return uint32_t(Loaded().fFonts.size()); }

hsGFontScaler* hsGFontRegistry::FontAtIndex(uint32_t index) {
  hsGFontSet& set = Loaded();
  return index < set.fFonts.size() ? set.fFonts[index].get() : nullptr;
}

void hsGFontRegistry::SetCharMapper(hsCharMapper mapper) { TheFonts().fMapper = mapper; }
hsCharMapper hsGFontRegistry::CharMapper() { return TheFonts().fMapper; }
