#include "studio/edit/sourceedits.h"

#include <map>
#include <random>

#include "inspectorpage.h"
#include "kit/yaml/readyaml.h"

namespace {

class SourceEditsTest : public InspectorPage {
 protected:
  WidgetSource of(const std::string& name) { return *sources->of(idOf(name)); }
  std::string text(const std::string& name = "p.yaml") { return *edits.text(at(name)); }
  WidgetView view(const std::string& name) { return *inspectWidget(engine(), idOf(name)); }

  void saveAndReload() {
    edits.save();
    reload();
    edits.lookAtDisk();
  }

  template <class F>
  std::string refusal(F&& work) {
    try {
      work();
    } catch (const KitError& e) {
      return e.messages.front().text;
    }
    return "";
  }
  std::string refusalOf(const std::string& widget, const std::string& name, const std::string& value) {
    return refusal([&] { edits.setAttribute(of(widget), name, value); });
  }

  SourceEdits edits;
};

constexpr char kPage[] = R"(# A page.
flags: 16bit
page:
  type: group
  width: 720   # all
  height: 480
  children:
    - {type: text, name: t, value: 'it''s', x: 10, y: 20}  # first
    - type: number
      name: n
      max: 9
)";

TEST_F(SourceEditsTest, AValueIsWrittenBackAndNothingElse) {
  open(kPage);
  edits.setAttribute(of("t"), "value", "now: #1");
  edits.setAttribute(of("n"), "min", "2");
  edits.setBounds(of("n"), {-5, 7, 70'000, 0});
  const std::string expected = R"(# A page.
flags: 16bit
page:
  type: group
  width: 720   # all
  height: 480
  children:
    - {type: text, name: t, value: "now: #1", x: 10, y: 20}  # first
    - type: number
      name: n
      max: 9
      min: 2
      y: 7
      width: 65535
)";
  EXPECT_EQ(text(), expected);
  EXPECT_EQ(read("p.yaml"), kPage) << "not before it is saved";
  EXPECT_EQ(edits.unsavedFiles(), std::vector<std::string>{at("p.yaml")});
  saveAndReload();
  EXPECT_EQ(read("p.yaml"), expected);
  EXPECT_TRUE(edits.unsavedFiles().empty());
  EXPECT_EQ(view("t").text, "now: #1");
  EXPECT_EQ(view("n").place, (Bounds{0, 7, 65535, 0}));

  while (!edits.undoName().empty()) edits.undo();
  EXPECT_EQ(text(), kPage);
  saveAndReload();
  EXPECT_EQ(read("p.yaml"), kPage);
  edits.redo();
  EXPECT_EQ(edits.undoName(), "value of 't'");
  EXPECT_EQ(edits.redoName(), "min of 'n'");
}

TEST_F(SourceEditsTest, AnAttributeGoesBackToItsDefault) {
  open(kPage);
  edits.removeAttribute(of("n"), "max");
  edits.removeAttribute(of("t"), "x");
  EXPECT_EQ(text().find("max"), std::string::npos);
  EXPECT_NE(text().find("{type: text, name: t, value: 'it''s', y: 20}  # first"), std::string::npos) << text();
  EXPECT_EQ(edits.undoName(), "x of 't'");
  EXPECT_EQ(refusal([&] { edits.removeAttribute(of("n"), "min"); }), "min: it isn't set at the widget itself");
  saveAndReload();
  EXPECT_EQ(view("t").place.x, 0);
  edits.undo();
  edits.undo();
  EXPECT_EQ(text(), kPage);
}

TEST_F(SourceEditsTest, ADragIsOneStepHoweverOftenThePageWasReloadedMeanwhile) {
  open(kPage);
  edits.setBounds(of("t"), {11, 20, 0, 0}, 1);
  edits.setBounds(of("t"), {12, 25, 0, 0}, 1);
  saveAndReload();
  edits.setBounds(of("t"), {12, 30, 0, 0}, 1);
  EXPECT_NE(text().find("x: 12, y: 30}"), std::string::npos) << text();
  EXPECT_EQ(edits.undoName(), "place of 't'");
  edits.undo();
  EXPECT_EQ(text(), kPage);
  EXPECT_EQ(edits.undoName(), "");
  edits.redo();

  edits.setBounds(of("t"), {50, 30, 0, 0}, 2);
  edits.setBounds(of("t"), {12, 30, 0, 0}, 2);
  EXPECT_EQ(edits.redoName(), "");
  edits.undo();
  EXPECT_EQ(text(), kPage) << "the second drag has led nowhere";
}

// The text of the last build is where places count, whatever has been added above them since.
TEST_F(SourceEditsTest, ManyEditsGoIntoOneBuild) {
  open("page:\n  type: group\n  children:\n    - name: a\n    - name: b\n    - name: c\n");
  for (const char* name : {"a", "b", "a", "c"}) edits.setBounds(of(name), {1, 2, 3, 4});
  std::string parsed;
  const YamlNode top = parseYaml("p", text());
  for (const YamlNode& child : top.find("page")->find("children")->list)
    parsed += child.textOf("name") + child.textOf("x") + child.textOf("y") + child.textOf("width") +
              child.textOf("height") + " ";
  EXPECT_EQ(parsed, "a1234 b1234 c1234 ");
}

TEST_F(SourceEditsTest, ATemplateIsOverriddenAtItsUseAndChangedInside) {
  write("parts.yaml", R"(templates:
  row:
    type: group
    width: 100
    children: [{name: inside, x: 5}]
)");
  open(R"(include: parts.yaml
page:
  type: group
  children:
    - {template: row, name: first}
    - {template: row, name: second}
)");
  edits.setAttribute(of("first"), "width", "50");
  EXPECT_NE(text().find("{template: row, width: 50, name: first}"), std::string::npos) << text();
  edits.setAttribute(of("inside"), "x", "6");
  EXPECT_NE(text("parts.yaml").find("{name: inside, x: 6}"), std::string::npos) << text("parts.yaml");
  EXPECT_EQ(of("inside").sharedBy, 2u);
  saveAndReload();
  EXPECT_EQ(view("first").place.w, 50);
  EXPECT_EQ(view("second").place.w, 100);
  EXPECT_EQ(view("inside").place.x, 6);
}

TEST_F(SourceEditsTest, WhatCannotBeWrittenIsRefused) {
  open(R"(flags: 8bit
page:
  type: group
  children:
    - {name: 'row$(index)', repeat: 2, y: $(index * 20)}
    - {type: group, layout: row, children: [{name: placed, width: 10, height: 10}]}
    - {type: text, name: t, value: a}
    - {type: group, name: g, children: [{name: c}]}
)");
  EXPECT_EQ(refusalOf("row1", "y", "5"), "y: the source computes it: $(index * 20); edit the file");
  EXPECT_EQ(refusalOf("placed", "x", "5"), "x: a layout places it; edit the file");
  EXPECT_EQ(refusalOf("t", "maxLength", "many"), "maxLength: 'many' is no whole number of 32 bits");
  EXPECT_EQ(refusalOf("t", "bgColor", "#102030"),
            "bgColor: \"#RRGGBB\" is for 16-bit pages; an 8-bit page takes an index of its colour table");
  EXPECT_EQ(refusalOf("t", "align", "middle"), "align: 'middle' is none of its words");
  EXPECT_EQ(refusalOf("t", "multiline", "perhaps").substr(0, 39), "multiline: 'perhaps' is neither true no");
  EXPECT_EQ(refusalOf("t", "x", "-1"), "x: -1 lies outside 0 to 65535");
  EXPECT_EQ(refusalOf("t", "src", "a.gif"), "src: nothing reads it");
  EXPECT_EQ(refusalOf("g", "children", "c"), "children: a list can't be changed here; edit the file");
  EXPECT_EQ(edits.undoName(), "");
  EXPECT_TRUE(edits.unsavedFiles().empty());
  EXPECT_EQ(refusalOf("placed", "width", "20"), "") << "a size of its own is not the layout's";
  EXPECT_EQ(refusalOf("t", "maxLength", "$(2 * 3)"), "") << "the build computes it";
}

TEST_F(SourceEditsTest, WhatOthersHaveWrittenStays) {
  open(kPage);
  edits.setAttribute(of("n"), "max", "5");
  edits.save();
  edits.setAttribute(of("n"), "max", "6");
  const std::string theirs = std::string("# Theirs.\n") + kPage;
  write("p.yaml", theirs);
  const char* changed = "has been changed by another program";
  EXPECT_EQ(refusal([&] { edits.save(); }), changed);
  EXPECT_EQ(refusalOf("n", "max", "7"), changed);
  EXPECT_EQ(refusal([&] { edits.undo(); }), changed);
  EXPECT_EQ(read("p.yaml"), theirs);

  reload();
  edits.lookAtDisk();
  EXPECT_EQ(refusalOf("n", "max", "7"), std::string(changed) + "; what isn't saved here has to be reverted");
  edits.revert();
  EXPECT_EQ(edits.undoName(), "");
  edits.setAttribute(of("n"), "max", "7");
  edits.save();
  EXPECT_EQ(read("p.yaml"),
            std::string("# Theirs.\n") + std::string(kPage).replace(std::string(kPage).size() - 2, 1, "7"));

  write("p.yaml", theirs);
  reload();
  edits.lookAtDisk();
  EXPECT_EQ(edits.undoName(), "") << "nothing waited to be saved";
  EXPECT_EQ(edits.text(at("p.yaml")), nullptr);
}

// Of two files, when one can't be written.
TEST_F(SourceEditsTest, AllIsSavedOrNothing) {
  write("parts.yaml", "templates: {row: {type: group, children: [{name: inside, x: 5}]}}\n");
  open("include: parts.yaml\npage: {type: group, children: [{template: row, name: first}]}\n");
  edits.setAttribute(of("first"), "x", "1");
  edits.setAttribute(of("inside"), "x", "1");
  const std::string before = read("p.yaml");
  std::filesystem::remove(at("parts.yaml"));
  std::filesystem::create_directory(at("parts.yaml"));
  EXPECT_THROW(edits.save(), KitError);
  EXPECT_EQ(read("p.yaml"), before);
  EXPECT_EQ(edits.unsavedFiles().size(), 2u);
}

// Against a plain list of states: what the source says of each widget, however it has come to that.
TEST_F(SourceEditsTest, UndoAndRedoGoThroughAllStates) {
  open("page:\n  type: group\n  children:\n    - name: a\n    - {name: b, x: 1}\n    - {name: c, type: text}\n");
  using State = std::map<std::string, std::string>;
  const auto stateNow = [&] {
    State state;
    const std::string* now = edits.text(at("p.yaml"));
    const YamlNode top = parseYaml("p", now ? *now : read("p.yaml"));
    for (const YamlNode& child : top.find("page")->find("children")->list)
      for (const YamlPair& pair : child.map) state[child.textOf("name") + "." + pair.key] = pair.value.text;
    return state;
  };
  std::vector<State> states{stateNow()};
  size_t at = 0;
  std::mt19937 random(7);
  for (int step = 0; step < 300; ++step) {
    const unsigned action = random() % 8;
    if (action == 0 && at > 0) {
      edits.undo();
      --at;
    } else if (action == 1 && at + 1 < states.size()) {
      edits.redo();
      ++at;
    } else if (action == 2) {
      saveAndReload();
    } else {
      const std::string widget(1, char('a' + random() % 3)), key = random() % 2 ? "x" : "bgColor";
      const std::string value = std::to_string(1 + random() % 4);
      edits.setAttribute(of(widget), key, value);
      State next = states[at];
      next[widget + "." + key] = value;
      if (next != states[at]) {
        states.resize(++at);
        states.push_back(next);
      }
    }
    ASSERT_EQ(stateNow(), states[at]) << step;
    ASSERT_EQ(edits.undoName().empty(), at == 0);
    ASSERT_EQ(edits.redoName().empty(), at + 1 == states.size());
  }
  saveAndReload();
  for (const char* name : {"a", "b", "c"})
    EXPECT_EQ(std::to_string(view(name).place.x),
              states[at].contains(std::string(name) + ".x") ? states[at].at(std::string(name) + ".x") : "0");
}

}  // namespace
