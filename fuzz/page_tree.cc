// Well-formed pages of any widgets, attributes and values, driven with keys and time: what random bytes seldom get to.
//
// The first byte says how many of the following choose what is done; the rest chooses the page.
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "choices.h"
#include "engine/format/attributes.h"
#include "kit/pictures/kpxfile.h"
#include "kit/source/pagewriter.h"
#include "kit/source/scripts.h"
#include "player.h"
#include "support/blockfont.h"
#include "support/looking.h"

namespace {

constexpr const char* kNames[] = {"a", "b", "c", "d", "e"};
constexpr const char* kStyleNames[] = {"a", "b", "c", "a"};  // all of them there, but in few pages
constexpr const char* kTypes[] = {"text", "select", "number", "slider", "textContainer", "image", "select",
                                  "text", "group",  "frame",  ""};
constexpr const char* kTexts[] = {"a",  "b a b", "12",     "",         "aaaa\nbb aab abaabab",       ",a,b,,12",
                                  "*a", "*",     "/1/2/3", "\xC3\xA9", "aaaaaaaaaaaaaaaaaaaaaaaa bb"};
constexpr const char* kPictures[] = {"p.kpx", "p.gif", "none.gif", "f.ttf"};
constexpr const char* kFonts[] = {"f.ttf", "f.ttf", "f.ttf", "f.ttf", "f.ttf", "f.ttf", "none.ttf", "p.kpx"};
constexpr const char* kPages[] = {"small", "none", "small"};
constexpr const char* kScripts[] = {"widgets.a.Show();",
                                    "frame.Focus().Hide(true);",
                                    "widgets.a.SetFocus(); widgets.b.value = widgets.c.value;",
                                    "widgets.b.value = 7; widgets.d.AddElement(\"new\");",
                                    "topFrame.UnloadPage();",
                                    "widgets.a.x = 700; widgets.a.Show(); widgets.c.Hide();",
                                    "new Timer(function (e) { widgets.b.value = \"a\"; }, 3);",
                                    "topFrame.LoadPage(\"small\");"};
constexpr const char* kLoadSelf = "topFrame.LoadPage(\"p\");";
constexpr const char* kKeys[] = {"Up",     "Down",      "Left", "Right", "Select", "Clear",   "Backspace",
                                 "UpLeft", "DownRight", "1",    "0",     "S",      "UpRight", "DownLeft"};
// Values of a widget that lines of the console read and write, and what they write.
constexpr const char* kValues[] = {"value",        "minValue",      "maxValue", "x",   "y",           "width",
                                   "height",       "style",         "bgColor",  "src", "highlighted", "background",
                                   "highlightSrc", "highlightStyle"};
constexpr const char* kWritten[] = {"7",         "-3", "0x7FFFFFFF", "\"a b\"",      "nil",   "\"p.kpx\"",
                                    "\"12345\"", "0",  "true",       "\"aaa\nbbb\"", "KOVA.s"};
constexpr const char* kDone[] = {".SetFocus();",       ".Hide(true);",          ".Show();",
                                 ".HideBackground();", ".ShowBackground();",    ".Hide();",
                                 ".Clear();",          ".AddElement(\"new\");", ".AddElement(\"new\", 3);",
                                 ".AddElement(3);"};
// Events that an engine sends its widgets, some with what only the engine can add, and keys.
constexpr const char* kEvents[] = {"0x4030001, 1", "0x4030001, 0", "0x4030002",          "0x4030003",  "0x4030004",
                                   "0x80001, 3",   "0x80001, 1",   "0x80001, 2",         "0x80001, 4", "0x80001, 8",
                                   "0x80002",      "0x80004",      "0x80006, 0x80000005"};
constexpr const char* kWhole[] = {
    "KOVA.e = new Object(); KOVA.e.font = \"f.ttf\"; KOVA.e.size = 12; KOVA.s = new TextStyle(KOVA.e);",
    "KOVA.e.bgColor = 3; KOVA.e.color = 9; KOVA.e.underline = 1; KOVA.s.initialize(KOVA.e); KOVA.s.CacheGlyphs();",
    "KOVA.s = widgets.a.style; KOVA.s.CacheGlyphs(\"ab\"); KOVA.s.CacheGlyphsFromFile(\"small\");",
    "KOVA.t = new StringTable(\"t.tbl\"); KOVA.t.String(0); KOVA.t.String(1); KOVA.t.Close(); KOVA.t.String(1);",
    "KOVA.t.initialize(\"t.tbl\"); KOVA.t.String(2); KOVA.t.String(1000); KOVA.t.Close(); KOVA.t.Close();",
    "new StringTable(\"none.tbl\"); new StringTable(7);",
    "KOVA.f = function (e) { return true; }; widgets.a.OnEvent(0x80001, KOVA.f);",
    "KOVA.s = widgets.b.style; widgets.a.style = KOVA.s; widgets.c.highlightStyle = KOVA.s;",
    "widgets.a.AddElement(3); widgets.b.AddElement(3); widgets.c.highlightSrc = \"p.gif\";",
    "gc();"};
constexpr uint32_t kFirstEngineEvent = 0x4040001, kEngineEvents = 0x18;
constexpr int kMostDepth = 4, kMostObjects = 20, kMostActions = 8;

const std::string& compiled(const char* script) {
  static std::map<std::string, std::string> known;
  const auto [at, isNew] = known.try_emplace(script);
  if (isNew) at->second = ScriptCompiler().compile(script);
  return at->second;
}

PageValue textOf(std::string_view text) { return {PageTag::string, 0, std::string(text), {}, {}}; }

// What the table of attributes says that an author may write: the words between back quotes.
std::vector<std::string_view> wordsOf(std::string_view value) {
  std::vector<std::string_view> words;
  for (size_t from = value.find('`'); from != value.npos; from = value.find('`', from)) {
    const size_t to = value.find('`', ++from);
    words.push_back(value.substr(from, to - from));
    from = to + 1;
  }
  return words;
}

class PageMaker {
 public:
  explicit PageMaker(Choices& c) : choices(c) {}

  PageTree page() {
    PageTree tree;
    tree.flags = choices.below(3);
    someAreForeign = choices.oneIn(8);
    loadsItself = choices.oneIn(16);
    tree.root = object(AttributeOwner::root, "group", 0);
    return tree;
  }

 private:
  // Mostly small, for drawing takes its time; or about an edge of the screen, or anywhere.
  uint16_t coordinate() {
    switch (choices.below(16)) {
      case 14: return uint16_t(470 + choices.below(260));
      case 15: return uint16_t(choices.word());
      default: return uint16_t(choices.below(96));
    }
  }

  uint32_t number() { return choices.oneIn(8) ? choices.word() : choices.byte(); }

  std::string_view word(const AttributeRow& row) {
    if (choices.oneIn(16)) return choices.pick(kTexts);
    if (row.value == "style name") return choices.pick(kStyleNames);
    if (row.value == "widget name" || row.name == "name") return choices.pick(kNames);
    if (row.value == "image file") return choices.pick(kPictures);
    if (row.value == "page file") return loadsItself && choices.oneIn(2) ? kSelf : choices.pick(kPages);
    if (row.value == "CLUT file") return "t.clut";
    if (row.name == "font") return choices.pick(kFonts);
    if (row.name == "scriptingLanguage") return "script";
    if (const auto words = wordsOf(row.value); !words.empty()) return choices.pick(words);
    return choices.pick(kTexts);
  }

  const char* script() { return loadsItself && choices.oneIn(4) ? kLoadSelf : choices.pick(kScripts); }

  PageValue valueOf(const AttributeRow& row, int depth) {
    switch (row.kind) {
      case AttributeKind::integer: return {PageTag::integer, number(), "", {}, {}};
      case AttributeKind::boolean: return {PageTag::boolean, choices.below(2), "", {}, {}};
      case AttributeKind::color: return {PageTag::color, choices.word(), "", {}, {}};
      case AttributeKind::script: return {PageTag::script, 0, compiled(script()), {}, {}};
      case AttributeKind::widgets: return tableOf(AttributeOwner::widget, depth, depth == 0 ? 8 : 3);
      case AttributeKind::styles: return tableOf(AttributeOwner::style, depth, 3);
      case AttributeKind::lines: return tableOf(AttributeOwner::line, depth, 6);
      case AttributeKind::files: return {PageTag::table, 0, "", {}, {textOf("none.bobo")}};
      case AttributeKind::string: break;
    }
    return textOf(word(row));
  }

  // Of `most` objects, or sometimes of fewer.
  PageValue tableOf(AttributeOwner owner, int depth, uint32_t most) {
    PageValue value{PageTag::table, 0, "", {}, {}};
    const uint32_t count = choices.oneIn(4) ? choices.below(most) : most;
    for (uint32_t i = 0; i < count && depth < kMostDepth && objects < kMostObjects; ++i) {
      const char* type = owner == AttributeOwner::widget ? choices.pick(kTypes) : "";
      const char* name = choices.oneIn(16) ? choices.pick(kNames) : kNames[i % std::size(kNames)];
      value.table.push_back({PageTag::object, 0, "", {object(owner, type, depth + 1, name)}, {}});
    }
    return value;
  }

  // What is for its type alone it has mostly, what many have seldom, and without styles a widget says little.
  bool has(const AttributeRow& row, AttributeOwner owner, std::string_view type) {
    if (row.name == "type" || row.name == "name") return false;
    const bool ofOwner = row.owner == owner || (owner == AttributeOwner::root && row.owner == AttributeOwner::widget);
    if (!ofOwner || (!row.type.empty() && row.type != type)) return false;
    if (row.kind == AttributeKind::styles || row.value == "style name" || row.name == "font" ||
        row.owner == AttributeOwner::line)
      return !choices.oneIn(32);
    return row.type.empty() ? choices.oneIn(5) : !choices.oneIn(4);
  }

  PageNode object(AttributeOwner owner, std::string_view type, int depth, const char* name = "root") {
    ++objects;
    PageNode node{coordinate(), coordinate(), coordinate(), coordinate(), {}};
    if (owner == AttributeOwner::root && choices.oneIn(8)) node = {0, 0, 720, 480, {}};
    node.attributes.push_back({"name", textOf(name)});
    if (!type.empty()) node.attributes.push_back({"type", textOf(type)});
    for (const AttributeRow& row : attributeRows()) {
      if (!has(row, owner, type)) continue;
      const AttributeRow& meant = someAreForeign && choices.oneIn(30) ? choices.pick(attributetable::kRows) : row;
      node.attributes.push_back({std::string(row.name), valueOf(meant, depth)});
    }
    return node;
  }

  Choices& choices;
  bool someAreForeign = false;  // values of other attributes
  bool loadsItself = false;
  int objects = 0;
};

std::string lineOf(Choices& choices) {
  const std::string widget = std::string("widgets.") + choices.pick(kNames);
  switch (choices.below(8)) {
    case 0:
    case 1: return widget + "." + choices.pick(kValues) + ";";
    case 2: return widget + choices.pick(kDone);
    case 3: return choices.pick(kWhole);
    case 4: return widget + ".HandleEvent(" + choices.pick(kEvents) + ");";
    case 5: {
      const std::string code = std::to_string(kFirstEngineEvent + choices.below(kEngineEvents));
      return widget + ".HandleEvent(" + code + ", " + std::to_string(int8_t(choices.byte())) + ");";
    }
    default: {
      const std::string place = widget + "." + choices.pick(kValues);
      return place + " = " + choices.pick(kWritten) + ";";
    }
  }
}

void makeFiles() {
  enterFolder();
  static bool made = false;
  if (std::exchange(made, true)) return;
  WriteFile("f.ttf", BlockFontFile());
  const KpxFile picture{24, 24, "", std::vector<uint8_t>(24 * 24, 7)};  // smaller ones take long to tile
  writeKpxFile("p.kpx", picture);
  constexpr uint8_t kGif[] = {'G', 'I', 'F', '8', '9', 'a', 2, 0, 1, 0, 0x80, 0, 0, 255,  0,    0, 0,  0,
                              255, ',', 0,   0,   0,   0,   2, 0, 1, 0, 0,    2, 2, 0x44, 0x0A, 0, ';'};
  writeBytes("p.gif", kGif, sizeof kGif);
  // A byte without a meaning, and three colours.
  constexpr uint8_t kColors[] = {0, 16, 128, 128, 0, 235, 128, 128, 0, 80, 240, 90, 0};
  writeBytes("t.clut", kColors, sizeof kColors);
  // Two texts, the second of which lies outside.
  constexpr size_t kText = 32 + 2 * 12;
  std::vector<uint8_t> table(kText + 2);
  table[20] = 2;
  table[32 + 7] = 2;
  table[32 + 11] = kText;
  table[44 + 7] = table[44 + 11] = 0x70;
  table[kText] = 'h', table[kText + 1] = 'i';
  WriteFile("t.tbl", table);
  const std::string onClick = compiled("widgets.a.value = 3;");
  const PageNode slider{1, 1, 9, 9, {{"name", textOf("a")}, {"type", textOf("slider")}}};
  PageNode text{9, 9, 30, 9, {{"name", textOf("b")}, {"type", textOf("text")}, {"value", textOf("a")}}};
  text.attributes.push_back({"onClick", {PageTag::script, 0, onClick, {}, {}}});
  const PageValue children{
      PageTag::table, 0, "", {}, {{PageTag::object, 0, "", {slider}, {}}, {PageTag::object, 0, "", {text}, {}}}};
  PageTree small;
  small.root = {0, 0, 50, 50, {{"type", textOf("group")}, {"start", textOf("b")}, {"children", children}}};
  WriteFile("small", writePage(small));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size - 1 < data[0]) return 0;
  makeFiles();
  Choices choices(data + 1, data[0]), pageChoices(data + 1 + data[0], size - 1 - data[0]);
  const std::vector<uint8_t> page = writePage(PageMaker(pageChoices).page());
  HeadlessDesktop& desktop = playerWithoutPage();
  const LoadLimit limit(desktop.shell.engine);
  writeBytes(kSelf, page.data(), page.size());
  if (desktop.shell.loadPage(kSelf)) desktop.settle();
  for (int actions = 0; !choices.isEmpty() && actions < kMostActions; ++actions) {
    switch (choices.below(8)) {
      case 0: desktop.wait(choices.below(32)); continue;
      case 1:
      case 2:
      case 3: typeStatements(desktop, lineOf(choices)); break;
      default: desktop.key(choices.pick(kKeys));
    }
    desktop.settle();
  }
  lookAtAll(desktop.shell.engine, kLookedAt);
  for (const WidgetView& widget : inspectWidgets(desktop.shell.engine))
    inspectTextLines(desktop.shell.engine, widget.id);
  return 0;
}
