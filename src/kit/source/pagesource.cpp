#include "kit/source/pagesource.h"

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
#include "kit/yaml/readyaml.h"

namespace {

constexpr int kMaxObjects = 500'000;  // far beyond what a page may hold

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

bool isText(const YamlNode& node) {
  return node.isScalar() && (node.style != YamlNode::Style::plain || node.tag == "!!str");
}

bool isPlain(const YamlNode& node) { return node.tag.empty() || node.tag.starts_with("!!"); }

class SourceReader {
 public:
  SourceReader(std::string f, const KitWarn& w) : file(std::move(f)), warn(w) {}

  PageTree read() {
    const YamlNode top = readYaml(file);
    expectMap(top, "a page source");
    PageTree page;
    bool hasPage = false;
    eachPair(top, [&](const std::string& key, const YamlNode& value, const YamlPlace& keyPlace) {
      if (key == "flags") {
        page.flags = flags(value);
        indexed = page.flags & kPageIs8Bit;
      } else if (key == "page") {
        hasPage = true;
      } else {
        fail(keyPlace, "unknown key '" + key + "'; a page source has 'flags' and 'page'");
      }
    });
    if (!hasPage) fail(top, "there is no 'page'");
    expectNoTag(*top.find("page"));
    page.root = node(*top.find("page"), ObjectKind::root);
    page.scriptFiles = std::move(scriptFiles);
    return page;
  }

 private:
  [[noreturn]] void fail(const YamlNode& node, const std::string& message) const {
    throw KitError(messageAt(node.place, message));
  }

  void expectMap(const YamlNode& node, const std::string& what) const {
    if (!node.isMap()) fail(node, what + " must be a map");
  }

  // Where the form is settled there is no choice for a tag.
  void expectNoTag(const YamlNode& node) const {
    if (!isPlain(node)) fail(node, "no tag can be used here: " + node.tag);
  }

  [[noreturn]] void fail(const YamlPlace& place, const std::string& message) const {
    throw KitError(messageAt(place, message));
  }

  // Calls back with each pair in source order; a repeated key is an error.
  template <class F>
  void eachPair(const YamlNode& map, F&& f) const {
    std::set<std::string> seen;
    for (const YamlPair& pair : map.map) {
      if (!seen.insert(pair.key).second) fail(pair.place, "'" + pair.key + "' is given twice");
      f(pair.key, pair.value, pair.place);
    }
  }

  uint32_t flags(const YamlNode& value) const {
    expectNoTag(value);
    if (value.isScalar()) {
      if (value.text == "8bit") return kPageIs8Bit;
      if (value.text == "16bit") return 0;
      if (const auto number = parseInteger(value.text)) return uint32_t(*number);
    }
    fail(value, "'flags' is 8bit or 16bit");
  }

  const std::string& scalar(const YamlNode& value, const char* what) const {
    if (!value.isScalar()) fail(value, std::string("expecting ") + what);
    return value.text;
  }

  uint16_t position(const YamlNode& value) const {
    expectNoTag(value);
    const auto number = parseInteger(scalar(value, "a number of pixels"));
    if (!number || *number < 0 || *number > 65535) fail(value, "a position or size goes from 0 to 65535");
    return uint16_t(*number);
  }

  PageNode node(const YamlNode& source, ObjectKind kind) {
    expectMap(source, "an object");
    if (++objectCount > kMaxObjects) fail(source, "there are too many objects");
    const std::string type = typeOf(source);
    PageNode result;
    eachPair(source, [&](const std::string& key, const YamlNode& value, const YamlPlace& keyPlace) {
      if (key == "x") return void(result.x = position(value));
      if (key == "y") return void(result.y = position(value));
      if (key == "width") return void(result.width = position(value));
      if (key == "height") return void(result.height = position(value));
      if (key.find('\0') != std::string::npos) fail(keyPlace, "a name can't hold a zero byte");
      const AttributeForm form = attributeForm(kind, type, key);
      if (!form && kind != ObjectKind::other) warnAt(keyPlace, "nothing reads '" + key + "'");
      result.attributes.push_back({key, attribute(value, form)});
    });
    return result;
  }

  static std::string typeOf(const YamlNode& source) {
    const YamlNode* type = source.find("type");
    return type && type->isScalar() ? type->text : "";
  }

  void warnAt(const YamlPlace& place, const std::string& message) const {
    if (warn) warn(messageAt(place, "warning: " + message));
  }

  // A YAML tag decides over the form that the reader wants.
  PageValue attribute(const YamlNode& value, AttributeForm form) {
    const std::string& tag = value.tag;
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

  PageValue integer(const YamlNode& value) const {
    const auto n = parseInteger(scalar(value, "a whole number"));
    if (!n || *n < INT32_MIN) fail(value, "'" + value.text + "' is no whole number of 32 bits");
    return number(PageTag::integer, uint32_t(*n));
  }

  PageValue boolean(const YamlNode& value) const {
    const std::string& text = scalar(value, "true or false");
    const auto flag = parseBoolean(text);
    // Any word is a number to the engine, so the tag's own values come back as they were.
    if (!flag && value.tag == "!bool")
      if (const auto n = parseInteger(text)) return number(PageTag::boolean, uint32_t(*n));
    if (!flag) fail(value, "'" + text + "' is neither true nor false");
    return number(PageTag::boolean, *flag);
  }

  PageValue color(const YamlNode& value) const {
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

  PageValue rgb(const YamlNode& value, const std::string& digits) const {
    if (indexed) fail(value, "\"#RRGGBB\" is for 16-bit pages; an 8-bit page takes an index of its colour table");
    const auto n = digits.size() == 6 ? parseInteger("0x" + digits) : std::nullopt;
    if (!n) fail(value, "'#" + digits + "' is no colour of the form #RRGGBB");
    return number(PageTag::color, rgbToYCrCb(uint32_t(*n) << 8));
  }

  PageValue string(const YamlNode& value) const {
    PageValue result;
    result.tag = PageTag::string;
    result.bytes = value.isNull() ? "" : scalar(value, "text");
    if (result.bytes.find('\0') != std::string::npos) fail(value, "a text can't hold a zero byte");
    return result;
  }

  PageValue script(const YamlNode& value) {
    PageValue result;
    result.tag = PageTag::script;
    const std::string source = value.isNull() ? "" : scalar(value, "a script");
    try {
      result.bytes = compiler().compile(source);
    } catch (const ScriptError& e) {
      throw KitError(*value.place.file, value.textLine + e.line - 1, e.what());
    }
    return result;
  }

  // Made when there is something to compile.
  ScriptCompiler& compiler() {
    if (!scripts) scripts = std::make_unique<ScriptCompiler>();
    return *scripts;
  }

  PageValue scriptData(const YamlNode& value) const {
    const auto bytes = base64Decode(value.isNull() ? "" : scalar(value, "base64"));
    if (!bytes) fail(value, "this is no base64");
    PageValue result;
    result.tag = PageTag::script;
    result.bytes = *bytes;
    return result;
  }

  PageValue object(const YamlNode& value) {
    PageValue result;
    result.tag = PageTag::object;
    if (!value.isNull() && !(value.isScalar() && value.text.empty()))
      result.object.push_back(node(value, ObjectKind::other));
    return result;
  }

  PageValue objects(const YamlNode& value, AttributeForm form) {
    if (!value.isList()) fail(value, "expecting a list of objects");
    for (const YamlNode& item : value.list) expectMap(item, "an entry of this list");
    return table(value, tableObjectKind(form));
  }

  PageValue files(const YamlNode& value) {
    if (!value.isList()) fail(value, "expecting a list of file names");
    PageValue result;
    result.tag = PageTag::table;
    for (const YamlNode& item : value.list) {
      expectNoTag(item);
      PageValue name = string(item);
      if (name.bytes.ends_with(".bob")) name.bytes = compileFile(item);
      result.table.push_back(std::move(name));
    }
    return result;
  }

  // Compiles the script file of that name, beside the page source, and returns the object file's name.
  std::string compileFile(const YamlNode& item) {
    const std::string& name = item.text;
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

  PageValue table(const YamlNode& value, ObjectKind kind) {
    PageValue result;
    result.tag = PageTag::table;
    if (value.isNull() || (value.isScalar() && value.text.empty())) return result;
    if (!value.isList()) fail(value, "expecting a list");
    for (const YamlNode& item : value.list) {
      expectNoTag(item);
      if (!item.isMap()) {
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

  PageValue byLooks(const YamlNode& value) {
    if (value.isMap()) return object(value);
    if (value.isList()) return table(value, ObjectKind::other);
    if (value.isNull() || isText(value)) return string(value);
    const auto n = parseInteger(value.text);
    if (n && *n >= INT32_MIN) return integer(value);
    if (value.text == "true" || value.text == "false") return boolean(value);
    return string(value);
  }

  std::string file;
  std::unique_ptr<ScriptCompiler> scripts;
  std::vector<ScriptFile> scriptFiles;
  const KitWarn& warn;
  bool indexed = false;  // an 8-bit page
  int objectCount = 0;
};

}  // namespace

PageTree readPageSource(const std::string& path, const KitWarn& warn) { return SourceReader(path, warn).read(); }
