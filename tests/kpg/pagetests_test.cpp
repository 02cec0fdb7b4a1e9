// kpg test: what files of tests say, what each step expects, and the reports.
#include <algorithm>
#include <iterator>

#include "kit/pictures/png.h"
#include "kpgfixture.h"

namespace {

namespace fs = std::filesystem;

// Two boxes. Right moves the focus from a to b; there Select changes width and colour, Up complains, Down takes memory.
constexpr char kPage[] = R"(flags: 16bit
page:
  width: 720
  height: 480
  type: group
  bgColor: "#204060"
  start: a
  onLoad: kept = "";
  children:
    - {type: text, name: a, x: 10, y: 10, width: 40, height: 20, bgColor: "#F0F000", value: hello, right: b}
    - name: b
      x: 100
      y: 10
      width: 40
      height: 20
      bgColor: "#00F0F0"
      left: a
      onClick: widgets.b.width = 30; widgets.b.bgColor = 1000;
      onUp: nosuch;
      onDown: kept = kept + "more and more";
)";

class PageTestsTest : public KpgTest {
 protected:
  PageTestsTest() { writeText("p.yaml", kPage); }

  // The exit status of the tests whose steps are these lines.
  int runSteps(const std::string& steps, const std::string& options = {}) {
    writeText("t.test.yaml", "page: p.yaml\nsteps:\n" + steps);
    return kpg("test t.test.yaml " + options);
  }
};

TEST_F(PageTestsTest, EachExpectationHoldsOrSaysWhatThereIs) {
  struct Case {
    std::string steps;
    const char* message;  // empty when all is as expected
  };
  const Case cases[] = {
      {"- focus: a\n", ""},
      {"- focus: b\n", "t.test.yaml:3: focus: b: it is on a\n"},
      {"- focus: none\n", "focus: none: it is on a"},
      {"- {focus: bb}\n", "the page has no widget 'bb'"},
      {"- key: Right\n- focus: b\n- {key: Left, repeat: 2}\n- focus: a\n", ""},
      {"- {text: a, is: hello}\n- {text: a, contains: [el, lo]}\n", ""},
      {"- {text: a, is: Hello}\n", "text: a, is: Hello: it is 'hello'"},
      {"- {text: a, contains: x}\n", "text: a, contains: [x]: it is 'hello'"},
      {"- {value: 1 + 2, is: 3}\n- {value: \"widgets.b.x;\", is: 100}\n- log: none\n", ""},
      {"- {value: 1 + 2, is: 4}\n", "value: 1 + 2, is: 4: it is '3'"},
      {"- {value: nosuch, is: 4}\n", "it has no value:\n  Error: Unbound variable - nosuch"},
      {"- eval: 'stdout.Display(\"one\\ntwo\\n\");'\n- log: [one, two, \"--> 8\"]\n",
       "has no '--> 8' there; it was:\n  one"},
      {"- eval: 'stdout.Display(\"one\\n\");'\n- log: {contains: [on], lacks: two}\n- log: none\n", ""},
      {"- eval: 'stdout.Display(\"one\\n\");'\n- log: {lacks: one}\n", "a line of the log has 'one'"},
      {"- log: {contains: one}\n", "no line of the log has 'one'; nothing was logged"},
      {"- eval: 'stdout.Display(\"one\\n\");'\n- log: none\n", "something was logged; it was:\n  one"},
      {"- memory: {heap: 102400, cache: 0}\n", ""},
      {"- memory: {heap: 10}\n", "memory: {heap: 10}: the heap has "},
      // A complaint fails a test where it happened, unless a log step has looked at it.
      {"- key: Right\n- key: Up\n- focus: b\n", "t.test.yaml:4: key: Up: Error: Unbound variable - nosuch"},
      {"- key: Right\n- key: Up\n- focus: a\n",
       "Happened in p.yaml:19 b.onUp at p.yaml:19\nt.test.yaml:5: focus: a: it is on b\n"},
      {"- key: Right\n- key: Up\n- log: {contains: nosuch}\n", ""},
      // Steps repeat together, the ones inside with their own numbers.
      {"- eval: n = 0;\n- repeat: 3\n  steps:\n  - eval: n = n + 1;\n    repeat: 2\n- {value: n, "
       "is: 6}\n",
       ""},
      {"- eval: while (true) ;\n- focus: a\n", "stopped after 0.1 seconds of processor time"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.steps);
    EXPECT_EQ(runSteps(c.steps, "--timeout 0.1"), *c.message ? 1 : 0) << out << err;
    EXPECT_NE(out.find(c.message), std::string::npos) << out;
    EXPECT_EQ(err, "");
  }
}

TEST_F(PageTestsTest, WhatCannotBeRunEndsWithTwoAndNamesTheLine) {
  struct Case {
    const char *file, *message;
  };
  const Case cases[] = {
      {"page: p.yaml\nsteps:\n- ky: Up\n", "t.test.yaml:3: a step has no 'ky'; did you mean 'key'?\n"},
      {"page: p.yaml\nsteps:\n- key: Pu\n", "t.test.yaml:3: there is no key 'Pu'; did you mean 'Up'?\n"},
      {"page: p.yaml\nsteps:\n- {screen: a.png, tolerence: 3}\n", "'tolerence'; did you mean 'tolerance'?\n"},
      {"page: p.yaml\nsteps:\n- {screen: a.png, area: [1, 2, 3]}\n", "an area is a list [x, y, width, height]\n"},
      {"page: p.yaml\nsteps:\n- {key: Up, wait: 3}\n", "write another step for 'wait'\n"},
      {"page: p.yaml\nsteps:\n- value: x\n", "'value' needs is or contains beside it\n"},
      {"page: p.yaml\nsteps:\n- memory: {}\n", "t.test.yaml:3: memory has heap or cache"},
      {"page: p.yaml\nsteps:\n- log: {}\n", "t.test.yaml:3: log has contains or lacks"},
      {"page: p.yaml\ntests:\n- name: a\n- name: a\n", "t.test.yaml:4: there is a test 'a' already, in line 3\n"},
      {"tests:\n- name: a\n", "t.test.yaml:2: the test has no page"},
      {"page: p.yaml\n", "a test file has tests, a list, or steps of one test\n"},
      {"page: none.yaml\nsteps: []\n", "none.yaml: No such file or directory\n"},
      {"page: bad.yaml\nsteps: []\n", "bad.yaml:3: type of page: 'txet' is not one of "},
      {"page: p.yaml\nsteps: [{steps: [{steps: [{key: Up}], repeat: 100000}], repeat: 101}]\n",
       "the test does more than 10000000 steps\n"},
      {"page: p.yaml\nsteps:\n- play: r.yaml\n", "r.yaml:2: there is no key 'Rigth'; did you mean 'Right'?\n"},
  };
  writeText("bad.yaml", "page:\n  widht: nine\n  type: txet\n");
  writeText("r.yaml", "steps:\n- key: Rigth\n");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    writeText("t.test.yaml", c.file);
    EXPECT_EQ(kpg("test"), 2);
    EXPECT_NE(out.find(c.message), std::string::npos) << out << err;
    EXPECT_NE(out.find("0 tests passed, 1 can't be run\n"), std::string::npos) << out;
  }
  fs::remove("t.test.yaml");
  EXPECT_EQ(kpg("test"), 2);
  EXPECT_EQ(err, ".: has no test file, NAME.test.yaml\n");
  EXPECT_EQ(kpg("test none.test.yaml"), 2);
  EXPECT_EQ(err, "none.test.yaml: No such file or directory\n");
}

TEST_F(PageTestsTest, UpdateWritesThePicturesThatAreMissingOrDiffer) {
  const std::string steps =
      "- screen: all.png\n- {screen: new/b.png, widget: b}\n- {screen: area.png, area: [95, 5, 20, 10]}\n";
  EXPECT_EQ(runSteps(steps), 1);
  EXPECT_NE(out.find("t.test.yaml:3: screen: all.png: there is no such picture yet; kpg test --update makes it\n"),
            std::string::npos);
  EXPECT_FALSE(fs::exists("all.png"));
  EXPECT_EQ(runSteps(steps, "--update"), 0) << out;
  EXPECT_EQ(out, "ok    t.test.yaml: t\nall.png written\narea.png written\nnew/b.png written\n1 test passed\n");
  EXPECT_EQ(runSteps(steps), 0) << out;

  const Picture area = decodePng("area.png", readFile("area.png"));
  ASSERT_EQ(area.width, 20u);
  ASSERT_EQ(area.height, 10u);
  EXPECT_NE(area.pixels[0], area.pixels[5 * 20 + 5]);  // the page and the box
  EXPECT_EQ(area.pixels[5 * 20 + 5], area.pixels[9 * 20 + 19]);
  EXPECT_EQ(decodePng("b.png", readFile("new/b.png")).width, 40u);

  writeText("all.png", "no picture");
  EXPECT_EQ(runSteps(steps), 2);  // broken, not different
  fs::remove("all.png");
  EXPECT_EQ(runSteps(steps, "--update"), 0);
  EXPECT_EQ(out, "ok    t.test.yaml: t\nall.png written\n1 test passed\n");
  EXPECT_EQ(runSteps("- screen: x.png\n- {key: Right}\n- key: Select\n- screen: x.png\n", "--update"), 1);
  EXPECT_NE(out.find("another step has this picture with other pixels"), std::string::npos) << out;

  // What is masked in one step is as the other has it.
  const std::string exact = "- screen: y.png\n", masked = "- {screen: y.png, mask: [b]}\n",
                    press = "- {key: Right}\n- {key: Select}\n";
  for (const std::string& two : {exact + press + masked, masked + press + exact}) {
    fs::remove("y.png");
    EXPECT_EQ(runSteps(two, "--update"), 0) << out;
    EXPECT_EQ(runSteps(two), 0) << out;
  }
}

TEST_F(PageTestsTest, LinesOfScriptsThatRanAreCountedOverAllTests) {
  writeText("tools.bob",
            "define twice(n) {\n  if (n > 9)\n    return 0;\n  return n * 2;\n}\ndefine never() { return 1; }\n");
  writeText("p.yaml",
            "page:\n  type: group\n  start: a\n  scripts: [tools.bob]\n  children:\n  - type: image\n    name: a\n"
            "    width: 9\n    height: 9\n    onClick: |\n      x = twice(2);\n    onUp: x = 0;\n");
  writeText("t.test.yaml",
            "page: p.yaml\ntests:\n- {name: one, steps: [key: Select]}\n- {name: two, steps: [key: Select, key: "
            "Select]}\n");
  EXPECT_EQ(kpg("test --coverage c.info"), 0);
  const std::string info = text("c.info");
  const auto counts = [&](const std::string& file) {
    const size_t at = info.find("/" + file + "\n");
    return at == std::string::npos ? "" : info.substr(at, info.find("end_of_record", at) - at);
  };
  EXPECT_EQ(counts("tools.bob"), "/tools.bob\nDA:1,2\nDA:2,3\nDA:3,0\nDA:4,3\nDA:5,2\nDA:6,2\nLF:6\nLH:5\n");
  EXPECT_EQ(counts("p.yaml"), "/p.yaml\nDA:11,3\nDA:12,0\nLF:2\nLH:1\n");
  EXPECT_NE(out.find("tools.bob: 5 of 6 lines, not 3\nscripts: 6 of 8 lines (75 %)\n"), std::string::npos) << out;
  EXPECT_NE(out.find("p.yaml: 1 of 2 lines, not 12\n"), std::string::npos) << out;
}

TEST_F(PageTestsTest, AScreenThatDiffersIsMeasured) {
  const std::string narrower = "- {key: Right}\n- {key: Select}\n";
  ASSERT_EQ(runSteps("- {screen: s.png}\n- {screen: b.png, widget: b}\n", "--update"), 0);
  EXPECT_EQ(runSteps(narrower + "- screen: s.png\n"), 1);
  EXPECT_NE(out.find(": 600 pixels differ, in 30x20 at 100,10, by "), std::string::npos) << out;
  EXPECT_EQ(runSteps(narrower + "- {screen: b.png, widget: b}\n"), 1);
  EXPECT_NE(out.find("the sizes differ, 40x20 and 30x20"), std::string::npos) << out;
  for (const char* same : {"mask: [[100, 10, 30, 20]]", "mask: [b]", "mask: [[0, 0, 720, 480]]", "tolerance: 255"})
    EXPECT_EQ(runSteps(narrower + "- {screen: s.png, " + same + "}\n"), 0) << out;
  for (const char* other : {"mask: [[101, 10, 30, 20]]", "mask: [a]", "tolerance: 20"})
    EXPECT_EQ(runSteps(narrower + "- {screen: s.png, " + other + "}\n"), 1) << out;
}

TEST_F(PageTestsTest, TestsOfAProjectSeeWhatTheProjectMakes) {
  ASSERT_EQ(kpg("new q"), 0) << err;
  fs::create_directory("q/tests");
  writeText("q/tests/main.test.yaml", "page: ../main.yaml\nsteps:\n- screen: main.png\n- log: none\n");
  ASSERT_EQ(kpg("test q --update"), 0) << out;
  ASSERT_EQ(kpg("build q"), 0) << err;
  ASSERT_EQ(kpg("shot q/build/main.kpg -o shot.png"), 0) << err;
  EXPECT_EQ(text("q/tests/main.png"), text("shot.png"));

  // Pages that a script opens are there, too, and what is wrong with them is said.
  std::string project = text("q/vistrel.yaml");
  project.replace(project.find("[main.yaml]"), 11, "[main.yaml, more.yaml, bad.yaml]");
  writeText("q/vistrel.yaml", project);
  writeText("q/more.yaml", "page: {type: group, start: here, children: [{name: here}]}\n");
  writeText("q/bad.yaml", "page: {type: no}\n");
  writeText("q/tests/more.test.yaml",
            "page: ../main.yaml\nsteps:\n- eval: topFrame.LoadPage(\"more.kpg\");\n- focus: here\n");
  EXPECT_EQ(kpg("test q/tests/more.test.yaml"), 0) << out << err;
  EXPECT_NE(err.find("bad.yaml:1: type of page: 'no' is not one of"), std::string::npos) << err;
  writeText("q/tests/main.test.yaml", "page: ../build/main.kpg\nsteps:\n- screen: main.png\n");
  EXPECT_EQ(kpg("test q"), 0) << out;
}

class ManyPageTests : public PageTestsTest {
 protected:
  ManyPageTests() {
    for (int file = 0; file < 3; ++file) {
      std::string tests = "page: p.yaml\nsetup: [{key: Right}]\ntests:\n";
      for (int i = 0; i < 7; ++i)
        tests += "- name: n" + std::to_string(i) + "\n  steps: [{focus: " + (i == 4 ? "a" : "b") + "}]\n";
      writeText("f" + std::to_string(file) + ".test.yaml", tests);
    }
  }

  static size_t count(const std::string& text, const std::string& part) {
    size_t n = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++n;
    return n;
  }
};

TEST_F(ManyPageTests, ThreadsChangeNothingAndOnlyChooses) {
  EXPECT_EQ(kpg("test --jobs 1"), 1);
  const std::string alone = out;
  EXPECT_EQ(count(alone, "FAIL  "), 3u);
  EXPECT_NE(alone.find("\n18 tests passed, 3 failed\n"), std::string::npos) << alone;
  EXPECT_EQ(kpg("test --jobs 4"), 1);
  EXPECT_EQ(out, alone);
  EXPECT_EQ(kpg("test --only 'f1*n[0-2]'"), 0);
  EXPECT_EQ(count(out, "ok    f1.test.yaml: n"), 3u);
  EXPECT_EQ(kpg("test --only nothing"), 2);
}

TEST_F(ManyPageTests, SharesTogetherAreTheWhole) {
  EXPECT_EQ(kpg("test --json whole.json --junit whole.xml"), 1);
  std::string reports;
  for (int i = 1; i <= 4; ++i) {
    const std::string report = "r" + std::to_string(i) + ".json";
    kpg("test --shard " + std::to_string(i) + "/4 --json " + report);
    const size_t tests = count(text(report), "\"outcome\"");
    EXPECT_TRUE(tests == 5 || tests == 6) << tests;
    reports += " " + report;
  }
  EXPECT_EQ(kpg("test --merge --json merged.json --junit merged.xml --html html" + reports), 1);
  EXPECT_NE(out.find("\n18 tests passed, 3 failed\n"), std::string::npos) << out;
  for (const char* line : {"n0", "n4", "focus: a: it is on b"})
    EXPECT_EQ(count(text("merged.xml"), line), count(text("whole.xml"), line)) << line;
  for (const char* part : {"\"passed\"", "\"failed\"", "it is on b"})
    EXPECT_EQ(count(text("merged.json"), part), count(text("whole.json"), part)) << part;
  EXPECT_EQ(count(text("html/index.html"), "<details open class=\"test failed\""), 3u);

  EXPECT_EQ(kpg("test --merge r1.json r2.json r4.json"), 2);
  EXPECT_EQ(err, "the report of share 3/4 is missing\n");
  EXPECT_EQ(kpg("test --merge r1.json r2.json r1.json"), 2);
  EXPECT_EQ(err, "r1.json: is the same share as r1.json\n");
  EXPECT_EQ(kpg("test --shard 5/4"), 2);
  EXPECT_EQ(kpg("test --jobs 0"), 2);
  writeText("other.json", "{\"report\": \"another\"}");
  EXPECT_EQ(kpg("test --merge other.json"), 2);
  EXPECT_EQ(err, "other.json: is no report of kpg test; --json makes one\n");
}

TEST_F(PageTestsTest, TheReportShowsPicturesAndWhatIsMarkupIsText) {
  ASSERT_EQ(runSteps("- screen: s.png\n", "--update"), 0);
  EXPECT_EQ(runSteps("- eval: 'stdout.Display(\"<b>&\");'\n- {key: Right}\n- {key: Select}\n- screen: s.png\n",
                     "--html report --junit junit.xml"),
            1);
  const std::string html = text("report/index.html");
  EXPECT_NE(html.find("&lt;b&gt;&amp;"), std::string::npos);
  EXPECT_EQ(html.find("<b>&"), std::string::npos);
  EXPECT_NE(text("junit.xml").find("&lt;b&gt;&amp;"), std::string::npos);
  // Expected, actual and difference; the difference is red where it is.
  EXPECT_EQ(text("report/kpg-test-0001.png"), text("s.png"));
  const Picture difference = decodePng("d", readFile("report/kpg-test-0003.png"));
  EXPECT_EQ(difference.pixels[15 * 720 + 125], 0xFFE01030);
  EXPECT_NE(difference.pixels[15 * 720 + 135], 0xFFE01030);

  EXPECT_NE(text("report/kpg-test-0004.png").find("acTL"), std::string::npos);  // the film

  // The next report takes its place, pictures and all; another file doesn't.
  EXPECT_EQ(runSteps("- screen: s.png\n", "--html report"), 0);
  EXPECT_FALSE(fs::exists("report/kpg-test-0001.png"));
  fs::create_directory("site");
  writeText("site/index.html", "precious");
  EXPECT_EQ(runSteps("- focus: a\n", "--html site"), 2);
  EXPECT_EQ(text("site/index.html"), "precious");
}

TEST_F(PageTestsTest, AWalkFindsFaultsAndTheFewestKeysThatShowThem) {
  EXPECT_EQ(runSteps("- walk: {keys: 300, among: [Left, Right, Select]}\n"), 0) << out;
  EXPECT_EQ(runSteps("- walk: {keys: 300}\n"), 1);
  EXPECT_NE(out.find("Error: Unbound variable - nosuch"), std::string::npos) << out;
  EXPECT_NE(out.find("; the fewest that do it: Right, Up\n"), std::string::npos) << out;
  const std::string first = out;
  runSteps("- walk: {keys: 300}\n");
  EXPECT_EQ(out, first);
  EXPECT_EQ(runSteps("- walk: {keys: 300, among: [DownRight, Up]}\n"), 1);
  EXPECT_NE(out.find("; the fewest that do it: Right, Up\n"), std::string::npos) << out;
  EXPECT_EQ(runSteps("- {key: Right}\n- walk: {keys: 300, among: [Up, Select]}\n", "--seed 7"), 1);
  EXPECT_NE(out.find(" keys with seed 7; the fewest that do it: Up\n"), std::string::npos) << out;
  EXPECT_EQ(runSteps("- walk: {keys: 300, among: [Left, Right, Down, Select]}\n"), 1);
  EXPECT_NE(out.find("the heap grows without end on p.kpg, from "), std::string::npos) << out;
  EXPECT_NE(out.find("pressed again and again: Right, Down\n"), std::string::npos) << out;
}

}  // namespace
