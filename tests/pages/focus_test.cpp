// Keys to focus: links, digits, slaves, and what an unanswered key does.
#include "engine/events/redrawqueue.h"
#include "support/pagefixture.h"

namespace {

class FocusTest : public PageTest {};

TEST_F(FocusTest, DiagonalsFallBackVerticalFirst) {
  ASSERT_TRUE(load(R"(
page: {type: group, start: hub, children: [
  {name: hub, up: n, left: w, right: e, down: s, upRight: ne, downLeft: nobody},
  {name: n, down: hub}, {name: w, right: hub}, {name: e, left: hub}, {name: s, up: hub}, {name: ne, downLeft: hub},
  {name: corner, left: hub}]})"));
  const std::pair<const char*, const char*> moves[] = {
      {"UpLeft", "n"},   {"Down", "hub"},    {"UpRight", "ne"}, {"DownLeft", "hub"}, {"DownLeft", "s"},
      {"Up", "hub"},     {"DownRight", "s"}, {"Left", "s"},     {"Up", "hub"},       {"Right", "e"},
      {"UpLeft", "hub"}, {"7", "corner"},    {"UpLeft", "hub"}};
  for (const auto& [name, expected] : moves) {
    key(name);
    EXPECT_EQ(focusName(), expected) << name;
  }
  EXPECT_EQ(desktop.log, "");  // unknown names are silent
}

TEST_F(FocusTest, DigitsCountThePostOrderList) {
  ASSERT_TRUE(load(R"(
page: {type: group, name: root, start: b, children: [
  {type: group, name: inner, children: [{name: a}, {name: b}]}, {name: c}]})"));
  const std::pair<const char*, const char*> moves[] = {{"0", "a"}, {"2", "b"},    {"1", "a"},    {"3", "inner"},
                                                       {"4", "c"}, {"5", "root"}, {"6", "root"}, {"9", "root"}};
  for (const auto& [name, expected] : moves) {
    key(name);
    EXPECT_EQ(focusName(), expected) << name;
  }
}

TEST_F(FocusTest, SlavesFollowTheHighlightAndHiddenWidgetsCanHaveIt) {
  ASSERT_TRUE(load(R"(
page: {type: group, start: a, children: [
  {name: a, down: b}, {name: s1, master: a}, {name: s2, master: a}, {name: late, master: later}, {name: b, hidden: "yes"},
  {name: later}]})"));
  EXPECT_EQ(desktop.log, "Widget 'later' not found\n");
  const auto highlighted = [this](const char* name) { return (widget(name)->flags & kWidgetHighlighted) != 0; };
  EXPECT_TRUE(highlighted("a") && highlighted("s1") && highlighted("s2"));
  key("Down");
  EXPECT_FALSE(highlighted("a") || highlighted("s1") || highlighted("s2"));
  EXPECT_TRUE(highlighted("b"));
}

TEST_F(FocusTest, OfOneNameTheFirstInTheListIsFound) {
  ASSERT_TRUE(load(R"(
page: {type: group, start: b, children: [
  {name: a, x: 1}, {name: b, x: 2, down: a}, {name: a, x: 3}, {name: a, x: 4}, {name: c, master: a}]})"));
  key("Down");
  EXPECT_EQ(topFrame()->focus, widget("a"));
  EXPECT_TRUE(widget("c")->flags & kWidgetHighlighted);
  for (const auto& [a, b] : {std::pair(1, 2), {3, 2}, {3, 0}, {4, 0}, {0, 0}}) {
    EXPECT_EQ(widget("a") ? widget("a")->bounds.x : 0, a);
    EXPECT_EQ(widget("b") ? widget("b")->bounds.x : 0, b);
    if (topFrame()->widgets) topFrame()->takeFirst().reset();
  }
}

TEST_F(FocusTest, WithoutAFocusKeysAreUnanswered) {
  ASSERT_TRUE(load("page: {type: group, children: [{name: a}]}"));
  EXPECT_EQ(eventPostSimple(kDirectionKey, kDirectionUp, 0), 0);
  EXPECT_EQ(eventPostSimple(kSelectKey, 0, 0), 0);
  EXPECT_EQ(eventPostSimple(kDigitKey, kDigitFlag | 1, 0), 0);
  widgetFocus(topFrame(), widget("a"));
  EXPECT_EQ(eventPostSimple(kDirectionKey, kDirectionUp, 0), 1);  // consumed though nothing moves
  EXPECT_EQ(eventPostSimple(kDirectionKey, 3, 0), 0);
  EXPECT_EQ(eventPostSimple(kLetterS, 0, 0), 0);
}

}  // namespace
