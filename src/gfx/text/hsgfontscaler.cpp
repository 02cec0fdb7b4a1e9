#include "gfx/text/hsgfontscaler.h"

#include <algorithm>
#include <cstring>

#include "gfx/foundation/hsascii.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmemory.h"
#include "gfx/text/hssfnt.h"
#include "platform/openfile.h"

namespace {

constexpr uint16_t kNameIDs[kFontNameKinds] = {1, 2, 4, 6};
constexpr uint16_t kEnglish_Macintosh = 0, kEnglish_Windows = 0x409;

// Where names are looked for, in order: single bytes first.
struct NamePlace {
  uint16_t platform, script, language;
  bool wide;
};
constexpr NamePlace kNamePlaces[] = {
    {1, 0, kEnglish_Macintosh, false},
    {3, 1, kEnglish_Windows, true},
    {hsSfnt::kAny, hsSfnt::kAny, hsSfnt::kAny, false},
};

struct EncodingPlace {
  bool unicode;
  uint16_t platform, script;
};
constexpr EncodingPlace kEncodingPlaces[] = {
    {true, 3, 1},  {true, 0, hsSfnt::kAny},  {true, 3, hsSfnt::kAny},  {false, 1, 0},
    {false, 3, 1}, {false, 0, hsSfnt::kAny}, {false, 3, hsSfnt::kAny}, {false, 1, hsSfnt::kAny},
};

// A name as single bytes; characters beyond them become question marks.
std::string Narrowed(const std::vector<uint8_t>& bytes, bool wide) {
  if (!wide) return {bytes.begin(), bytes.end()};
  std::string text;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) text += bytes[i] ? '?' : char(bytes[i + 1]);
  return text;
}

std::string NameOf(hsGFontT2K* font, uint32_t nameKind) {
  if (nameKind >= kFontNameKinds) return {};
  const std::vector<uint8_t> table = font->ReadTable(hsTag("name"));
  for (const NamePlace& place : kNamePlaces) {
    uint32_t index = 0;
    const uint32_t length =
        hsSfnt::FindName(table, kNameIDs[nameKind], place.platform, place.script, place.language, &index);
    if (length == 0) continue;
    std::vector<uint8_t> bytes(length);
    hsSfnt::GetNameAt(table, index, bytes.data());
    return Narrowed(bytes, place.wide);
  }
  return {};
}

}  // namespace

hsGFontScaler::~hsGFontScaler() { hsAssert(fAccessCount == 0, "fAccessCount != 0"); }

void hsGFontScaler::Acquire() {
  if (fAccessCount == 0) AcquireSelf();
  ++fAccessCount;
}

void hsGFontScaler::Release() {
  if (--fAccessCount == 0) ReleaseSelf();
}

bool hsGFontScaler::HasAccess() const { return hsAssert(fAccessCount > 0, "we don't have access"); }

bool hsGFontScaler::GetEncoding(bool, uint16_t*, uint16_t*) { return false; }

void hsGFontScaler::CopyData(uint32_t offset, uint32_t length, void* dst) {
  if (hsAssert(dst, "dst is nil")) ReadData(offset, length, dst);
}

// ---- hsGFontT2K

void hsGFontT2K::ReadDirectory() {
  if (!fDirectory.empty() || GetDataSize() < hsSfnt::kDirectoryHeader) return;
  uint8_t header[hsSfnt::kDirectoryHeader];
  if (!ReadData(0, sizeof header, header)) return;
  const uint32_t declared = hsSfntU16(header, 4) * hsSfnt::kDirectoryEntry + hsSfnt::kDirectoryHeader;
  std::vector<uint8_t> directory(std::min(declared, GetDataSize()));
  ReadData(0, uint32_t(directory.size()), directory.data());
  fDirectory = std::move(directory);
}

uint32_t hsGFontT2K::FindTable(uint32_t tag, uint32_t* length) {
  ReadDirectory();
  return hsSfnt::FindTable(fDirectory, tag, length);
}

std::vector<uint8_t> hsGFontT2K::ReadTable(uint32_t tag) {
  uint32_t length = 0;
  const uint32_t offset = FindTable(tag, &length), size = GetDataSize();
  if (offset == 0 || offset >= size) return {};
  std::vector<uint8_t> table(std::min(length, size - offset));
  if (!table.empty()) ReadData(offset, uint32_t(table.size()), table.data());
  return table;
}

bool hsGFontT2K::GetEncoding(bool unicode, uint16_t* platform, uint16_t* script) {
  const std::vector<uint8_t> cmap = ReadTable(hsTag("cmap"));
  for (const EncodingPlace& place : kEncodingPlaces) {
    if (place.unicode != unicode || !hsSfnt::FindCmap(cmap, place.platform, place.script, script)) continue;
    *platform = place.platform;
    return true;
  }
  return false;
}

uint32_t hsGFontT2K::GetName(uint32_t nameKind, char buffer[]) {
  const std::string name = NameOf(this, nameKind);
  if (buffer) std::memcpy(buffer, name.data(), name.size());
  return uint32_t(name.size());
}

bool hsGFontT2K::MatchName(uint32_t nameKind, const char* name) {
  const std::string own = NameOf(this, nameKind);
  return !own.empty() && std::equal(own.begin(), own.end(), name, name + std::strlen(name),
                                    [](char a, char b) { return hsAsciiLower(a) == hsAsciiLower(b); });
}

uint16_t hsGFontT2K::CharToGlyph(uint16_t code) {
  const std::vector<uint8_t> cmap = ReadTable(hsTag("cmap"));
  if (!hsAssert(!cmap.empty(), "need cmap")) return 0;
  const uint32_t offset = hsSfnt::FindCmap(cmap, 1, 0);
  if (!hsAssert(offset != 0 && offset < cmap.size(), "platform/script not found")) return 0;
  const uint8_t byte = uint8_t(code);
  uint16_t glyph = 0;
  hsSfnt::MapChars(hsSfntBytes(cmap).subspan(offset), 1, &byte, false, &glyph);
  return glyph;
}

// ---- hsGFontFile

hsGFontFile::~hsGFontFile() {
  if (fFile) hsAssert(std::fclose(fFile) == 0, "fclose failed");
}

void hsGFontFile::AcquireSelf() {
  if (!hsAssert(!fFile, "AcquireSelf called too often")) return;
  fFile = openFile(fPath, "rb");
  if (!fFile) hsThrowReported("oserr", 0, hsException::kFontEngine);
}

void hsGFontFile::ReleaseSelf() {
  hsGFontT2K::ReleaseSelf();
  if (fFile) hsAssert(std::fclose(fFile) == 0, "fclose failed");
  fFile = nullptr;
}

uint32_t hsGFontFile::GetDataSize() {
  if (!HasAccess() || std::fseek(fFile, 0, SEEK_END) != 0) return 0;
  const long size = std::ftell(fFile);
  return size < 0 || size > INT32_MAX ? 0 : uint32_t(size);
}

const void* hsGFontFile::ReadData(uint32_t offset, uint32_t length, void* dst) {
  if (!HasAccess()) return nullptr;
  if (!dst) {
    fScratch.resize(length);
    dst = fScratch.data();
  }
  if (std::fseek(fFile, long(offset), SEEK_SET) != 0 || std::fread(dst, 1, length, fFile) != length)
    hsThrowReported("oserr", int32_t(offset), hsException::kFontEngine);
  return dst;
}

// ---- hsGFontMemory

hsGFontMemory::~hsGFontMemory() {
  if (fOwned) hsMemory::Delete(const_cast<uint8_t*>(fData));
}

const void* hsGFontMemory::ReadData(uint32_t offset, uint32_t length, void* dst) {
  if (!HasAccess()) return nullptr;
  hsThrowIfBadParam(offset > fSize || length > fSize - offset);
  if (!dst) return fData + offset;
  std::memcpy(dst, fData + offset, length);
  return dst;
}
