#include "kit/source/pagesource.h"

#include <yaml-cpp/depthguard.h>
#include <yaml-cpp/yaml.h>

#include <cctype>
#include <charconv>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>

#include "engine/screen/display.h"
#include "engine/screen/standardcolor.h"
#include "host/color.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/source/base64.h"
#include "kit/source/schema.h"
#include "kit/source/scripts.h"

namespace {

// Anchors can lead to themselves and multiply; both bounds lie far beyond what a page may hold.
constexpr int kMaxSourceDepth = 1000;
constexpr int kMaxObjects = 500'000;

std::optional<int64_t> parseInteger(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  if (hex) text.remove_prefix(2);
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size() || value > 0xFFFFFFFF) return std::nullopt;
  return negative ? -int64_t(value) : int64_t(value);
}

std::optional<bool> parseBoolean(std::string_view text) {
  if (text == "true" || text == "yes" || text == "1") return true;
  if (text == "false" || text == "no" || text == "0") return false;
  return std::nullopt;
}

constexpr std::string_view kYamlTags = "tag:yaml.org,2002:";  // written !!

bool isText(const YAML::Node& node) {
  return node.IsScalar() && (node.Tag() == "!" /* quoted */ || node.Tag() == std::string(kYamlTags) + "str");
}

bool isPlain(const YAML::Node& node) {
  const std::string& tag = node.Tag();
  return tag.empty() || tag == "?" || tag == "!" || tag.starts_with(kYamlTags);
}

class SourceReader {
 public:
  SourceReader(std::string f, const KitWarn& w) : file(std::move(f)), warn(w) {}

  PageTree read() {
    YAML::Node top;
    const std::vector<uint8_t> bytes = readFile(file);
    text.assign(bytes.begin(), bytes.end());
    try {
      top = YAML::Load(text);
    } catch (const YAML::DeepRecursion& e) {
      throw KitError(file, e.mark.line + 1, "nested too deep");
    } catch (const YAML::Exception& e) {
      throw KitError(file, e.mark.line + 1, e.msg);
    }
    expectMap(top, "a page source");
    PageTree page;
    bool hasPage = false;
    eachPair(top, [&](const std::string& key, const YAML::Node& value, const YAML::Node& keyNode) {
      if (key == "flags") {
        page.flags = flags(value);
        indexed = page.flags & kPageIs8Bit;
      } else if (key == "page") {
        hasPage = true;
      } else {
        fail(keyNode, "unknown key '" + key + "'; a page source has 'flags' and 'page'");
      }
    });
    if (!hasPage) fail(top, "there is no 'page'");
    expectNoTag(top["page"]);
    page.root = node(top["page"], ObjectKind::root);
    page.scriptFiles = std::move(scriptFiles);
    return page;
  }

 private:
  [[noreturn]] void fail(const YAML::Node& node, const std::string& message) const {
    throw KitError(file, node.Mark().line + 1, message);
  }

  void expectMap(const YAML::Node& node, const std::string& what) const {
    if (!node.IsMap()) fail(node, what + " must be a map");
  }

  // Where the form is settled there is no choice for a tag.
  void expectNoTag(const YAML::Node& node) const {
    if (!isPlain(node)) fail(node, "no tag can be used here: " + node.Tag());
  }

  // Calls back with each pair in source order; a repeated key is an error.
  template <class F>
  void eachPair(const YAML::Node& map, F&& f) const {
    std::set<std::string> seen;
    for (const auto& pair : map) {
      if (!pair.first.IsScalar()) fail(pair.first, "a key must be a name");
      const std::string& key = pair.first.Scalar();
      if (!seen.insert(key).second) fail(pair.first, "'" + key + "' is given twice");
      f(key, pair.second, pair.first);
    }
  }

  uint32_t flags(const YAML::Node& value) const {
    expectNoTag(value);
    if (value.IsScalar()) {
      if (value.Scalar() == "8bit") return kPageIs8Bit;
      if (value.Scalar() == "16bit") return 0;
      if (const auto number = parseInteger(value.Scalar())) return uint32_t(*number);
    }
    fail(value, "'flags' is 8bit or 16bit");
  }

  const std::string& scalar(const YAML::Node& value, const char* what) const {
    if (!value.IsScalar()) fail(value, std::string("expecting ") + what);
    return value.Scalar();
  }

  uint16_t position(const YAML::Node& value) const {
    expectNoTag(value);
    const auto number = parseInteger(scalar(value, "a number of pixels"));
    if (!number || *number < 0 || *number > 65535) fail(value, "a position or size goes from 0 to 65535");
    return uint16_t(*number);
  }

  PageNode node(const YAML::Node& source, ObjectKind kind) {
    expectMap(source, "an object");
    const Nesting nesting(*this, source);
    if (++objectCount > kMaxObjects) fail(source, "there are too many objects");
    const std::string type = typeOf(source);
    PageNode result;
    eachPair(source, [&](const std::string& key, const YAML::Node& value, const YAML::Node& keyNode) {
      if (key == "x") return void(result.x = position(value));
      if (key == "y") return void(result.y = position(value));
      if (key == "width") return void(result.width = position(value));
      if (key == "height") return void(result.height = position(value));
      if (key.find('\0') != std::string::npos) fail(keyNode, "a name can't hold a zero byte");
      const AttributeForm form = attributeForm(kind, type, key);
      if (!form && kind != ObjectKind::other) warnAt(keyNode, "nothing reads '" + key + "'");
      result.attributes.push_back({key, attribute(value, form)});
    });
    return result;
  }

  std::string typeOf(const YAML::Node& source) const {
    for (const auto& pair : source)
      if (pair.first.IsScalar() && pair.first.Scalar() == "type" && pair.second.IsScalar()) return pair.second.Scalar();
    return {};
  }

  void warnAt(const YAML::Node& node, const std::string& message) const {
    if (warn) warn({file, node.Mark().line + 1, "warning: " + message});
  }

  // A YAML tag decides over the form that the reader wants.
  PageValue attribute(const YAML::Node& value, AttributeForm form) {
    const std::string& tag = value.Tag();
    if (tag == "!int") return integer(value);
    if (tag == "!bool") return boolean(value);
    if (tag == "!color") return color(value);
    if (tag == "!string") return string(value);
    if (tag == "!script") return script(value);
    if (tag == "!scriptdata") return scriptData(value);
    if (tag == "!object") return object(value);
    if (tag == "!table") return table(value, tableObjectKind(form));
    if (!isPlain(value)) fail(value, "unknown tag " + tag);

    if (!form) return byLooks(value);
    switch (*form) {
      case AttributeKind::integer: return integer(value);
      case AttributeKind::boolean: return boolean(value);
      case AttributeKind::color: return color(value);
      case AttributeKind::string: return string(value);
      case AttributeKind::script: return script(value);
      case AttributeKind::widgets:
      case AttributeKind::styles:
      case AttributeKind::lines: return objects(value, form);
      case AttributeKind::files: return files(value);
    }
    return byLooks(value);
  }

  PageValue number(PageTag tag, uint32_t n) const {
    PageValue result;
    result.tag = tag;
    result.number = n;
    return result;
  }

  PageValue integer(const YAML::Node& value) const {
    const auto n = parseInteger(scalar(value, "a whole number"));
    if (!n || *n < INT32_MIN) fail(value, "'" + value.Scalar() + "' is no whole number of 32 bits");
    return number(PageTag::integer, uint32_t(*n));
  }

  PageValue boolean(const YAML::Node& value) const {
    const std::string& text = scalar(value, "true or false");
    const auto flag = parseBoolean(text);
    // Any word is a number to the engine, so the tag's own values come back as they were.
    if (!flag && value.Tag() == "!bool")
      if (const auto n = parseInteger(text)) return number(PageTag::boolean, uint32_t(*n));
    if (!flag) fail(value, "'" + text + "' is neither true nor false");
    return number(PageTag::boolean, *flag);
  }

  PageValue color(const YAML::Node& value) const {
    const std::string& text = scalar(value, "a colour");
    const int depth = indexed ? 8 : 16;
    if (text == "black") return number(PageTag::color, standardColorFor(kColorBlack, depth));
    if (text == "white") return number(PageTag::color, standardColorFor(kColorWhite, depth));
    if (text == "transparent") return number(PageTag::color, standardColorFor(kColorTransparent, depth));
    if (text.starts_with('#')) return rgb(value, text.substr(1));
    const auto n = parseInteger(text);
    if (!n || *n < 0) fail(value, "'" + text + "' is no colour");
    return number(PageTag::color, uint32_t(*n));
  }

  PageValue rgb(const YAML::Node& value, const std::string& digits) const {
    if (indexed) fail(value, "\"#RRGGBB\" is for 16-bit pages; an 8-bit page takes an index of its colour table");
    const auto n = digits.size() == 6 ? parseInteger("0x" + digits) : std::nullopt;
    if (!n) fail(value, "'#" + digits + "' is no colour of the form #RRGGBB");
    return number(PageTag::color, rgbToYCrCb(uint32_t(*n) << 8));
  }

  PageValue string(const YAML::Node& value) const {
    PageValue result;
    result.tag = PageTag::string;
    result.bytes = value.IsNull() ? "" : scalar(value, "text");
    if (result.bytes.find('\0') != std::string::npos) fail(value, "a text can't hold a zero byte");
    return result;
  }

  PageValue script(const YAML::Node& value) {
    PageValue result;
    result.tag = PageTag::script;
    const std::string source = value.IsNull() ? "" : scalar(value, "a script");
    try {
      result.bytes = compiler().compile(source);
    } catch (const ScriptError& e) {
      throw KitError(file, firstLine(value) + e.line - 1, e.what());
    }
    return result;
  }

  // Where the scalar's own text begins: a block scalar's after the line of its indicator.
  int firstLine(const YAML::Node& value) const {
    const YAML::Mark mark = value.Mark();
    const size_t at = std::min(size_t(mark.pos), text.size());
    const std::string rest = text.substr(at, text.find('\n', at) - at);
    size_t indicator = 0;
    if (rest.starts_with('!'))
      indicator = rest.find_first_not_of(" \t", std::min(rest.find_first_of(" \t"), rest.size()));
    const bool isBlock = indicator < rest.size() && (rest[indicator] == '|' || rest[indicator] == '>');
    return mark.line + (isBlock ? 2 : 1);
  }

  // Made when there is something to compile.
  ScriptCompiler& compiler() {
    if (!scripts) scripts = std::make_unique<ScriptCompiler>();
    return *scripts;
  }

  PageValue scriptData(const YAML::Node& value) const {
    const auto bytes = base64Decode(value.IsNull() ? "" : scalar(value, "base64"));
    if (!bytes) fail(value, "this is no base64");
    PageValue result;
    result.tag = PageTag::script;
    result.bytes = *bytes;
    return result;
  }

  PageValue object(const YAML::Node& value) {
    PageValue result;
    result.tag = PageTag::object;
    if (!value.IsNull() && !(value.IsScalar() && value.Scalar().empty()))
      result.object.push_back(node(value, ObjectKind::other));
    return result;
  }

  PageValue objects(const YAML::Node& value, AttributeForm form) {
    if (!value.IsSequence()) fail(value, "expecting a list of objects");
    for (const YAML::Node& item : value) expectMap(item, "an entry of this list");
    return table(value, tableObjectKind(form));
  }

  PageValue files(const YAML::Node& value) {
    if (!value.IsSequence()) fail(value, "expecting a list of file names");
    PageValue result;
    result.tag = PageTag::table;
    for (const YAML::Node& item : value) {
      expectNoTag(item);
      PageValue name = string(item);
      if (name.bytes.ends_with(".bob")) name.bytes = compileFile(item);
      result.table.push_back(std::move(name));
    }
    return result;
  }

  // Compiles the script file of that name, beside the page source, and returns the object file's name.
  std::string compileFile(const YAML::Node& item) {
    const std::string& name = item.Scalar();
    const std::string path = (std::filesystem::path(file).parent_path() / name).string();
    std::vector<uint8_t> source;
    try {
      source = readFile(path);
    } catch (const KitError&) {
      fail(item, "can't read '" + name + "'");
    }
    try {
      scriptFiles.push_back(
          {name + "o", compiler().compileFile({reinterpret_cast<char*>(source.data()), source.size()})});
    } catch (const ScriptError& e) {
      throw KitError(path, e.line, e.what());
    }
    return scriptFiles.back().name;
  }

  PageValue table(const YAML::Node& value, ObjectKind kind) {
    const Nesting nesting(*this, value);
    PageValue result;
    result.tag = PageTag::table;
    if (value.IsNull() || (value.IsScalar() && value.Scalar().empty())) return result;
    if (!value.IsSequence()) fail(value, "expecting a list");
    for (const YAML::Node& item : value) {
      expectNoTag(item);
      if (!item.IsMap()) {
        result.table.push_back(string(item));
        continue;
      }
      PageValue entry;
      entry.tag = PageTag::object;
      entry.object.push_back(node(item, kind));
      result.table.push_back(std::move(entry));
    }
    return result;
  }

  PageValue byLooks(const YAML::Node& value) {
    if (value.IsMap()) return object(value);
    if (value.IsSequence()) return table(value, ObjectKind::other);
    if (value.IsNull() || isText(value)) return string(value);
    const auto n = parseInteger(value.Scalar());
    if (n && *n >= INT32_MIN) return integer(value);
    if (value.Scalar() == "true" || value.Scalar() == "false") return boolean(value);
    return string(value);
  }

  // Counts how deep the reader is.
  struct Nesting {
    Nesting(SourceReader& r, const YAML::Node& at) : reader(r) {
      if (++reader.depth > kMaxSourceDepth) reader.fail(at, "nested too deep");
    }
    ~Nesting() { --reader.depth; }
    SourceReader& reader;
  };

  std::string file;
  std::string text;  // of the whole source
  std::unique_ptr<ScriptCompiler> scripts;
  std::vector<ScriptFile> scriptFiles;
  const KitWarn& warn;
  bool indexed = false;  // an 8-bit page
  int depth = 0;
  int objectCount = 0;
};

}  // namespace

PageTree readPageSource(const std::string& path, const KitWarn& warn) { return SourceReader(path, warn).read(); }
