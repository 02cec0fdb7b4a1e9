#include "kit/project/mentions.h"

#include <filesystem>

#include "gfx/foundation/hsascii.h"

namespace fs = std::filesystem;

namespace {

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

bool isNameCharacter(char c) {
  const char lower = hsAsciiLower(c);
  return (lower >= 'a' && lower <= 'z') || hsAsciiIsDigit(c) || c == '_' || c == '-' || c == '.';
}

// Whether a text of its own begins with the extension, as in `name + ".kpx"`.
bool hasBareExtension(std::string_view text, std::string_view extension) {
  for (size_t at = text.find(extension); at != std::string_view::npos; at = text.find(extension, at + 1))
    if (at == 0 || !isNameCharacter(text[at - 1])) return true;
  return false;
}

}  // namespace

bool mentions(std::string_view bytes, const std::string& file) {
  return contains(bytes, fs::path(file).filename().string());
}

bool scriptMentions(std::string_view bytes, const std::string& file) {
  const fs::path name = fs::path(file).filename();
  return mentions(bytes, file) ||
         (contains(bytes, name.stem().string()) && hasBareExtension(bytes, name.extension().string()));
}
