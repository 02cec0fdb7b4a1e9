// The views of a running engine.
#include "engine/inspect.h"

#include <algorithm>
#include <map>
#include <random>

#include "pages/blockspage.h"

namespace {

class ViewsTest : public BlocksTest {
 protected:
  WidgetId idOf(const std::string& name) {
    for (const WidgetView& view : inspectWidgets(engine))
      if (view.name == name) return view.id;
    return 0;
  }
  WidgetView viewOf(const std::string& name) { return inspectWidget(engine, idOf(name)).value_or(WidgetView{}); }

  std::map<std::string, AttributeView> attributesOf(const std::string& name) {
    std::map<std::string, AttributeView> found;
    for (const AttributeView& view : inspectAttributes(engine, idOf(name))) found.emplace(view.name, view);
    return found;
  }

  void talk(const std::string& line) {
    desktop.typeLine(line);
    desktop.settle();
  }

  Engine& engine = desktop.shell.engine;
};

TEST_F(ViewsTest, TheTreeHasEachWidgetBeforeWhatLiesInIt) {
  build("inner.kpg", "page: {type: group, name: within, x: 5, y: 6, children: [{name: deep, x: 1, y: 1}]}");
  ASSERT_TRUE(
      loadTexts("{name: g, type: group, x: 10, y: 20, children: [{name: first, x: 3, y: 4, width: 7, height: 8},"
                "{name: second}]}, {name: f, type: frame, x: 100, y: 200, src: inner.kpg},"
                "{name: w}",
                "name: root, start: first"));
  std::vector<std::string> tree;
  for (const WidgetView& view : inspectWidgets(engine))
    tree.push_back(std::string(size_t(view.level), ' ') + view.name + ":" + std::string(widgetKindName(view.kind)));
  EXPECT_EQ(tree, (std::vector<std::string>{":frame", " root:group", "  g:group", "   first:", "   second:",
                                            "  f:frame", "   within:group", "    deep:", "  w:"}));
  const WidgetView first = viewOf("first"), deep = viewOf("deep");
  EXPECT_EQ(first.place, (Bounds{3, 4, 7, 8}));
  EXPECT_EQ(first.bounds, (Bounds{13, 24, 7, 8}));
  EXPECT_EQ(first.parent, idOf("g"));
  EXPECT_TRUE(first.focused && first.highlighted && !first.isRoot);
  EXPECT_EQ(deep.frame, idOf("f"));
  EXPECT_EQ(deep.bounds, (Bounds{106, 207, 0, 0}));
  EXPECT_TRUE(viewOf("within").isRoot);
  EXPECT_EQ(viewOf("root").bgColor, 0x10808000u);

  const auto namesOn = [this](WidgetId frame) {
    std::string names;
    inspectPage(engine, frame, [&](const WidgetDetails& details) {
      names += details.view.name + " ";
      EXPECT_EQ(details.attributes.size(), inspectAttributes(engine, details.view.id).size());
      EXPECT_EQ(details.links.size(), 8u);
    });
    return names;
  };
  EXPECT_EQ(namesOn(inspectWidgets(engine).front().id), "root g first second f w ");
  EXPECT_EQ(namesOn(idOf("f")), "within deep ");
  EXPECT_EQ(namesOn(idOf("w")) + namesOn(0), "");
}

TEST_F(ViewsTest, ANumberIsNeverUsedAgain) {
  ASSERT_TRUE(loadTexts("{name: w}"));
  const WidgetId old = idOf("w");
  ASSERT_TRUE(loadTexts("{name: w}"));
  EXPECT_GT(idOf("w"), old);
  EXPECT_FALSE(inspectWidget(engine, old));
  EXPECT_TRUE(inspectAttributes(engine, old).empty());
  EXPECT_TRUE(inspectLinks(engine, old).empty());
  EXPECT_TRUE(whyNotSeen(engine, old).empty());
  EXPECT_FALSE(inspectWidget(engine, 0));
}

TEST_F(ViewsTest, AttributesTellValueAndOrigin) {
  ASSERT_TRUE(
      loadTexts("{name: w, type: text, value: abc, textStyle: plain, hidden: 'yes', bgColor: 0x10808000,"
                " multiline: !string 'true', frameWidth: 7, right: n, maxLength: 2, align: !int 3},"
                "{name: n, type: number, min: 5, size: 3, textStyle: plain},"
                "{name: s, type: select, choices: '|one||two', textStyle: plain}"));
  const std::string before = log();
  const auto expect = [&](const char* widget, const char* name, ValueOrigin origin, const char* text,
                          std::optional<int64_t> number = {}) {
    auto all = attributesOf(widget);
    ASSERT_TRUE(all.contains(name)) << name;
    const AttributeView& view = all.at(name);
    EXPECT_EQ(int(view.origin), int(origin)) << widget << "." << name;
    EXPECT_EQ(view.text, text) << widget << "." << name;
    EXPECT_EQ(view.number, number) << widget << "." << name;
  };
  using enum ValueOrigin;
  expect("w", "value", page, "ab");
  expect("w", "hidden", page, "both");
  expect("w", "multiline", page, "true", 1);
  expect("w", "tileBackground", byDefault, "false", 0);
  expect("w", "bgColor", page, "0x10808000", 0x10808000);
  expect("w", "right", page, "n");
  expect("w", "align", refused, "left");
  expect("w", "textStyle", page, "plain");
  expect("n", "value", byDefault, "5", 5);
  expect("n", "max", byDefault, "100", 100);
  expect("s", "choices", page, "|one|two");
  expect("s", "highlightTextStyle", byDefault, "");
  EXPECT_FALSE(attributesOf("w").contains("choices"));
  EXPECT_FALSE(attributesOf("w").contains("colorTable"));

  talk("widgets.w.Show(true);");
  talk("widgets.w.value = \"b\";");
  talk("widgets.w.bgColor = 7;");
  talk("widgets.w.style = textStyles.bright;");
  talk("widgets.n.value = 9;");
  talk("widgets.n.maxValue = 50;");
  talk("widgets.s.AddElement(\"three\");");
  desktop.log.clear();
  expect("w", "hidden", changed, "none");
  expect("w", "value", changed, "b");
  expect("w", "bgColor", changed, "0x00000007", 7);
  expect("w", "textStyle", changed, "bright");
  expect("n", "value", changed, "9", 9);
  expect("n", "max", changed, "50", 50);
  expect("n", "min", page, "5", 5);
  expect("s", "choices", changed, "|one|two|three");
  EXPECT_EQ(log(), "");  // looking at what a reader refuses logs nothing
}

TEST_F(ViewsTest, LinksTellWhereAKeyLeads) {
  ASSERT_TRUE(loadTexts("{name: w, up: a, right: nowhere, left: a, onLeft: 'x = 1;'}, {name: a}"));
  std::vector<std::string> links;
  for (const LinkView& link : inspectLinks(engine, idOf("w")))
    links.push_back(std::string(link.direction) + " " + link.name + (link.target == idOf("a") ? " > a" : "") +
                    (link.script ? " script" : ""));
  EXPECT_EQ(links, (std::vector<std::string>{"up a > a", "down ", "left a > a script", "right nowhere", "upLeft  > a",
                                             "downLeft  > a", "upRight  > a", "downRight "}));
}

TEST_F(ViewsTest, WhatShowsIsTold) {
  ASSERT_TRUE(loadTexts(
      "{name: w, type: text, value: 'aa aa', textStyle: plain, multiline: true, width: 20, height: 40},"
      "{name: n, type: number, value: 7, size: 3, textStyle: big},"
      "{name: s, type: select, choices: ' x y', textStyle: plain},"
      "{name: l, type: textContainer, width: 50, height: 50, selectTextStyle: bright, selectedLine: 2, children:"
      " [{y: 10, style: plain, content: one}, {y: 20, style: plain, content: two}]},"
      "{name: i, type: image, src: none.kpx}"));
  EXPECT_EQ(viewOf("w").text, "aa aa");
  EXPECT_EQ(inspectTextLines(engine, idOf("w")), (std::vector<std::string>{"aa", "aa"}));
  EXPECT_EQ(viewOf("n").text, "007");
  EXPECT_EQ(viewOf("n").style, "big");
  EXPECT_EQ(viewOf("n").value, 7);
  EXPECT_EQ(viewOf("s").text, "x");
  EXPECT_EQ(viewOf("s").count, 2u);
  EXPECT_EQ(viewOf("s").selected, 0u);
  EXPECT_EQ(viewOf("l").text, "two");
  EXPECT_EQ(viewOf("l").style, "bright");
  EXPECT_EQ(viewOf("l").selected, 1u);
  EXPECT_EQ(viewOf("i").picture, "none.kpx");
  EXPECT_EQ(viewOf("i").pictureRefusal, ImageRefusal::missing);
}

TEST_F(ViewsTest, OnTopIsWhatWasDrawnLast) {
  ASSERT_TRUE(
      loadTexts("{name: w, x: 10, y: 10, width: 50, height: 50, bgColor: 1},"
                "{name: over, x: 20, y: 20, width: 50, height: 50, bgColor: 2},"
                "{name: away, x: 300, y: 20, width: 50, height: 50, bgColor: 2},"
                "{name: out, x: 20, y: 20, width: 50, height: 50, hidden: 'yes'}",
                "name: root"));
  const auto at = [&](int x, int y) {
    std::vector<std::string> names;
    for (const WidgetId id : widgetsAt(engine, x, y)) names.push_back(inspectWidget(engine, id)->name);
    return names;
  };
  EXPECT_EQ(at(30, 30), (std::vector<std::string>{"over", "w", "root", "", "out"}));
  EXPECT_EQ(at(10, 59), (std::vector<std::string>{"w", "root", ""}));
  talk("widgets.w.bgColor = 3;");
  EXPECT_EQ(at(30, 30)[0], "w");
  talk("widgets.root.bgColor = 3;");  // paints over its children
  EXPECT_EQ(at(30, 30)[0], "root");
}

TEST_F(ViewsTest, WhatIsNotSeenHasReasons) {
  WriteFile("nofont.ttf", std::vector<uint8_t>(64, 1));
  writeText("bad.kpx", "abc");
  ASSERT_TRUE(load(R"(flags: 16bit
page:
  {width: 720, height: 480, type: group, name: root, bgColor: 0x10808000, textStyles: [
    {name: plain, font: blocks.ttf, size: 10, color: 0xEB808000}, {name: dark, font: blocks.ttf, color: 0x10808000},
    {name: clear, font: blocks.ttf, color: 0}, {name: none, font: gone.ttf, color: 5}, {name: broken, font: nofont.ttf,
    color: 5}, {name: fontless, color: 5}], children: [
    {name: fine, type: text, value: a, textStyle: plain, width: 20, height: 10},
    {name: hidden, type: text, value: a, textStyle: plain, x: 100, width: 20, height: 10, hidden: content},
    {name: empty, type: text, textStyle: plain, x: 200, width: 20, height: 10},
    {name: unstyled, type: text, value: a, textStyle: unheard, x: 300, width: 20, height: 10},
    {name: dark, type: text, value: a, textStyle: dark, x: 400, width: 20, height: 10},
    {name: clear, type: text, value: a, textStyle: clear, x: 500, width: 20, height: 10},
    {name: lost, type: text, value: a, textStyle: none, x: 600, width: 20, height: 10},
    {name: broken, type: text, value: a, textStyle: broken, y: 100, width: 20, height: 10},
    {name: fontless, type: text, value: a, textStyle: fontless, y: 100, x: 50, width: 20, height: 10},
    {name: box, y: 200, width: 20, height: 10},
    {name: flat, y: 200, x: 50, bgColor: 1, height: 10},
    {name: same, y: 200, x: 100, bgColor: 0x10808000, width: 20, height: 10},
    {name: outside, x: 730, bgColor: 1, width: 20, height: 10},
    {name: picture, type: image, src: bad.kpx, y: 300, width: 20, height: 10},
    {name: imageless, type: image, y: 300, x: 100, width: 20, height: 10},
    {name: choiceless, type: select, textStyle: plain, y: 300, x: 200, width: 20, height: 10},
    {name: under, y: 400, bgColor: 1, width: 20, height: 20},
    {name: left, y: 400, bgColor: 2, width: 10, height: 30},
    {name: right, type: text, y: 400, x: 10, width: 10, height: 30, value: a, textStyle: plain},
    {name: peeping, y: 400, x: 100, bgColor: 1, width: 20, height: 20},
    {name: lid, y: 400, x: 100, bgColor: 2, width: 19, height: 20}]}
)"));
  desktop.log.clear();
  const auto whyOf = [&](const char* name) {
    std::string words;
    for (const UnseenReason& reason : whyNotSeen(engine, idOf(name))) {
      words += (words.empty() ? "" : ", ") + std::to_string(int(reason.why)) + reason.what;
      for (const WidgetId id : reason.by) words += " " + inspectWidget(engine, id)->name;
      if (reason.refusal != ImageRefusal::none) words += " " + std::to_string(int(reason.refusal));
    }
    return words;
  };
  const auto is = [](Unseen why, const std::string& rest = "") { return std::to_string(int(why)) + rest; };
  using enum Unseen;
  const std::pair<const char*, std::string> cases[] = {
      {"fine", ""},
      {"hidden", is(contentHidden)},
      {"empty", is(emptyText)},
      {"unstyled", is(noStyle, "unheard")},
      {"dark", is(sameColor)},
      {"clear", is(transparentColor)},
      {"lost", is(fontMissing, "gone.ttf")},
      {"broken", is(fontUnusable, "nofont.ttf")},
      {"fontless", is(fontMissing)},
      {"box", is(nothingToShow)},
      {"flat", is(zeroSize)},
      {"same", is(sameColor)},
      {"outside", is(outsideScreen)},
      {"picture", is(pictureRefused, "bad.kpx " + std::to_string(int(ImageRefusal::badHeader)))},
      {"imageless", is(nothingToShow)},
      {"choiceless", is(nothingToShow)},
      {"under", is(covered, " left right")},
      {"peeping", ""},
  };
  for (const auto& [name, expected] : cases) EXPECT_EQ(whyOf(name), expected) << name;
  talk("widgets.root.bgColor = 0x20808000;");
  EXPECT_EQ(whyOf("fine"), is(covered, " root"));
  EXPECT_EQ(log(), "--> 545292288\n");
}

// Asked of all at once, each widget has the reasons that it has by itself.
TEST_F(ViewsTest, AllReasonsAtOnceAreThoseOneByOne) {
  std::mt19937 random(3);
  const auto any = [&](int n) { return std::to_string(random() % unsigned(n)); };
  size_t covered = 0;
  for (int round = 0; round < 20; ++round) {
    std::string children;
    for (int i = 0; i < 30; ++i) {
      children += "{x: " + any(6) + ", y: " + any(6) + ", width: " + any(6) + ", height: " + any(6);
      children += random() % 4 ? ", bgColor: " + any(3) : ", type: text, textStyle: plain, value: a";
      children += random() % 5 ? "}, " : ", hidden: content}, ";
    }
    ASSERT_TRUE(loadTexts(children));
    const std::vector<WidgetView> widgets = inspectWidgets(engine);
    const auto all = whyNotSeen(engine);
    ASSERT_EQ(all.size(), widgets.size());
    for (size_t i = 0; i < widgets.size(); ++i) {
      std::vector<Unseen> together, single;
      for (const UnseenReason& reason : all[i]) together.push_back(reason.why);
      for (const UnseenReason& reason : whyNotSeen(engine, widgets[i].id)) single.push_back(reason.why);
      ASSERT_EQ(together, single) << i << " of " << children;
      covered += size_t(std::count(single.begin(), single.end(), Unseen::covered));
    }
  }
  EXPECT_GT(covered, 50u);
}

TEST_F(ViewsTest, PagesStylesFontsAndTimers) {
  build("inner.kpg", "page: {}");
  ASSERT_TRUE(
      loadTexts("{name: w, type: text, textStyle: plain, value: a, timeout: 70},"
                "{name: f, type: frame, src: inner.kpg}, {name: e, type: frame, src: none.kpg}"));
  const std::vector<FrameView> frames = inspectFrames(engine);
  ASSERT_EQ(frames.size(), 3u);
  EXPECT_TRUE(frames[0].page.ends_with("/page.kpg"));
  EXPECT_EQ(frames[0].state, PageState::loaded);
  EXPECT_EQ(frames[0].widgets, 4u);
  EXPECT_EQ(frames[0].focus, idOf("w"));
  EXPECT_EQ(frames[0].start, "w");
  EXPECT_FALSE(frames[0].eightBit);
  EXPECT_EQ(frames[1].around, frames[0].id);
  EXPECT_EQ(frames[1].page, "inner.kpg");
  EXPECT_EQ(frames[2].state, PageState::empty);

  const std::vector<StyleView> styles = inspectStyles(engine);
  ASSERT_EQ(styles.size(), 3u);
  EXPECT_EQ(styles[2].name, "big");
  EXPECT_EQ(styles[2].size, 20);
  EXPECT_EQ(styles[2].font, "blocks.ttf");
  EXPECT_EQ(styles[0].fontState, FontState::usable);
  ASSERT_EQ(inspectFonts(engine).size(), 1u);
  EXPECT_EQ(inspectFonts(engine)[0].bytes, BlockFontFile().size());

  talk("define tick() {}");
  talk("KOVA.t = new Timer(tick, 30, true);");
  const std::vector<TimerView> timers = inspectTimers(engine);
  ASSERT_EQ(timers.size(), 2u);
  EXPECT_EQ(timers[0].callback, "tick");
  EXPECT_EQ(timers[0].due, 30u);
  EXPECT_TRUE(timers[0].repeats);
  EXPECT_EQ(timers[1].identity.kind, TimerKind::timeout);
  EXPECT_EQ(timers[1].identity.widget, idOf("w"));
}

TEST_F(ViewsTest, MemoriesAreThePlayers) {
  ASSERT_TRUE(loadTexts("{name: w, type: text, textStyle: plain, value: ab}, {name: p, type: image, src: p.kpx}"));
  EXPECT_TRUE(inspectImageCache(engine).entries.empty());
  writeText("p.kpx", std::string("\0\0\0\2\0\2\0\1\0\14\0\0abcd", 16));
  talk("widgets.p.src = \"./p.kpx\";");
  const ImageCacheView images = inspectImageCache(engine);
  ASSERT_EQ(images.entries.size(), 1u);
  EXPECT_EQ(images.entries[0].name, "./p.kpx");
  EXPECT_EQ(images.entries[0].bytes, 4u + 7 + 33);
  EXPECT_EQ(images.blockBytes, 0x80000u);
  EXPECT_EQ(images.freeBytes, 0x80000u - images.tableBytes - (44 + 12));
  EXPECT_EQ(images.entries[0].offset, 0x80000u - 44 - 4);  // the block ends with its size

  const HeapView before = inspectHeap(engine);
  EXPECT_EQ(before.spaceBytes, 102400u);
  EXPECT_EQ(before.stackWords, 65536u);
  EXPECT_EQ(before.stackUsed, 1u);  // what the session shares
  talk("gc();");
  EXPECT_EQ(inspectHeap(engine).collections, before.collections + 1);

  const GlyphCacheView glyphs = inspectGlyphCache(engine);
  EXPECT_GT(glyphs.strikes, 0);
  EXPECT_EQ(glyphs.mostStrikes, 128);
}

}  // namespace
