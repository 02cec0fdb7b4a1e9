#include "gfx/text/hsgfontregistry.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsfolderiterator.h"
#include "gfx/foundation/hsmemory.h"
#include "gfx/text/hsgglyphcache.h"

namespace {

constexpr int32_t kNoMatch = -1;
constexpr uint32_t kAnyKindOrder[] = {kFontName_Full, kFontName_PostScript, kFontName_Family, kFontName_Style};

struct Registry {
  std::vector<hsGFontScaler*> fonts;
  std::map<std::string, int32_t> names[kFontNameKinds];  // in lower case, to an identifier or kNoMatch
  uint32_t lastID = 0;
  bool loaded = false;
  bool scanFolder = false;
  const hsGFontFileEntry* files = nullptr;
  uint32_t fileCount = 0;
  const hsGFontMemoryEntry* memory = nullptr;
  uint32_t memoryCount = 0;
  const char* const* preferred = nullptr;
  hsCharMapper mapper = nullptr;
};

Registry& TheRegistry() {
  static Registry* registry = new Registry;  // outlives whatever draws text on the way out
  return *registry;
}

uint32_t FormatOr(uint32_t format) { return format ? format : uint32_t{kFontFormat_TrueType}; }

void Changed(Registry& registry) {
  for (auto& names : registry.names) names.clear();
  hsGGlyphCache::Shutdown();
}

uint32_t Append(Registry& registry, hsGFontScaler* font) {
  registry.fonts.push_back(font);
  Changed(registry);
  return font->FontID();
}

uint32_t AddFile(Registry& registry, const char* path, uint32_t format) {
  return Append(registry, new hsGFontFile(++registry.lastID, FormatOr(format), path));
}

uint32_t AddMemory(Registry& registry, uint32_t size, const void* data, bool owned, uint32_t format) {
  return Append(registry, new hsGFontMemory(++registry.lastID, FormatOr(format), size, data, owned));
}

void ScanFolder(Registry& registry) {
  hsFolderIterator folder;
  folder.UseWindowsFontsPath("Fonts");
  while (folder.NextFileSuffix("ttf")) {
    char path[kFolderIterator_MaxPath];
    folder.GetPathAndName(path);
    AddFile(registry, path, 0);
  }
}

Registry& Loaded() {
  Registry& registry = TheRegistry();
  if (registry.loaded) return registry;
  registry.loaded = true;
  if (registry.files) {
    for (uint32_t i = 0; i < registry.fileCount && registry.files[i].fPath; ++i)
      AddFile(registry, registry.files[i].fPath, registry.files[i].fFormat);
  } else if (registry.memory) {
    for (uint32_t i = 0; i < registry.memoryCount && registry.memory[i].fData; ++i)
      AddMemory(registry, registry.memory[i].fSize, registry.memory[i].fData, false, registry.memory[i].fFormat);
  }
  if (registry.scanFolder) ScanFolder(registry);
  return registry;
}

hsGFontScaler* Find(const Registry& registry, uint32_t id) {
  for (hsGFontScaler* font : registry.fonts)
    if (font->FontID() == id) return font;
  return nullptr;
}

int32_t SearchName(const Registry& registry, uint32_t nameKind, const char* name) {
  for (hsGFontScaler* font : registry.fonts) {
    font->Acquire();
    const bool matches = font->MatchName(nameKind, name);
    font->Release();
    if (matches) return int32_t(font->FontID());
  }
  return kNoMatch;
}

std::string LowerCase(std::string name) {
  for (char& c : name)
    if (c >= 'A' && c <= 'Z') c = char(c + 32);
  return name;
}

}  // namespace

uint32_t hsGFontRegistry::RegisterFile(const char* path, uint32_t format) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "rb"), std::fclose);
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
  return RegisterMemory(uint32_t(bytes.size()), hsMemory::Dup(int32_t(bytes.size()), bytes.data()), true, format);
}

uint32_t hsGFontRegistry::RegisterMemory(uint32_t size, const void* data, bool owned, uint32_t format) {
  if (!data) return 0;
  return AddMemory(Loaded(), size, data, owned, format);
}

void hsGFontRegistry::UnregisterFont(uint32_t id) {
  Registry& registry = Loaded();
  hsGFontScaler* font = Find(registry, id);
  if (!font) return;
  std::erase(registry.fonts, font);
  Changed(registry);
  font->UnRef();
}

void hsGFontRegistry::SetFontFiles(const hsGFontFileEntry* list, uint32_t count) {
  TheRegistry().files = list;
  TheRegistry().fileCount = count;
}

void hsGFontRegistry::SetFontMemory(const hsGFontMemoryEntry* list, uint32_t count) {
  TheRegistry().memory = list;
  TheRegistry().memoryCount = count;
}

void hsGFontRegistry::SetPreferredNames(const char* const* names) { TheRegistry().preferred = names; }
void hsGFontRegistry::SetScanFolder(bool scan) { TheRegistry().scanFolder = scan; }

void hsGFontRegistry::Reset() {
  Registry& registry = TheRegistry();
  std::vector<hsGFontScaler*> fonts;
  fonts.swap(registry.fonts);
  registry.loaded = false;
  Changed(registry);
  for (hsGFontScaler* font : fonts) font->UnRef();
}

uint32_t hsGFontRegistry::FindFontID(uint32_t nameKind, const char* name) {
  if (nameKind == kFontName_Any) {
    for (uint32_t kind : kAnyKindOrder)
      if (const uint32_t id = FindFontID(kind, name)) return id;
    return 0;
  }
  if (nameKind >= kFontNameKinds) return 0;
  Registry& registry = Loaded();
  const auto [entry, isNew] = registry.names[nameKind].try_emplace(LowerCase(name), kNoMatch);
  if (isNew) entry->second = SearchName(registry, nameKind, name);
  return entry->second == kNoMatch ? 0 : uint32_t(entry->second);
}

uint32_t hsGFontRegistry::GetFontName(uint32_t id, uint32_t nameKind, char buffer[]) {
  hsGFontScaler* font = Find(Loaded(), id);
  if (!font) return 0;
  uint32_t length = 0;
  font->Acquire();
  if (nameKind == kFontName_Any) {
    for (uint32_t kind : kAnyKindOrder)
      if ((length = font->GetName(kind, buffer)) != 0) break;
  } else {
    length = font->GetName(nameKind, buffer);
  }
  font->Release();
  return length;
}

hsGFontScaler* hsGFontRegistry::GetFontByID(uint32_t id) {
  Registry& registry = Loaded();
  if (hsGFontScaler* font = Find(registry, id)) return font;
  hsThrowIfBadParam(registry.fonts.empty());
  for (const char* const* name = registry.preferred; name && *name; ++name)
    if (hsGFontScaler* font = Find(registry, FindFontID(kFontName_Any, *name))) return font;
  return registry.fonts.front();
}

bool hsGFontRegistry::IsFontID(uint32_t id) { return Find(Loaded(), id) != nullptr; }
uint32_t hsGFontRegistry::FontCount() { return uint32_t(Loaded().fonts.size()); }

hsGFontScaler* hsGFontRegistry::FontAtIndex(uint32_t index) {
  Registry& registry = Loaded();
  return index < registry.fonts.size() ? registry.fonts[index] : nullptr;
}

void hsGFontRegistry::SetCharMapper(hsCharMapper mapper) { TheRegistry().mapper = mapper; }
hsCharMapper hsGFontRegistry::CharMapper() { return TheRegistry().mapper; }
