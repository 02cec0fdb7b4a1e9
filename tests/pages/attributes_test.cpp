// The table of attributes against the engine: every row is read, on the objects and with the kind that it names, and
// what it calls the default is what counts without the attribute. (A reader whose name is in no row doesn't compile.)
#include "engine/format/attributes.h"

#include <map>
#include <set>

#include "blockspage.h"
#include "kit/run/pagerun.h"

namespace {

using enum AttributeOwner;

// What the log says when a reader of that kind meets another.
const char* complaintOf(AttributeKind kind) {
  switch (kind) {
    case AttributeKind::integer: return "Expecting an integer";
    case AttributeKind::boolean: return "Expecting boolean";
    case AttributeKind::color: return "Expecting a color";
    case AttributeKind::string: return "Expecting string";
    case AttributeKind::script: return "Expecting script";
    default: return "Expecting table";
  }
}

// Values none of which is a default.
std::vector<const char*> othersFor(const AttributeRow& row) {
  switch (row.kind) {
    case AttributeKind::integer: return {"2", row.owner == style ? "200000" : "90"};
    case AttributeKind::boolean: return {"true"};
    case AttributeKind::color: return {"0x60E00000"};
    default: return {"!string right", "!string bottom", "!string ascii", "!string both"};
  }
}

using Attributes = std::map<std::string, std::string>;  // values as they are in a page source

std::string flowMap(const Attributes& attributes) {
  std::string text;
  for (const auto& [name, value] : attributes) text += (text.empty() ? "{" : ", ") + name + ": " + value;
  return text + "}";
}

class AttributesTest : public BlocksTest {
 protected:
  // The type on which a row for all types is tried: a plain box, or one whose value keys can change.
  static std::string typeFor(const AttributeRow& row) {
    if (row.owner == line) return "textContainer";
    if (row.owner == style) return "text";
    return row.type.empty() && row.name == "onChange" ? "number" : std::string(row.type);
  }

  // A page on which whatever the row speaks of is read and shown; `set` is added to the row's object.
  static std::string pageFor(const AttributeRow& row, const Attributes& set) {
    Attributes attributes[] = {
        widgetOf(typeFor(row)),
        {{"width", "720"}, {"height", "480"}, {"type", "group"}, {"start", "w"}, {"bgColor", "0x80808000"}},
        {{"name", "s"}, {"font", "blocks.ttf"}, {"size", "20"}, {"color", "0x60FF0000"}},
        {{"style", "s"}, {"content", "'aé b'"}}};
    const std::string name(row.name);
    if (name != "name" && name != "type") attributes[int(row.owner)].erase(name);
    for (const auto& [other, value] : set) attributes[int(row.owner)][other] = value;

    Attributes& box = attributes[int(AttributeOwner::widget)];
    if (typeFor(row) == "textContainer" && !box.contains("children"))
      box["children"] = "[" + flowMap(attributes[int(line)]) + ", {style: s, content: second}, {style: s, content: b}]";
    Attributes& page = attributes[int(root)];
    page.emplace("textStyles", "[" + flowMap(attributes[int(style)]) + ", {name: big, font: blocks.ttf, size: 30}]");
    page.emplace("children", "[{name: n}, " + flowMap(box) + "]");
    return "flags: 16bit\npage: " + flowMap(page) + "\n";
  }

  static Attributes widgetOf(const std::string& type) {
    Attributes box = {{"name", "w"}, {"x", "50"}, {"y", "50"}, {"width", "200"}, {"height", "48"}};
    box["highlightFrame"] = "true";
    if (!type.empty()) box["type"] = type;
    const bool changes = type == "number" || type == "slider" || type == "select";
    if (changes) {
      box["navigate"] = "both";
      box["immediate"] = "true";
      box["onChange"] = "'stdout.Display(7);'";
    }
    if (type == "number" || type == "select" || type == "text") {
      box["textStyle"] = "s";
      box["highlightTextStyle"] = "s";
    }
    if (type == "text") box["value"] = "'aé b aaaa bbbb bbbb'";
    if (type == "select") box["choices"] = "'|one|two b'";
    if (type == "textContainer") box["selectTextStyle"] = "big";
    return box;
  }

  // Every way in which an attribute is looked up: while the page loads, by keys, and when it goes.
  void play() {
    for (const char* name :
         {"Up", "Down", "Left", "Right", "UpLeft", "UpRight", "DownLeft", "DownRight", "Select", "1"})
      key(name);
    desktop.typeLine("topFrame.UnloadPage();");
    desktop.settle();
  }

  // What a viewer and the console see of the page: as it opens, and after keys that move a value up or down.
  // Each time in an engine of its own, since styles leave traces in the next one's text.
  auto seen(const std::string& source) {
    build("page.kpg", source);
    std::vector<uint32_t> pixels;
    std::string log;
    for (const std::vector<const char*>& keys : {std::vector<const char*>{}, {"Up"}, {"Down"}}) {
      PageRunOptions options;
      options.readOnly = true;
      PageRun run(options);
      run.load("page.kpg");
      run.load("page.kpg");  // a slider takes its default colours for the screen as the page before has left it
      for (const char* name : keys) run.act({PageAction::key, name});
      log += run.log();
      const std::vector<uint32_t> screen = run.take().pixels;
      pixels.insert(pixels.end(), screen.begin(), screen.end());
    }
    return std::pair(pixels, log);
  }
};

TEST_F(AttributesTest, EveryRowIsReadWithItsKind) {
  for (const AttributeRow& row : attributeRows()) {
    SCOPED_TRACE(std::string(row.type) + " " + std::string(row.name));
    Attributes set = {{std::string(row.name), row.kind == AttributeKind::color ? "!string red" : "!color 5"}};
    if (row.name == "echoChar" || row.name == "fromRight") set["maxLength"] = "5";
    desktop.log.clear();
    load(pageFor(row, set));
    play();
    EXPECT_NE(desktop.log.find(complaintOf(row.kind)), std::string::npos) << desktop.log;
  }
}

TEST_F(AttributesTest, TheDefaultIsWhatCountsWithoutTheAttribute) {
  std::set<std::string> alike;  // rows for which no other value shows anything else
  for (const AttributeRow& row : attributeRows()) {
    if (row.byDefault.empty() || row.byDefault.find_first_of("` ") != std::string_view::npos) continue;
    const std::string name(row.name), what = std::string(row.type) + " " + name;
    Attributes set;
    if (name == "align") set["value"] = "b";
    if (name == "vertical") set["showAll"] = "true";
    const auto without = seen(pageFor(row, set));
    bool differs = false;
    for (const char* other : othersFor(row)) {
      set[name] = other;
      differs |= seen(pageFor(row, set)) != without;
    }
    if (!differs) alike.insert(what);
    set[name] = row.byDefault;
    EXPECT_TRUE(seen(pageFor(row, set)) == without) << what;
  }
  // A script alone sees the first, a picture alone the second, and nothing the last. Grid fitting leaves blocks alone.
  EXPECT_EQ(alike, (std::set<std::string>{"text fromRight", " tileBackground", " gridfit", " underline"}));
}

}  // namespace
