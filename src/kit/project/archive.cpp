#include "kit/project/archive.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "kit/errors.h"

namespace {

constexpr std::string_view kComment = "made by kpg";
constexpr uint32_t kFirstDay = 0x0021;  // 1 January 1980, where the days of zip begin
constexpr int kRawDeflate = -15, kGzip = 15 + 16;
constexpr size_t kTarBlock = 512;

std::vector<uint8_t> compressed(const std::vector<uint8_t>& bytes, int window) {
  z_stream stream{};
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, window, 9, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("out of memory");
  std::vector<uint8_t> out(deflateBound(&stream, uLong(bytes.size())) + 32);  // and the header of gzip
  stream.next_in = const_cast<Bytef*>(bytes.data());
  stream.avail_in = uInt(bytes.size());
  stream.next_out = out.data();
  stream.avail_out = uInt(out.size());
  const int result = deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  if (result != Z_STREAM_END) throw std::runtime_error("out of memory");
  return out;
}

// Numbers with the lowest byte first.
class Bytes {
 public:
  void u16(uint32_t n) { number(n, 2); }
  void u32(uint32_t n) { number(n, 4); }
  void text(std::string_view t) { out.insert(out.end(), t.begin(), t.end()); }
  void all(const std::vector<uint8_t>& bytes) { out.insert(out.end(), bytes.begin(), bytes.end()); }
  std::vector<uint8_t> out;

 private:
  void number(uint32_t n, int count) {
    for (int i = 0; i < count; ++i) out.push_back(uint8_t(n >> 8 * i));
  }
};

// What the two headers of a file in a zip have in common.
struct ZipEntry {
  const ArchivedFile& file;
  bool isDeflated;
  std::vector<uint8_t> stored;
  uint32_t offset = 0;

  explicit ZipEntry(const ArchivedFile& f) : file(f), stored(compressed(f.bytes, kRawDeflate)) {
    isDeflated = stored.size() < f.bytes.size();
    if (!isDeflated) stored = f.bytes;
  }

  void describe(Bytes* to) const {
    constexpr uint32_t kVersion = 20, kNamesAreUtf8 = 1 << 11, kDeflate = 8;
    to->u16(kVersion);
    to->u16(kNamesAreUtf8);
    to->u16(isDeflated ? kDeflate : 0);
    to->u16(0);
    to->u16(kFirstDay);
    to->u32(uint32_t(crc32(0, file.bytes.data(), uInt(file.bytes.size()))));
    to->u32(uint32_t(stored.size()));
    to->u32(uint32_t(file.bytes.size()));
    to->u16(uint32_t(file.name.size()));
    to->u16(0);
  }
};

void checkName(const std::string& name, size_t most) {
  if (name.size() > most) throw KitError(name, "this name is too long for the archive");
}

void tarHeader(const ArchivedFile& file, std::vector<uint8_t>* out) {
  char header[kTarBlock] = {};
  const auto field = [&](size_t at, const std::string& text) { std::copy(text.begin(), text.end(), header + at); };
  const auto octal = [&](size_t at, int digits, uint64_t n) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*llo", digits, static_cast<unsigned long long>(n));
    field(at, text);
  };
  // A long name is cut at a slash, for two fields of 155 and 100 bytes.
  const size_t slash = file.name.size() > 100 ? file.name.find('/', file.name.size() - 101) : 0;
  if (slash == std::string::npos || slash > 155) checkName(file.name, 0);
  field(0, slash == 0 ? file.name : file.name.substr(slash + 1));
  if (slash > 0) field(345, file.name.substr(0, slash));
  octal(100, 7, 0644);
  octal(108, 7, 0);
  octal(116, 7, 0);
  octal(124, 11, file.bytes.size());
  octal(136, 11, 0);
  field(148, "        ");
  field(156, "0");
  field(257, "ustar");
  field(263, "00");
  uint32_t sum = 0;
  for (const char c : header) sum += uint8_t(c);
  octal(148, 6, sum);
  header[154] = '\0';
  out->insert(out->end(), header, header + sizeof header);
}

}  // namespace

std::vector<uint8_t> zipArchive(const std::vector<ArchivedFile>& files) {
  Bytes zip;
  std::vector<ZipEntry> entries;
  for (const ArchivedFile& file : files) {
    checkName(file.name, UINT8_MAX);
    ZipEntry& entry = entries.emplace_back(file);
    entry.offset = uint32_t(zip.out.size());
    zip.text("PK\3\4");
    entry.describe(&zip);
    zip.text(file.name);
    zip.all(entry.stored);
  }
  const uint32_t directory = uint32_t(zip.out.size());
  for (const ZipEntry& entry : entries) {
    zip.text("PK\1\2");
    zip.u16(20);
    entry.describe(&zip);
    zip.u16(0);  // comment
    zip.u16(0);  // disk
    zip.u16(0);  // attributes
    zip.u32(0);
    zip.u32(entry.offset);
    zip.text(entry.file.name);
  }
  const uint32_t size = uint32_t(zip.out.size()) - directory;
  zip.text("PK\5\6");
  zip.u32(0);
  zip.u16(uint32_t(entries.size()));
  zip.u16(uint32_t(entries.size()));
  zip.u32(size);
  zip.u32(directory);
  zip.u16(uint32_t(kComment.size()));
  zip.text(kComment);
  return std::move(zip.out);
}

std::vector<uint8_t> tarGzArchive(const std::vector<ArchivedFile>& files) {
  std::vector<uint8_t> tar;
  for (const ArchivedFile& file : files) {
    tarHeader(file, &tar);
    tar.insert(tar.end(), file.bytes.begin(), file.bytes.end());
    tar.resize((tar.size() + kTarBlock - 1) / kTarBlock * kTarBlock);
  }
  tar.resize(tar.size() + 2 * kTarBlock);
  return compressed(tar, kGzip);
}

bool isKitZip(const std::vector<uint8_t>& bytes) {
  return bytes.size() > kComment.size() && bytes[0] == 'P' &&
         std::equal(kComment.begin(), kComment.end(), bytes.end() - long(kComment.size()));
}
