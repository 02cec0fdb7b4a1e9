#include "kit/lines/bobmap.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "kit/files.h"
#include "kit/project/contenthash.h"

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kFirstLine = "bobmap 1\n";
constexpr uint32_t kMostOffset = 0xFFFF;  // branches have 16 bits
constexpr int kMostLine = 1 << 30;

// A name takes the rest of its line, so a line's end in it is written as %0a.
std::string escaped(std::string_view name) {
  std::string out;
  for (const char c : name) {
    if (c == '\n') {
      out += "%0a";
    } else if (c == '%') {
      out += "%25";
    } else {
      out += c;
    }
  }
  return out;
}

std::string unescaped(std::string_view name) {
  std::string out;
  for (; !name.empty(); name.remove_prefix(1)) {
    const bool isCode = name.starts_with("%0a") || name.starts_with("%25");
    out += !isCode ? name[0] : name[1] == '0' ? '\n' : '%';
    if (isCode) name.remove_prefix(2);
  }
  return out;
}

std::string relativeTo(const std::string& path, const std::string& source) {
  const fs::path folder = fs::absolute(path).lexically_normal().parent_path();
  return fs::absolute(source).lexically_normal().lexically_proximate(folder).generic_string();
}

// Null for none.
const BobMap::Source* sourceOf(const BobMap& map, const std::string& file) {
  const auto found =
      std::find_if(map.sources.begin(), map.sources.end(), [&](const BobMap::Source& s) { return s.file == file; });
  return found == map.sources.end() ? nullptr : &*found;
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += " " + name;
  return text + "\n";
}

std::string codeText(const BobCodeLines& code, size_t source) {
  char head[64];
  std::snprintf(head, sizeof head, "code %016llx %zu%s\nlines", static_cast<unsigned long long>(code.hash), source,
                code.continuesLine ? " continues" : "");
  std::string text = head;
  for (const BobCodeLines::Start& start : code.starts)
    text += " " + std::to_string(start.offset) + ":" + std::to_string(start.line);
  text += "\n";
  if (!code.arguments.empty()) text += "arguments" + joined(code.arguments);
  for (const BobCodeLines::Block& block : code.blocks)
    text += "block " + std::to_string(block.begin) + " " + std::to_string(block.end) + joined(block.names);
  for (const std::vector<std::string>& names : code.around) text += "around" + joined(names);
  return text;
}

class MapReader {
 public:
  MapReader(const std::string& p, std::string_view t) : path(p), left(t) {}

  BobMap read() {
    if (!left.starts_with(kFirstLine)) fail();
    left.remove_prefix(kFirstLine.size());
    for (bool ended = false; !ended;) {
      ++number;
      nextLine();
      const std::string_view key = word();
      if (key == "built") {
        map.builtHash = word();
      } else if (key == "source") {
        source();
      } else if (key == "code") {
        code();
      } else if (key == "lines") {
        starts();
      } else if (key == "arguments") {
        current().arguments = names();
      } else if (key == "block") {
        block();
      } else if (key == "around") {
        current().around.push_back(names());
      } else if (key == "end") {
        ended = true;
      } else {
        fail();
      }
      if (!line.empty()) fail();
    }
    if (!left.empty()) fail();
    for (const BobCodeLines& code : map.codes)
      if (code.starts.empty()) fail();
    return std::move(map);
  }

 private:
  [[noreturn]] void fail() const { throw KitError(path, number, "is no line table that this kpg can read"); }

  void nextLine() {
    const size_t end = left.find('\n');
    if (end == std::string_view::npos) fail();
    line = left.substr(0, end);
    left.remove_prefix(end + 1);
  }

  // The next word of the line, and the space after it.
  std::string_view word() {
    const size_t end = std::min(line.find(' '), line.size());
    const std::string_view found = line.substr(0, end);
    if (found.empty()) fail();
    line.remove_prefix(std::min(end + 1, line.size()));
    return found;
  }

  template <class Number>
  Number numberIn(std::string_view text, Number most, int base = 10) const {
    Number n = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), n, base);
    if (error != std::errc() || end != text.data() + text.size() || n > most) fail();
    return n;
  }

  BobCodeLines& current() {
    if (map.codes.empty()) fail();
    return map.codes.back();
  }

  std::vector<std::string> names() {
    std::vector<std::string> all;
    while (!line.empty()) all.emplace_back(word());
    return all;
  }

  void source() {
    const std::string hash(word());
    const fs::path name = unescaped(line);
    if (name.empty()) fail();
    line = {};
    map.sources.push_back({(fs::path(path).parent_path() / name).lexically_normal().generic_string(), hash});
  }

  void code() {
    BobCodeLines code;
    code.hash = numberIn<uint64_t>(word(), UINT64_MAX, 16);
    const size_t source = numberIn<size_t>(word(), SIZE_MAX);
    if (source >= map.sources.size()) fail();
    code.file = map.sources[source].file;
    code.continuesLine = !line.empty();
    if (code.continuesLine && word() != "continues") fail();
    map.codes.push_back(std::move(code));
  }

  void starts() {
    std::vector<BobCodeLines::Start>& all = current().starts;
    while (!line.empty()) {
      const std::string_view pair = word();
      const size_t colon = pair.find(':');
      if (colon == std::string_view::npos) fail();
      const uint32_t offset = numberIn<uint32_t>(pair.substr(0, colon), kMostOffset);
      const int at = numberIn<int>(pair.substr(colon + 1), kMostLine);
      if (at < 1 || (!all.empty() && offset <= all.back().offset)) fail();
      all.push_back({offset, at});
    }
  }

  void block() {
    const uint32_t begin = numberIn<uint32_t>(word(), kMostOffset), end = numberIn<uint32_t>(word(), kMostOffset);
    if (end < begin) fail();
    current().blocks.push_back({begin, end, names()});
  }

  const std::string& path;
  std::string_view left, line;
  int number = 1;
  BobMap map;
};

}  // namespace

bool BobMap::isCurrent(const std::string& file) const {
  const Source* source = sourceOf(*this, file);
  std::error_code error;
  return source && fs::is_regular_file(file, error) && fileHash(file) == source->hash;
}

std::string bobMapName(const std::string& built) {
  fs::path name = built;
  return name.extension() == ".kpg" ? name.replace_extension(kBobMapExtension).generic_string()
                                    : built + kBobMapExtension;
}

bool isBobMap(const std::vector<uint8_t>& bytes) {
  return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()).starts_with("bobmap ");
}

BobMap makeBobMap(std::string_view built, std::vector<BobCodeLines> codes) {
  BobMap map{contentHash({built.begin(), built.end()}), {}, std::move(codes)};
  for (const BobCodeLines& code : map.codes)
    if (!sourceOf(map, code.file)) map.sources.push_back({code.file, hashIfThere(code.file)});
  return map;
}

std::string bobMapText(const std::string& path, const BobMap& map) {
  std::string text = std::string(kFirstLine) + "built " + map.builtHash + "\n";
  for (const BobMap::Source& source : map.sources)
    text += "source " + source.hash + " " + escaped(relativeTo(path, source.file)) + "\n";
  for (const BobCodeLines& code : map.codes)
    text += codeText(code, size_t(sourceOf(map, code.file) - map.sources.data()));
  return text + "end\n";
}

BobMap parseBobMap(const std::string& path, std::string_view text) { return MapReader(path, text).read(); }

BobMap bobMapBeside(const std::string& built, const std::vector<uint8_t>& bytes, const KitWarn& warn) try {
  const std::string path = bobMapName(built);
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return {};
  const std::vector<uint8_t> text = readFile(path);
  BobMap map = parseBobMap(path, {reinterpret_cast<const char*>(text.data()), text.size()});
  if (map.builtHash == contentHash(bytes)) return map;
  if (warn)
    warn({path, 0, "warning: was made for another " + fs::path(built).filename().string() + ", and is not used"});
  return {};
} catch (const KitError& e) {
  if (warn) warn(e.messages.front());
  return {};
}
