#include "kit/source/pagesource.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>

#include "engine/format/pagefile.h"
#include "engine/page/frame.h"
#include "engine/widgets/group.h"
#include "kit/expand/directions.h"
#include "kit/expand/expand.h"
#include "kit/files.h"
#include "kit/run/bobtools.h"
#include "kit/source/pagenames.h"
#include "kit/source/schema.h"
#include "kit/source/scripts.h"
#include "kit/source/sourcekeys.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"
#include "kit/utf8.h"
#include "kit/yaml/readyaml.h"

namespace fs = std::filesystem;

namespace {

constexpr uint32_t kMaxTextSize = 0x7FFF;  // whole units of 16.16
constexpr int kMaxObjects = 500'000;       // far beyond what a page may hold

std::vector<std::string> tagNames() {
  return {"!int", "!bool", "!color", "!string", "!script", "!scriptdata", "!object", "!table"};
}

std::vector<std::string> topNames() {
  std::vector<std::string> names;
  for (const SourceKey& key : topKeys()) names.emplace_back(key.name);
  return names;
}

bool isText(const YamlNode& node) {
  return node.isScalar() && (node.style != YamlNode::Style::plain || node.tag == "!!str");
}

[[noreturn]] void fail(const YamlPlace& place, const std::string& text) { throw SourceFault{place, text}; }
[[noreturn]] void fail(const YamlNode& node, const std::string& text) { fail(node.place, text); }

// The source as YAML; what authors give by mistake gets a sentence of its own.
YamlNode readPageYaml(const std::string& file, const KitWarn& warn = {}, const ReadFile& read = readFile) {
  const std::vector<uint8_t> bytes = read(file);
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.starts_with(kPageMagic))
    throw KitError(file, "is a compiled page, no source; kpg dump prints a page as source");
  if (text.find('\0') != std::string_view::npos) throw KitError(file, "is no text in UTF-8; a page source is YAML");
  // No error: a page that holds other bytes, and its dump, have to come back as they were.
  if (warn && firstBadUtf8(text) != std::string_view::npos)
    warn({file, lineOfBadUtf8(text), std::string("warning: ") + kIsNoUtf8});
  YamlNode top = parseYaml(file, std::string(text));
  if (top.isNull()) throw KitError(file, "is empty; a page source is a map with 'flags' and 'page'");
  if (!top.isMap())
    throw KitError(messageAt(top.place, "a page source is a map with 'flags' and 'page', not " + shownNode(top)));
  return top;
}

// A message that is printed once for all uses of its place.
struct Repeats {
  size_t first;     // its number among those printed
  size_t more = 0;  // uses
};

// The source's own first, then those of each other file; what is reported of a node and its copies is reported once.
std::vector<KitMessage> inOrder(std::vector<KitMessage> messages, const std::string& source) {
  std::map<std::string, size_t> files{{source, 0}};
  for (const KitMessage& message : messages) files.emplace(message.file, files.size());
  const auto key = [&](const KitMessage& m) { return std::pair(files.at(m.file), m.line); };
  std::stable_sort(messages.begin(), messages.end(), [&](const auto& a, const auto& b) { return key(a) < key(b); });
  std::vector<KitMessage> once;
  std::map<std::tuple<std::string, int, std::string>, Repeats> used;  // what is wrong at a place that others use
  std::set<std::string> seen;
  for (KitMessage& message : messages) {
    if (!seen.insert(message.whole()).second) continue;
    if (!message.uses.empty()) {
      const std::string problem = message.text.substr(message.text.find(": ") + 1);
      const auto [first, isNew] = used.try_emplace({message.file, message.line, problem}, Repeats{once.size()});
      if (!isNew) {
        ++first->second.more;
        continue;
      }
    }
    once.push_back(std::move(message));
  }
  for (const auto& [place, repeats] : used)
    if (repeats.more > 0) once[repeats.first].uses.push_back(moreUses(repeats.more));
  return once;
}

// Where the form is settled there is no choice for a tag.
void expectNoTag(const YamlNode& node) {
  if (!node.isUntagged()) fail(node, "no tag can be used here: " + node.tag);
}

class SourceReader {
 public:
  SourceReader(std::string f, const KitWarn& w, const PageSourceOptions& o) : file(std::move(f)), warn(w), options(o) {}

  PageTree read() try {
    readAll();
    return std::move(page);
  } catch (const KitError& e) {
    throw BuildError(e.messages, std::move(page.sources));
  }

 private:
  void readAll() {
    page.sources.push_back(file);
    ExpandedSource source = expandSource(readPageYaml(file, warn, options.read), errors, options.read);
    const YamlNode& top = source.plain;
    page.sources.insert(page.sources.end(), source.files.begin(), source.files.end());
    if (top.isNull()) throw KitError(inOrder(std::move(errors), file));
    eachPair(top, [&](const YamlPair& pair) {
      if (pair.key == "flags") {
        page.flags = flags(pair.value);
        indexed = page.flags & kPageIs8Bit;
      } else if (pair.key != "page") {
        fail(pair.place, "is unknown; a page source has 'flags' and 'page'" + suggestion(pair.key, topNames()));
      }
    });
    object.key = "page";
    guarded([&] {
      const YamlNode* root = top.find("page");
      if (!root) fail(top, "there is none");
      expectNoTag(*root);
      page.root = node(*root, ObjectKind::root, 1);
    });
    errors = inOrder(std::move(errors), file);
    if (!errors.empty() && !options.errors) throw KitError(errors);
    if (options.errors) *options.errors = std::move(errors);
    if (!warn) return;
    for (const KitMessage& warning : inOrder(names.warnings(), file)) warn(warning);
  }

  // The object that is being read.
  struct Object {
    ObjectKind kind = ObjectKind::other;
    std::string type, label;
    std::string key;           // of the attribute that is being read
    bool hasType = false;      // whatever it says
    bool typeIsWrong = false;  // then nothing is said of what it lacks
    int depth = 0;             // of a widget
  };

  // Keeps a fault of what `work` reads, and goes on.
  template <class F>
  void guarded(F&& work) {
    try {
      work();
    } catch (const SourceFault& fault) {
      report(fault);
    }
  }

  void report(const SourceFault& fault) { errors.push_back(messageAt(fault.at, whatIsRead() + ": " + fault.text)); }

  std::string whatIsRead() const { return object.label.empty() ? object.key : object.key + " of " + object.label; }

  // Calls back with each pair in source order; a repeated key is an error.
  template <class F>
  void eachPair(const YamlNode& map, F&& work) {
    std::map<std::string_view, int> seen;
    for (const YamlPair& pair : map.map) {
      object.key = pair.key;
      guarded([&] {
        const auto [first, isNew] = seen.emplace(pair.key, pair.place.line);
        if (!isNew) fail(pair.place, "is given twice, first in line " + std::to_string(first->second));
        work(pair);
      });
    }
  }

  uint32_t flags(const YamlNode& value) const {
    expectNoTag(value);
    const std::string& text = scalarText(value, "8bit or 16bit");
    if (text == "8bit") return kPageIs8Bit;
    if (text == "16bit") return 0;
    if (const auto number = parseInteger(text)) return uint32_t(*number);
    fail(value, shownNode(value) + " is neither 8bit nor 16bit");
  }

  // -- objects

  PageNode node(const YamlNode& source, ObjectKind kind, size_t number) {
    if (!source.isMap()) fail(source, "expecting a map of attributes, found " + shownNode(source));
    PageNode result;
    result.places.object = source.place;
    if (!countObject(source, kind)) return result;
    Object outer = std::exchange(object, describe(source, kind, number));
    checkDepth(source);
    eachPair(source, [&](const YamlPair& pair) {
      result.places.attributes.push_back({pair.key, pair.place});
      if (pair.key == "x") return void(result.x = position(pair.value));
      if (pair.key == "y") return void(result.y = position(pair.value));
      if (pair.key == "width") return void(result.width = position(pair.value));
      if (pair.key == "height") return void(result.height = position(pair.value));
      if (pair.key.find('\0') != std::string::npos) fail(pair.place, "a name can't hold a zero byte");
      result.attributes.push_back({pair.key, attribute(pair)});
      warnOfUnseen(pair, result.attributes.back().value);
      noteNames(pair, result.attributes.back().value);
    });
    checkWhole(source);
    object = std::move(outer);
    return result;
  }

  static uint16_t position(const YamlNode& value) {
    expectNoTag(value);
    return positionValue(value);
  }

  // A type that is misspelt is read as the one that was meant, so that it alone is at fault.
  Object describe(const YamlNode& source, ObjectKind kind, size_t number) const {
    const bool isWidget = kind == ObjectKind::root || kind == ObjectKind::widget;
    Object result;
    result.kind = kind;
    if (kind == ObjectKind::widget) result.depth = object.depth + 1;
    const YamlNode* type = isWidget ? source.find("type") : nullptr;
    result.hasType = type;
    if (type && type->isScalar()) {
      result.type = type->text;
      if (!isWidgetType(result.type) && type->isUntagged()) {
        result.type = nearestWord(type->text, attributeWords(kind, "", "type"));
        result.typeIsWrong = true;
      }
    }
    const YamlNode* name = isWidget || kind == ObjectKind::style ? source.find("name") : nullptr;
    const bool isNamed = name && name->isScalar() && (name->isUntagged() || name->tag == "!string");
    result.label = objectLabel(kind, result.type, isNamed ? name->text : "", number);
    return result;
  }

  // False beyond the bounds, which is reported once.
  bool countObject(const YamlNode& source, ObjectKind kind) {
    const bool isWidget = kind == ObjectKind::root || kind == ObjectKind::widget;
    ++objectCount;
    widgetCount += isWidget;
    if (isWidget && widgetCount == kMaxPageWidgets + 1)
      fail(source, "the page holds more than 65,536 widgets, and the player doesn't load such a page");
    if (objectCount == kMaxObjects + 1) fail(source, "there are too many objects");
    return widgetCount <= kMaxPageWidgets && objectCount <= kMaxObjects;
  }

  void checkDepth(const YamlNode& source) {
    if (object.depth == kMaxWidgetDepth + 1)
      errors.push_back(
          messageAt(source.place, object.label + " lies in more than 256 widgets; the player leaves it out"));
  }

  void warnAt(const YamlPlace& place, const std::string& text, const char* check = "never-shown") const {
    if (!warn) return;
    KitMessage message = messageAt(place, "warning: " + text);
    message.check = check;
    warn(message);
  }

  void warnOfUnread(const YamlPair& pair) const {
    const std::string owners = whatHas(pair.key), needed = directionNeededBy(pair.key);
    std::vector<std::string> names = attributeNames(object.kind, object.type);
    const std::vector<std::string> own = directionNames();
    names.insert(names.end(), own.begin(), own.end());
    const std::string hint = !needed.empty()  ? " without '" + needed + "'"
                             : owners.empty() ? suggestion(pair.key, names)
                                              : "; " + owners + " has one";
    warnAt(pair.place, whatIsRead() + ": nothing reads it" + hint, "unread-attribute");
  }

  void noteNames(const YamlPair& pair, const PageValue& value) {
    if (value.tag != PageTag::string) return;
    const bool isWidget = object.kind == ObjectKind::root || object.kind == ObjectKind::widget;
    if (pair.key == "name" && isWidget) names.define(NamedThing::widget, value.bytes, pair.place, whatIsRead());
    if (pair.key == "name" && object.kind == ObjectKind::style)
      names.define(NamedThing::style, value.bytes, pair.place, whatIsRead());
    const NamedThing thing = namedBy(object.kind, object.type, pair.key);
    if (thing == NamedThing::widget || thing == NamedThing::style)
      names.use(thing, value.bytes, pair.value.place, whatIsRead(), withoutWhatItNames(thing, pair.key));
  }

  // What the player does if nothing has the name in that attribute.
  static const char* withoutWhatItNames(NamedThing thing, std::string_view key) {
    if (thing == NamedThing::style) return "the player goes on without one";
    if (key == "start") return "nothing has the focus as the page opens";
    return key == "master" ? "the widget follows nobody's highlight" : "the key leads nowhere";
  }

  // What only shows when all attributes of an object are there.
  void checkWhole(const YamlNode& source) {
    object.key.clear();
    if (object.kind == ObjectKind::line)
      for (const char* key : {"style", "content"})
        if (!source.find(key)) warnAt(source.place, object.label + ": a line needs '" + key + "'");
    const YamlNode* showAll = object.type == "select" ? source.find("showAll") : nullptr;
    if (!showAll || !showAll->isUntagged() || !isTrue(*showAll)) return;
    object.key = "showAll";
    for (const char* key : {"textStyle", "highlightTextStyle"}) {
      if (!source.find(key))
        report({showAll->place, std::string("needs '") + key + "'; without it the player doesn't load the page"});
    }
  }

  static bool isTrue(const YamlNode& node) try { return booleanValue(node).number != 0; } catch (const SourceFault&) {
    return false;  // which has been reported
  }

  void warnOfUnseen(const YamlPair& pair, const PageValue& value) const {
    if (object.kind == ObjectKind::style && pair.key == "size" && value.tag == PageTag::integer &&
        (value.number < 1 || value.number > kMaxTextSize))
      warnAt(pair.place, whatIsRead() + ": " + shownNode(pair.value) + " draws nothing; a size is 1 to 32767 pixels");
    if (isNeverSeen(object.type, pair.key) && (value.number != 0 || !value.bytes.empty()))
      warnAt(pair.place, whatIsRead() + ": a " + object.type + " doesn't show it");
  }

  // -- values

  // A YAML tag decides over the form that the reader wants.
  PageValue attribute(const YamlPair& pair) {
    const YamlNode& value = pair.value;
    AttributeForm form = attributeForm(object.kind, object.type, pair.key);
    if (value.isUntagged() && isChildrenOfPlainBox(object.kind, object.type, pair.key)) {
      if (!object.typeIsWrong) report({pair.place, "a plain box shows none; say 'type: group'"});
      form = AttributeKind::widgets;  // so that what is wrong with them is reported, too
    }
    if (!form && !object.hasType && value.isUntagged() && isMisspeltType(object.kind, pair.key))
      fail(pair.place, "nothing reads it; did you mean 'type'?");
    if (!form && object.kind != ObjectKind::other && !object.typeIsWrong) warnOfUnread(pair);
    if (value.isUntagged()) return form ? byForm(pair, *form) : byLooks(value);
    return byTag(pair, form);
  }

  PageValue byTag(const YamlPair& pair, AttributeForm form) {
    const YamlNode& value = pair.value;
    const std::string& tag = value.tag;
    if (tag == "!int") return integerValue(value);
    if (tag == "!bool") return booleanValue(value);
    if (tag == "!color") return colorValue(value, indexed);
    if (tag == "!string") return stringValue(value);
    if (tag == "!script") return script(pair);
    if (tag == "!scriptdata") return scriptDataValue(value);
    if (tag == "!object") return nested(value);
    if (tag == "!table") return table(value, tableObjectKind(form));
    fail(value, "unknown tag " + tag + "; there are " + listOfWords(tagNames()) + suggestion(tag, tagNames()));
  }

  PageValue byForm(const YamlPair& pair, AttributeKind kind) {
    const YamlNode& value = pair.value;
    switch (kind) {
      case AttributeKind::integer: return integer(pair);
      case AttributeKind::boolean: return booleanValue(value);
      case AttributeKind::color: return colorValue(value, indexed);
      case AttributeKind::string: return word(pair);
      case AttributeKind::script: return script(pair);
      case AttributeKind::files: return files(value);
      case AttributeKind::widgets:
      case AttributeKind::styles:
      case AttributeKind::lines: break;
    }
    if (!value.isList()) fail(value, "expecting a list, found " + shownNode(value));
    return table(value, tableObjectKind(kind), true);
  }

  PageValue integer(const YamlPair& pair) const {
    PageValue value = integerValue(pair.value);
    const std::string problem = whyNumberIsRefused(object.kind, object.type, pair.key, int32_t(value.number));
    if (!problem.empty()) fail(pair.value, problem);
    return value;
  }

  PageValue byLooks(const YamlNode& value) {
    if (value.isMap()) return nested(value);
    if (value.isList()) return table(value, ObjectKind::other);
    if (value.isNull() || isText(value)) return stringValue(value);
    const auto n = parseInteger(value.text);
    if (n && *n >= INT32_MIN) return integerValue(value);
    if (value.text == "true" || value.text == "false") return booleanValue(value);
    return stringValue(value);
  }

  // A text; where the player knows some words only, it must be one of them.
  PageValue word(const YamlPair& pair) const {
    PageValue value = stringValue(pair.value);
    if (isAttributeWord(object.kind, object.type, pair.key, value.bytes)) return value;
    const std::vector<std::string> words = attributeWords(object.kind, object.type, pair.key);
    fail(pair.value, shownNode(pair.value) + " is not " + (words.size() > 1 ? "one of " : "") +
                         listOfWords(words, "and") + suggestion(value.bytes, words));
  }

  PageValue nested(const YamlNode& value) {
    PageValue result;
    result.tag = PageTag::object;
    if (!value.isNull() && !(value.isScalar() && value.text.empty()))
      result.object.push_back(node(value, ObjectKind::other, 1));
    return result;
  }

  PageValue table(const YamlNode& value, ObjectKind kind, bool objectsOnly = false) {
    PageValue result;
    result.tag = PageTag::table;
    if (value.isNull() || (value.isScalar() && value.text.empty())) return result;
    if (!value.isList()) fail(value, "expecting a list, found " + shownNode(value));
    for (size_t i = 0; i < value.list.size(); ++i)
      guarded([&] { result.table.push_back(entry(value.list[i], kind, i + 1, objectsOnly)); });
    return result;
  }

  PageValue entry(const YamlNode& item, ObjectKind kind, size_t number, bool objectsOnly) {
    expectNoTag(item);
    if (!item.isMap() && objectsOnly) fail(item, "an entry is a map of attributes, not " + shownNode(item));
    if (!item.isMap()) return stringValue(item);
    PageValue result;
    result.tag = PageTag::object;
    result.object.push_back(node(item, kind, number));
    return result;
  }

  // -- scripts

  PageValue script(const YamlPair& pair) {
    const YamlNode& value = pair.value;
    PageValue result;
    result.tag = PageTag::script;
    const std::string source = value.isNull() ? "" : scalarText(value, "a script");
    const BobLineOfPlace lineOf = lineOfPlace(value);
    try {
      const ScriptOrigin origin{*value.place.file, lineOf, page.lines};
      result.bytes = compiler().compile(source, codeNames(pair, lineOf), options.lines ? &origin : nullptr);
      for (const BobTextCall& call : compiler().pagesLoaded(source)) {
        YamlPlace place = value.place;
        place.line = lineOf({call.line, 1});
        page.loadedPages.push_back({call.text, place, whatIsRead()});
      }
    } catch (const ScriptError& e) {
      YamlPlace place = value.place;
      place.line = lineOf(e.place);
      fail(place, e.what());
    }
    return result;
  }

  // FILE:LINE WIDGET.HOOK
  BobCodeNames codeNames(const YamlPair& pair, const BobLineOfPlace& lineOf) const {
    if (options.strip) return nullptr;
    return [&lineOf, name = fs::path(*pair.value.place.file).filename().string(), hook = object.label + "." + pair.key](
               const BobSourcePlace& begin) { return name + ":" + std::to_string(lineOf(begin)) + " " + hook; };
  }

  // The compiler's places are those in the script's text.
  static BobLineOfPlace lineOfPlace(const YamlNode& script) {
    std::vector<size_t> begins{0};
    for (size_t end = script.text.find('\n'); end != std::string::npos; end = script.text.find('\n', end + 1))
      begins.push_back(end + 1);
    return [begins = std::move(begins), lines = script.linesOfText()](const BobSourcePlace& place) {
      const size_t line = std::min(size_t(place.line), begins.size());
      return lineOfByte(lines, begins[line - 1] + size_t(place.column) - 1);
    };
  }

  // Made when there is something to compile.
  ScriptCompiler& compiler() {
    if (!scripts) scripts = std::make_unique<ScriptCompiler>();
    return *scripts;
  }

  PageValue files(const YamlNode& value) {
    if (!value.isList()) fail(value, "expecting a list of file names, found " + shownNode(value));
    PageValue result;
    result.tag = PageTag::table;
    for (const YamlNode& item : value.list)
      guarded([&] {
        expectNoTag(item);
        PageValue name = stringValue(item);
        if (name.bytes.ends_with(".bob")) name.bytes = compileFile(item);
        result.table.push_back(std::move(name));
      });
    return result;
  }

  // Compiles the script file of that name, beside the page source, and returns the object file's name.
  std::string compileFile(const YamlNode& item) {
    const std::string& name = item.text;
    const std::string path = (fs::path(file).parent_path() / name).generic_string();
    page.sources.push_back(path);
    std::vector<uint8_t> source;
    try {
      refuseEndless(path);
      source = options.read(path);
    } catch (const KitError& e) {
      fail(item, "can't read '" + name + "': " + e.messages.front().text);
    }
    try {
      const BobCodeNames names = options.strip ? nullptr : codeNamesByLine(path);
      const std::string_view text(reinterpret_cast<char*>(source.data()), source.size());
      ScriptFile made{name + "o", path, ""};
      const ScriptOrigin origin{path, {}, made.lines};
      made.bytes = compiler().compileFile(text, names, options.lines ? &origin : nullptr);
      page.scriptFiles.push_back(std::move(made));
      const auto script = std::make_shared<const std::string>(path);
      for (const BobTextCall& call : compiler().pagesLoaded(text))
        page.loadedPages.push_back({call.text, {script, call.line, 1, nullptr}, ""});
    } catch (const ScriptError& e) {
      errors.push_back({path, e.place.line, e.what()});
    }
    return name + "o";
  }

  std::string file;
  const KitWarn& warn;
  const PageSourceOptions options;
  std::vector<KitMessage> errors;
  std::unique_ptr<ScriptCompiler> scripts;
  PageTree page;
  Object object;
  PageNames names;
  bool indexed = false;  // an 8-bit page
  int objectCount = 0;
  uint32_t widgetCount = 0;
};

}  // namespace

PageTree readPageSource(const std::string& path, const KitWarn& warn, const PageSourceOptions& options) {
  return SourceReader(path, warn, options).read();
}

PlainSource plainPageSource(const std::string& path) {
  PlainSource result{"", {path}};
  try {
    std::vector<KitMessage> errors;
    const ExpandedSource expanded = expandSource(readPageYaml(path), errors);
    result.sources.insert(result.sources.end(), expanded.files.begin(), expanded.files.end());
    if (!errors.empty()) throw KitError(inOrder(std::move(errors), path));
    result.text = expandedText(expanded.plain);
  } catch (const KitError& e) {
    throw BuildError(e.messages, std::move(result.sources));
  }
  return result;
}
