// kpg shot: sources, what it says is wrong, and what runs for ever.
#include "kpgfixture.h"
#include "platform/residentmemory.h"

namespace {

namespace fs = std::filesystem;

using ShotTest = KpgTest;

TEST_F(ShotTest, ASourceIsShotAsThePageThatItBuilds) {
  fs::create_directory("pages");
  writeText("pages/tools.bob", "define twice(x) { return 2 * x; }\n");
  writeText("pages/inner.yaml", "page: {}");
  writeText("pages/m.yaml",
            "flags: 16bit\npage: {width: 720, height: 480, bgColor: '#204060', scripts: [tools.bob],\n"
            "  onLoad: 'stdout.Display(twice(4), (new File(\"M.KPG\", \"rb\") == nil) ? \" no\" : \" yes\");'}");
  EXPECT_EQ(kpg("shot pages/m.yaml -o source.png --log -"), 0) << err;
  EXPECT_EQ(out, "8 yes");  // a page finds itself, in whatever case
  EXPECT_EQ(err, "");
  EXPECT_EQ(std::distance(fs::directory_iterator("pages"), {}), 3);  // nothing is written there
  ASSERT_EQ(kpg("build pages/m.yaml -o pages/m.kpg"), 0);
  ASSERT_EQ(kpg("shot pages/m.kpg -o page.png"), 0);
  EXPECT_EQ(text("source.png"), text("page.png"));

  // What lies beside it from an earlier build doesn't count.
  writeText("pages/tools.bob", "define twice(x) { return 3 * x; }\n");
  EXPECT_EQ(kpg("shot pages/m.yaml -o source.png --log -"), 0) << err;
  EXPECT_EQ(out, "12 yes");

  writeText("pages/m.yaml", "page:\n  x: 1\n  x: 2\n");
  EXPECT_EQ(kpg("shot pages/m.yaml -o bad.png"), 1);
  EXPECT_EQ(err, "pages/m.yaml:3: x of page: is given twice, first in line 2\n");
  EXPECT_FALSE(fs::exists("bad.png"));
}

TEST_F(ShotTest, ARecordingIsPlayedInTheOrderOfTheOtherActions) {
  writeText("m.yaml", "page: {}");
  writeText("r.yaml", "steps:\n- {eval: 'stdout.Display(\"b\");', repeat: 2}\n- key: Up\n");
  ASSERT_EQ(kpg("shot m.yaml -o m.png --log - --eval 'stdout.Display(\"a\");' --play r.yaml --eval "
                "'stdout.Display(\"c\");'"),
            0)
      << err;
  std::erase_if(out, [](char c) { return c < 'a' || c > 'c'; });
  EXPECT_EQ(out, "abbc");
  writeText("r.yaml", "steps:\n- key: Rigth\n");
  EXPECT_EQ(kpg("shot m.yaml -o n.png --play r.yaml"), 1);
  EXPECT_EQ(err, "r.yaml:2: there is no key 'Rigth'; did you mean 'Right'?\n");
}

TEST_F(ShotTest, APageOfAProjectIsShotWithWhatTheProjectMakes) {
  ASSERT_EQ(kpg("new p"), 0) << err;
  ASSERT_EQ(kpg("shot p/main.yaml -o source.png --strict"), 0) << err;
  ASSERT_EQ(kpg("build p"), 0) << err;
  ASSERT_EQ(kpg("shot p/build/main.kpg -o page.png"), 0) << err;
  EXPECT_EQ(text("source.png"), text("page.png"));
  writeText("p/other.yaml", "page: {}");  // none of its pages
  EXPECT_EQ(kpg("shot p/other.yaml -o other.png"), 0) << err;
  EXPECT_FALSE(fs::exists("p/build/other.kpg"));

  // Pages that a script opens are those of now.
  writeText("p/vistrel.yaml", "pages: [first.yaml, next.yaml]\n");
  writeText("p/first.yaml", "page: {width: 720, height: 480, onLoad: topFrame.LoadPage(\"next.kpg\");}");
  for (const char* color : {"'#204060'", "'#602040'"}) {
    writeText("p/next.yaml", std::string("flags: 16bit\npage: {width: 720, height: 480, bgColor: ") + color + "}");
    EXPECT_EQ(kpg("shot p/first.yaml -o led.png --strict"), 0) << err;
    EXPECT_EQ(kpg("shot p/next.yaml -o next.png"), 0) << err;
    EXPECT_EQ(text("led.png"), text("next.png"));
  }
}

TEST_F(ShotTest, ErrorsNameTheLinesOfTheirScripts) {
  writeText("p.yaml", "page:\n  onLoad: |\n    x = 1;\n    {\n      nosuch;\n    }\n");
  const std::string log = "Error: Unbound variable - nosuch\nHappened in p.yaml:4 page.onLoad at p.yaml:5\n";
  EXPECT_EQ(kpg("shot p.yaml --lines --strict --log - -o p.png"), 1);
  EXPECT_EQ(out, log);
  EXPECT_EQ(err, log);
  EXPECT_EQ(kpg("shot p.yaml --lines -o p.png"), 0);
  EXPECT_EQ(err, log);
  ASSERT_EQ(kpg("build p.yaml -o built/p.kpg --lines"), 1);  // there is no such folder
  fs::create_directory("built");
  ASSERT_EQ(kpg("build p.yaml -o built/p.kpg --lines"), 0) << err;
  EXPECT_EQ(kpg("shot built/p.kpg --lines --log -"), 0);
  EXPECT_EQ(out, log);
  EXPECT_EQ(kpg("shot built/p.kpg --log -"), 0);
  EXPECT_EQ(out, "Error: Unbound variable - nosuch\nHappened in p.yaml:4 page.onLoad\n");
  writeText("built/p.bobmap", "bobmap 1\n");
  EXPECT_EQ(kpg("shot built/p.kpg --lines --log -"), 0);
  EXPECT_EQ(err, "built/p.bobmap:2: is no line table that this kpg can read\n");
  EXPECT_EQ(kpg("build p.yaml -o - --lines"), 1);
  writeText("built/p.bobmap", "precious");
  EXPECT_EQ(kpg("build p.yaml -o built/p.kpg --lines"), 1);
  EXPECT_EQ(text("built/p.bobmap"), "precious");
}

TEST_F(ShotTest, StrictEndsWithOneWhenSomethingIsWrong) {
  build("p.kpg", "page: {width: 720, height: 480}");
  struct Case {
    const char *page, *actions, *message;  // no message when all is well
  };
  const Case cases[] = {
      {"page: {}", "--key Down", ""},
      {"page: {}", "--eval 'stdout.Display(\"Error: not one of the system\\n\");'", ""},
      {"page: {}", "--eval 'nosuch;'", "Error: Unbound variable - nosuch\n"},
      {"page: {}", "--eval 'x = '", "Error: Syntax error - "},
      {"page: {width: 9, height: 9, background: none.gif}", "", "Can't find: none.gif\n -- not found\n"},
      {"page: {type: group, children: [{type: frame, src: none.kpg}]}", "", " -- 'none.kpg' not found\n"},
      {"page: {start: nobody}", "", "Can't find starting widget 'nobody'\n"},
      {"page: {scripts: [none.bobo]}", "", "Error loading 'none.bobo'\n"},
      {"page: {type: group, children: [{type: select, name: s, choices: '|a'}]}", "--eval 'widgets.s.value = 9;'",
       "New value out of range: 9\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.page) + " " + c.actions);
    writeText("s.yaml", c.page);
    fs::remove("s.png");
    EXPECT_EQ(kpg("shot s.yaml -o s.png --strict " + std::string(c.actions)), *c.message ? 1 : 0);
    if (*c.message)
      EXPECT_NE(err.find(c.message), std::string::npos) << err;
    else
      EXPECT_EQ(err, "");
    EXPECT_TRUE(fs::exists("s.png"));  // which may show what is wrong
    EXPECT_EQ(kpg("shot s.yaml -o s.png " + std::string(c.actions)), 0) << err;
  }
}

TEST_F(ShotTest, ALongTracebackIsCutOnTheErrorStreamAlone) {
  build("p.kpg", "page: {onLoad: 'define f() { f(); } f();'}");
  EXPECT_EQ(kpg("shot p.kpg -o p.png --strict --log log.txt"), 1);
  const auto lines = [](const std::string& text) { return std::count(text.begin(), text.end(), '\n'); };
  EXPECT_TRUE(err.starts_with("Error: Stack overflow\nHappened in f\n")) << err;
  EXPECT_LT(lines(err), 25);
  EXPECT_GT(lines(text("log.txt")), 1000);
  const size_t at = err.find("  ... ");
  ASSERT_NE(at, std::string::npos);
  // The cut, the lines before and after it, and what was asked for with the log: nothing is unaccounted for.
  EXPECT_EQ(std::stol(err.substr(at + 6)) + 12 + 4, lines(text("log.txt")));
}

TEST_F(ShotTest, WhatRunsForEverIsEndedAndNamed) {
  struct Case {
    std::string page;
    const char *actions, *name;
  };
  const std::string spin = "define spin() { while (true) ; } ";
  const Case cases[] = {
      {"page: {onLoad: '" + spin + "spin();'}", "", " in spin\n"},
      {"page: {onLoad: '" + spin + "'}", "--eval 'spin();'", " in spin\n"},
      {"page: {type: group, start: a, children: [{name: a, onClick: '" + spin + "spin();'}]}", "--key Select",
       " in spin\n"},
      {"page: {onLoad: '" + spin + "t = new Timer(spin); t.Set(1, false);'}", "--wait 3", " in spin\n"},
      {"page: {onLoad: 'define tick() {} t = new Timer(tick); t.Set(0, true);'}", "--wait 3", ""},
      {"page: {onLoad: 'while (true) stdout.Display(1);'}", "", ""},
      {"page: {onLoad: 'while (true) frame.LoadPage(\"p.kpg\");'}", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page + " " + c.actions);
    build("p.kpg", c.page);
    fs::remove("p.png");
    fs::remove("log.txt");
    EXPECT_EQ(kpg("shot p.kpg -o p.png --timeout 0.2 --log log.txt " + std::string(c.actions)), 1);
    EXPECT_NE(err.find("p.kpg: stopped after 0.2 seconds of processor time"), std::string::npos) << err;
    EXPECT_NE(err.find(c.name), std::string::npos) << err;
    EXPECT_FALSE(fs::exists("p.png"));
    EXPECT_TRUE(fs::exists("log.txt"));
  }
}

TEST_F(ShotTest, ACutPageIsSaidToBeOne) {
  build("whole.kpg", "page: {type: group, children: [{type: text, value: hello}, {onClick: 'x = 1;'}]}");
  const std::string whole = text("whole.kpg");
  ASSERT_EQ(kpg("shot whole.kpg"), 0);
  EXPECT_EQ(err, "");
  ASSERT_EQ(kpg("dump whole.kpg"), 0);
  EXPECT_EQ(err, "");
  for (size_t size = 16; size < whole.size(); size += 7) {
    writeText("cut.kpg", whole.substr(0, size));
    kpg("shot cut.kpg");
    EXPECT_TRUE(err.starts_with("cut.kpg: is cut short")) << size << err;
    kpg("dump cut.kpg");
    EXPECT_TRUE(err.starts_with("cut.kpg: is cut short")) << size << err;
  }
}

TEST_F(ShotTest, TheErrorStreamHasNoStatusAndTheLogIsTheConsoles) {
  writeText("p.yaml", "page: {}");
  for (const char* options : {"", "--log -", "--strict", "--strict --log log.txt"}) {
    EXPECT_EQ(kpg(std::string("shot p.yaml -o p.png ") + options), 0);
    EXPECT_EQ(err, "") << options;
    EXPECT_EQ(out, "") << options;
  }
}

TEST_F(ShotTest, AStrangersPageIsKeptToItsFolder) {
  std::filesystem::create_directories("pages/inner");
  writeText("secret.txt", "secret");
  writeText("pages/own.txt", "own");
  build("pages/p.kpg", "page: {}");
  const std::string lines =
      " --eval 'new File(\"../secret.txt\", \"r\") ? 1 : 0;' --eval 'new File(\"own.txt\", \"r\") ? 1 : 0;'"
      " --eval 'new File(\"../made.txt\", \"w\") ? 1 : 0;' --eval 'new File(\"made.txt\", \"w\") ? 1 : 0;'";
  const std::string refusedReading =
                        "'../secret.txt' is not opened: it is outside the folders that the page may read\n",
                    refusedWriting = "'../made.txt' is not opened: it is no plain file in the page's folder\n";
  for (const char* way : {"", " --files page"}) {
    EXPECT_EQ(kpg("shot pages/p.kpg --log -" + std::string(way) + lines), 0) << err;
    EXPECT_EQ(out, refusedReading + "--> 0\n--> 1\n" + refusedWriting + "--> 0\n--> 1\n");
  }
  EXPECT_FALSE(std::filesystem::exists("made.txt"));
  EXPECT_EQ(kpg("shot pages/p.kpg --log - --eval 'new File(\"..\\\\Pages/OWN.txt\", \"r\") ? 1 : 0;'"), 0) << err;
  EXPECT_EQ(out, "--> 1\n");
  EXPECT_EQ(kpg("profile pages/p.kpg" + lines), 0) << err;
  EXPECT_EQ(err, refusedReading + refusedWriting);
  EXPECT_EQ(kpg("shot pages/p.kpg --files none --log -" + lines), 0) << err;
  EXPECT_EQ(out.find("--> 1"), std::string::npos) << out;
  EXPECT_EQ(kpg("shot pages/p.kpg --files all --log -" + lines), 0) << err;
  EXPECT_EQ(out, "--> 1\n--> 1\n--> 1\n--> 1\n");
  EXPECT_EQ(kpg("shot pages/p.kpg --files some"), 1);

  // A project's folder is the page's as well, for reading.
  writeText("vistrel.yaml", "pages: [pages/q.yaml]\n");
  EXPECT_EQ(kpg("shot pages/p.kpg --log -" + lines), 0) << err;
  EXPECT_EQ(out, "--> 1\n--> 1\n" + refusedWriting + "--> 0\n--> 1\n");
}

TEST_F(ShotTest, ScriptsEndAfterSoManySteps) {
  build("p.kpg", "page: {}");
  const std::string loop = " --eval 'for (i = 0; i < 1000; ++i) ;'";
  EXPECT_EQ(kpg("shot p.kpg --log - --max-steps 100000" + loop + loop), 0) << err;
  EXPECT_EQ(out, "--> nil\n--> nil\n");
  EXPECT_EQ(kpg("shot p.kpg --max-steps 900" + loop), 1);
  EXPECT_TRUE(err.starts_with("p.kpg: stopped after 900 steps of its scripts in <CompiledCode-")) << err;
}

TEST_F(ShotTest, APageThatTakesMemoryWithoutEndIsEnded) {
  if (residentMemory() == 0) GTEST_SKIP() << "nobody knows how much there is";
  writeText("large.kpg", std::string(1 << 20, '\0'));
  const std::string page =
      "page: {type: group, children: [{type: select, name: s}], onLoad: 'text = \"0123456789\"; i = 0;\n";
  const std::string longer = "    for (; i < 10; ++i) text = text + text;\n";
  for (const std::string taking : {"widgets.s.AddElement(text);", "kept = new StringTable(\"large.kpg\");",
                                   "new Timer(gc, 1000000, true);", "{ t = new EventTarget(); t.Push(); }"}) {
    build("p.kpg", page + longer + "    for (j = 0; ; ++j) " + taking + "'}");
    EXPECT_EQ(kpg("shot p.kpg --max-memory 16"), 1);
    EXPECT_TRUE(err.starts_with("p.kpg: stopped after 16 megabytes of memory in")) << err;
  }
  build("p.kpg", page + "    for (; i < 100000; ++i) \"a\" + \"b\";'}");  // which a collection clears away
  EXPECT_EQ(kpg("shot p.kpg --max-memory 16"), 0) << err;
}

TEST_F(ShotTest, FilesLargerThanAnyPageOrFontAreNotRead) {
  build("p.kpg", "page: {type: group, children: [{type: frame, src: large.kpg}]}");
  writeText("large.kpg", "");
  fs::resize_file("large.kpg", (64 << 20) + 1);  // all of it a hole
  EXPECT_EQ(kpg("shot p.kpg --log -"), 0) << err;
  EXPECT_NE(out.find("'large.kpg' is not opened: it is too large"), std::string::npos) << out;
  EXPECT_EQ(kpg("shot large.kpg"), 1);
}

}  // namespace
