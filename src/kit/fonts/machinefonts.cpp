#include "kit/fonts/machinefonts.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "gfx/foundation/hsascii.h"
#include "gfx/foundation/hstypes.h"
#include "gfx/text/hssfnt.h"

namespace fs = std::filesystem;

namespace {

enum NameId : uint16_t { kFamily = 1, kStyle = 2, kFullName = 4 };
enum Platform : uint16_t { kMacintosh = 1, kWindows = 3 };

constexpr uint32_t kMostTables = 256, kMostNameBytes = 1 << 20;

std::vector<uint8_t> readPiece(std::ifstream& in, uint32_t offset, uint32_t length) {
  std::vector<uint8_t> bytes(length);
  in.clear();
  in.seekg(offset);
  in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(length));
  bytes.resize(size_t(std::max<std::streamsize>(in.gcount(), 0)));
  return bytes;
}

// The `name` table alone: fonts are large, and there may be many.
std::vector<uint8_t> nameTable(const std::string& file) {
  std::ifstream in(fs::path(file), std::ios::binary);
  const auto header = readPiece(in, 0, hsSfnt::kDirectoryHeader);
  const uint32_t tables = std::min(hsSfntU16(header, 4), kMostTables);
  const auto directory = readPiece(in, 0, hsSfnt::kDirectoryHeader + tables * hsSfnt::kDirectoryEntry);
  uint32_t length = 0;
  const uint32_t offset = hsSfnt::FindTable(directory, hsTag("name"), &length);
  return offset == 0 ? std::vector<uint8_t>() : readPiece(in, offset, std::min(length, kMostNameBytes));
}

// Names that are not ASCII are left out.
std::string nameIn(const std::vector<uint8_t>& table, uint16_t id) {
  for (const Platform platform : {kWindows, kMacintosh}) {
    uint32_t index = 0;
    const uint16_t english = platform == kWindows ? 0x409 : 0;
    const uint32_t length = hsSfnt::FindName(table, id, platform, hsSfnt::kAny, english, &index);
    if (length == 0) continue;
    std::string bytes(length, '\0'), name;
    hsSfnt::GetNameAt(table, index, bytes.data());
    for (size_t i = 0; i < bytes.size(); ++i)
      if (platform == kMacintosh || i % 2 == 1) name += bytes[i];
    if (std::all_of(name.begin(), name.end(), [](char c) { return c >= ' ' && c <= '~'; })) return name;
  }
  return "";
}

bool equal(const std::string& a, const std::string& b) { return hsAsciiEqualIgnoringCase(a.c_str(), b.c_str()); }

}  // namespace

std::vector<std::string> MachineFonts::folders() {
  std::vector<std::string> folders = {"/usr/share/fonts", "/usr/local/share/fonts", "/Library/Fonts",
                                      "/System/Library/Fonts"};
  if (const char* data = std::getenv("XDG_DATA_HOME")) folders.push_back(std::string(data) + "/fonts");
  if (const char* home = std::getenv("HOME"))
    for (const char* each : {"/.local/share/fonts", "/.fonts", "/Library/Fonts"})
      folders.push_back(std::string(home) + each);
  if (const char* windows = std::getenv("WINDIR")) folders.push_back(std::string(windows) + "\\Fonts");
  if (const char* local = std::getenv("LOCALAPPDATA"))
    folders.push_back(std::string(local) + "\\Microsoft\\Windows\\Fonts");
  return folders;
}

MachineFonts::MachineFonts() : MachineFonts(folders()) {}

MachineFonts::MachineFonts(const std::vector<std::string>& folders) {
  std::set<std::string> files;
  for (const std::string& folder : folders) {
    std::error_code error;
    for (fs::recursive_directory_iterator at(folder, fs::directory_options::follow_directory_symlink, error), end;
         !error && at != end; at.increment(error)) {
      const std::string extension = at->path().extension().string();
      if (equal(extension, ".ttf") || equal(extension, ".otf")) files.insert(at->path().generic_string());
    }
  }
  for (const std::string& file : files) {
    const std::vector<uint8_t> table = nameTable(file);
    const Font font{file, nameIn(table, kFamily), nameIn(table, kStyle), nameIn(table, kFullName)};
    if (!font.family.empty()) fonts.push_back(font);
  }
}

std::string MachineFonts::find(const std::string& name) const {
  for (const Font& font : fonts)
    if (equal(font.fullName, name) || equal(font.family + " " + font.style, name)) return font.file;
  for (const char* plain : {"Regular", "Book", "Roman", "Normal", "Medium"})
    for (const Font& font : fonts)
      if (equal(font.family, name) && equal(font.style, plain)) return font.file;
  return "";
}

std::vector<std::string> MachineFonts::names() const {
  std::set<std::string> all;
  for (const Font& font : fonts) all.insert({font.family, font.fullName});
  return {all.begin(), all.end()};
}
