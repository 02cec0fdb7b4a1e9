#include "kit/pictures/picturekind.h"

#include <string_view>

#include "engine/format/pagefile.h"

namespace {

using namespace std::string_view_literals;

struct FileKind {
  size_t at;
  std::string_view bytes;
  const char* name;
};

constexpr FileKind kKinds[] = {
    {0, "\xFF\xD8\xFF"sv, "a JPEG picture"},
    {8, "WEBP"sv, "a WebP picture"},
    {4, "ftypavif"sv, "an AVIF picture"},
    {4, "ftyphei"sv, "a HEIF picture"},
    {4, "ftypmif1"sv, "a HEIF picture"},
    {0, "BM"sv, "a BMP picture"},
    {0, "II*\0"sv, "a TIFF picture"},
    {0, "MM\0*"sv, "a TIFF picture"},
    {0, "\0\0\1\0"sv, "an icon (ICO)"},
    {0, "<svg"sv, "an SVG drawing"},
    {0, "<?xml"sv, "an XML file, perhaps an SVG drawing"},
    {0, "8BPS"sv, "a picture with layers (PSD)"},
    {0, "gimp xcf"sv, "a picture with layers (XCF)"},
    {0, "%PDF"sv, "a PDF document"},
    {0, "<!DOCTYPE html"sv, "an HTML page"},
    {0, kPageMagic, "a page"},
};

}  // namespace

std::string describePictureFile(const std::vector<uint8_t>& bytes) {
  const std::string_view file(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (file.empty()) return "an empty file";
  for (const FileKind& kind : kKinds)
    if (file.size() >= kind.at && file.substr(kind.at).starts_with(kind.bytes)) return kind.name;
  return "";
}
