// Well-formed pages of any widgets, attributes and values, driven with keys and time: what random bytes seldom get to.
//
// The first byte says how many of the following choose what is done; the rest chooses the page.
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "choices.h"
#include "engine/format/attributes.h"
#include "kit/source/pagewriter.h"
#include "kit/source/scripts.h"
#include "player.h"
#include "support/blockfont.h"
#include "support/looking.h"

namespace {

constexpr const char* kNames[] = {"a", "b", "c", "d", "e"};
constexpr const char* kTypes[] = {"group", "text", "slider", "select", "frame", "number", "image", "textContainer", ""};
constexpr const char* kTexts[] = {"a",      "b a b",     "12",    "",      "right",
                                  "upDown", "leftRight", "both",  "yes",   "bottom",
                                  "none",   "center",    "ascii", "utf16", "aaaa\nbb aab abaabab",
                                  "*"};
constexpr const char* kFiles[] = {"p", "p.kpx", "none.gif", "t.clut", "f.ttf", "p.gif"};
constexpr const char* kScripts[] = {"topFrame.LoadPage(\"p\");",
                                    "frame.Focus().Hide(true);",
                                    "widgets.a.SetFocus(); widgets.b.value = widgets.c.value;",
                                    "widgets.b.value = 7; widgets.d.AddElement(\"new\");",
                                    "topFrame.UnloadPage();",
                                    "widgets.a.x = 700; widgets.a.Show(); widgets.c.Hide();",
                                    "new Timer(function (e) { widgets.b.value = \"a\"; }, 3);"};
constexpr const char* kKeys[] = {"Up",        "Down",   "Left",      "Right", "Select", "Clear",
                                 "Backspace", "UpLeft", "DownRight", "1",     "0",      "S"};
// Values of a widget that lines of the console read and write, and what they write.
constexpr const char* kValues[] = {"value",        "minValue",      "maxValue", "x",   "y",           "width",
                                   "height",       "style",         "bgColor",  "src", "highlighted", "background",
                                   "highlightSrc", "highlightStyle"};
constexpr const char* kWritten[] = {"7",         "-3", "0x7FFFFFFF", "\"a b\"",      "nil",   "\"p.kpx\"",
                                    "\"12345\"", "0",  "true",       "\"aaa\nbbb\"", "KOVA.s"};
constexpr const char* kDone[] = {".SetFocus();",
                                 ".Hide(true);",
                                 ".Show();",
                                 ".HideBackground();",
                                 ".ShowBackground();",
                                 ".AddElement(\"new\");",
                                 ".AddElement(\"new\", 3);",
                                 ".Clear();",
                                 ".HandleEvent(0x4040001);"};
constexpr const char* kWhole[] = {
    "KOVA.s = new TextStyle({font: \"f.ttf\", size: 12, color: 3}); KOVA.s.CacheGlyphs(\"ab\");",
    "KOVA.t = new StringTable(\"t.tbl\"); KOVA.t.String(0); KOVA.t.String(1); KOVA.t.Close(); KOVA.t.String(1);",
    "new StringTable(\"none.tbl\"); new StringTable(7);", "gc();"};
constexpr int kMostDepth = 5, kMostObjects = 60, kMostActions = 24;

const std::string& compiled(const char* script) {
  static std::map<std::string, std::string> known;
  const auto [at, isNew] = known.try_emplace(script);
  if (isNew) at->second = ScriptCompiler().compile(script);
  return at->second;
}

PageValue textOf(const std::string& text) { return {PageTag::string, 0, text, {}, {}}; }

class PageMaker {
 public:
  explicit PageMaker(Choices& c) : choices(c) {}

  PageTree page() {
    PageTree tree;
    tree.flags = choices.below(3);
    tree.root = object(AttributeOwner::root, "group", 0);
    return tree;
  }

 private:
  // On the screen, about an edge of it, or anywhere.
  uint16_t coordinate() {
    switch (choices.below(4)) {
      case 0: return choices.byte();
      case 1: return uint16_t(choices.below(720));
      case 2: return uint16_t(470 + choices.below(260));
      default: return uint16_t(choices.word());
    }
  }

  uint32_t number() { return choices.oneIn(4) ? choices.word() : choices.byte(); }

  PageValue valueOf(const AttributeRow& row, int depth) {
    switch (row.kind) {
      case AttributeKind::integer: return {PageTag::integer, number(), "", {}, {}};
      case AttributeKind::boolean: return {PageTag::boolean, choices.below(2), "", {}, {}};
      case AttributeKind::color: return {PageTag::color, choices.word(), "", {}, {}};
      case AttributeKind::script: return {PageTag::script, 0, compiled(choices.pick(kScripts)), {}, {}};
      case AttributeKind::widgets: return tableOf(AttributeOwner::widget, depth);
      case AttributeKind::styles: return tableOf(AttributeOwner::style, depth);
      case AttributeKind::lines: return tableOf(AttributeOwner::line, depth);
      case AttributeKind::files: return {PageTag::table, 0, "", {}, {textOf("none.bobo")}};
      case AttributeKind::string: break;
    }
    if (row.value.find("file") != row.value.npos) return textOf(choices.pick(kFiles));
    if (row.value.find("name") != row.value.npos) return textOf(choices.pick(kNames));
    return textOf(choices.pick(kTexts));
  }

  PageValue tableOf(AttributeOwner owner, int depth) {
    PageValue value{PageTag::table, 0, "", {}, {}};
    for (uint32_t i = choices.below(6); depth < kMostDepth && i > 0 && objects < kMostObjects; --i) {
      const char* type = owner == AttributeOwner::widget ? choices.pick(kTypes) : "";
      value.table.push_back({PageTag::object, 0, "", {object(owner, type, depth + 1)}, {}});
    }
    return value;
  }

  PageNode object(AttributeOwner owner, std::string_view type, int depth) {
    ++objects;
    PageNode node{coordinate(), coordinate(), coordinate(), coordinate(), {}};
    if (owner == AttributeOwner::root) node = {0, 0, 720, 480, {}};
    node.attributes.push_back({"name", textOf(choices.pick(kNames))});
    if (!type.empty()) node.attributes.push_back({"type", textOf(std::string(type))});
    // Most attributes of its own kind, some that all widgets have, and now and then one with a foreign value.
    const std::span<const AttributeRow> all = attributeRows();
    for (const AttributeRow& row : all) {
      const bool isOwn = row.owner == owner && row.type == type;
      const bool isShared = row.type.empty() && (row.owner == owner || owner == AttributeOwner::root);
      if (row.name == "type" || row.name == "name") continue;
      if (isOwn && !row.type.empty() ? choices.oneIn(4) : !(isOwn || isShared) || !choices.oneIn(5)) continue;
      node.attributes.push_back({std::string(row.name), valueOf(choices.oneIn(30) ? choices.pick(all) : row, depth)});
    }
    return node;
  }

  Choices& choices;
  int objects = 0;
};

std::string lineOf(Choices& choices) {
  const std::string widget = std::string("widgets.") + choices.pick(kNames);
  switch (choices.below(4)) {
    case 0: return widget + "." + choices.pick(kValues) + ";";
    case 1: return widget + choices.pick(kDone);
    case 2: return choices.pick(kWhole);
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
  constexpr uint8_t kPicture[] = {0, 0, 0, 2, 0, 1, 0, 1, 0, 0, 0, 0, 7, 8};
  writeBytes("p.kpx", kPicture, sizeof kPicture);
  constexpr uint8_t kTable[] = {0, 0, 0, 1, 0, 0, 0, 12, 0, 0, 0, 2, 'h', 'i'};
  writeBytes("t.tbl", kTable, sizeof kTable);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size - 1 < data[0]) return 0;
  makeFiles();
  Choices choices(data + 1, data[0]), pageChoices(data + 1 + data[0], size - 1 - data[0]);
  const std::vector<uint8_t> page = writePage(PageMaker(pageChoices).page());
  HeadlessDesktop& desktop = playerWithoutPage();
  writeBytes("p", page.data(), page.size());
  if (desktop.shell.loadPage("p")) desktop.settle();
  for (int actions = 0; !choices.isEmpty() && actions < kMostActions; ++actions) {
    if (choices.oneIn(4)) {
      desktop.wait(choices.below(64));
    } else if (choices.oneIn(3)) {
      desktop.typeLine(lineOf(choices));
      desktop.settle();
    } else {
      desktop.key(choices.pick(kKeys));
      desktop.settle();
    }
  }
  lookAtAll(desktop.shell.engine, kLookedAt);
  return 0;
}
