#include "kit/lsp/fileuri.h"

#include <cctype>
#include <charconv>
#include <filesystem>

namespace {

constexpr std::string_view kFile = "file://";

std::string decoded(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    const char* digits = text.data() + i + 1;
    if (text[i] == '%' && i + 2 < text.size() && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
      out += char(byte);
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

bool isUri(std::string_view text) {
  const size_t colon = text.find(':');
  return colon != std::string_view::npos && colon > 1 && text.find('/') > colon;
}

// On Windows, where file:///c%3A/page.yaml is c:/page.yaml.
bool beginsWithDrive(std::string_view path) { return std::filesystem::path(path).has_root_name(); }

}  // namespace

std::string pathOfUri(std::string_view uri) {
  if (!uri.starts_with(kFile)) return std::string(uri);
  uri.remove_prefix(kFile.size());
  const size_t slash = uri.find('/');  // after the name of a machine, which is empty or this one
  if (slash == std::string_view::npos) return {};
  std::string path = decoded(uri.substr(slash));
  if (beginsWithDrive(std::string_view(path).substr(1))) path.erase(0, 1);
  return fullPath(path);
}

std::string uriOfPath(std::string_view path) {
  if (isUri(path)) return std::string(path);
  std::string out(kFile);
  if (beginsWithDrive(path)) out += '/';
  for (const char c : path) {
    if (std::isalnum(uint8_t(c)) || std::string_view("/-._~").find(c) != std::string_view::npos) {
      out += c;
    } else {
      constexpr char kDigits[] = "0123456789ABCDEF";
      out += {'%', kDigits[uint8_t(c) >> 4], kDigits[uint8_t(c) & 15]};
    }
  }
  return out;
}

std::string fullPath(std::string_view path) {
  if (isUri(path)) return std::string(path);
  return std::filesystem::absolute(path).lexically_normal().generic_string();
}
