// Projects: what their file may say, which steps a build takes, and what becomes of the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <functional>
#include <map>

#include "kit/depfile.h"
#include "kit/files.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/png.h"
#include "kit/project/archive.h"
#include "kit/project/build.h"
#include "kit/project/pack.h"
#include "kit/project/runsteps.h"
#include "kit/version.h"
#include "support/pagefixture.h"

namespace fs = std::filesystem;

namespace {

constexpr char kPage[] = R"(flags: 16bit
page:
  type: group
  scripts: [tools.bob]
  children:
    - {type: image, name: logo, src: art/logo.kpx}
    - {type: image, src: ready.gif}
    - {type: image, src: art/logo.png}
)";

class ProjectTest : public PageTest {
 protected:
  ProjectTest() {
    fs::create_directory("art");
    picture("art/logo.png", 0xC04040);
    writeText("tools.bob", "define f() { return 1; }\n");
    writeText("ready.gif", "GIF89a");
    writeText("menu.yaml", kPage);
    project("pages: [menu.yaml]\npictures: [art/logo.png]\n");
  }

  static void picture(const std::string& name, uint32_t color) {
    writePng(name, 4, 3, std::vector<uint32_t>(12, color));
  }
  void project(const std::string& text) { writeText(kProjectFileName, text); }

  // The files made, or the errors.
  std::vector<std::string> make(size_t jobs = 2, const std::function<void()>& meanwhile = {},
                                const std::string& page = {}) {
    std::vector<std::string> made;
    BuildOptions options;
    options.page = page;
    options.warn = [&](const KitMessage& warning) { warnings += warning.whole() + "\n"; };
    options.progress = [&](size_t, size_t, const std::string&) {
      if (meanwhile) meanwhile();
    };
    options.jobs = jobs;
    options.made = [&](const std::string& file) { made.push_back(file); };
    try {
      report = buildProject(readProject(kProjectFileName), options);
    } catch (const BuildError& e) {
      made.clear();
      for (const KitMessage& message : e.messages) made.push_back(message.whole());
      report.inputs = e.inputs;
    }
    return made;
  }

  static std::vector<std::string> clean() { return cleanProject(readProject(kProjectFileName), {}); }

  static std::string problems(const std::string& text) {
    std::ofstream(kProjectFileName) << text;
    try {
      readProject(kProjectFileName);
    } catch (const KitError& e) {
      return e.what();
    }
    return "";
  }

  std::vector<std::string> makePage(const std::string& page) { return make(2, {}, page); }

  // All files in a folder, with their bytes.
  static std::map<std::string, std::vector<uint8_t>> contents(const std::string& folder) {
    std::map<std::string, std::vector<uint8_t>> all;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
      if (entry.is_regular_file())
        all[entry.path().lexically_relative(folder).string()] = readFile(entry.path().string());
    return all;
  }

  BuildReport report;
  std::string warnings;
};

using Files = std::vector<std::string>;

TEST_F(ProjectTest, AllFaultsOfTheFileAreReportedWithTheirLines) {
  EXPECT_EQ(problems("pagse: [menu.yaml]\n"
                     "output: .\n"
                     "strip: perhaps\n"
                     "tables: {a.clut: standrad, b.clut: {colors: 500}}\n"
                     "pictures:\n"
                     "  - {files: [art/*.png], dihter: true, background: red}\n"
                     "  - {table: a.clut}\n"
                     "files: '*.txt'\n"),
            "vistrel.yaml:1: a project has no 'pagse'; did you mean 'pages'?\n"
            "vistrel.yaml:2: output: built files need a folder of their own\n"
            "vistrel.yaml:3: strip: 'perhaps' is neither true nor false\n"
            "vistrel.yaml:4: a.clut: 'standrad' is neither standard nor pictures nor a list of pictures; did you mean "
            "'standard'?\n"
            "vistrel.yaml:4: colors: '500' is no number of colours from 3 to 239\n"
            "vistrel.yaml:6: a picture has no 'dihter'; did you mean 'dither'?\n"
            "vistrel.yaml:6: background: 'red' is no colour \"#RRGGBB\"\n"
            "vistrel.yaml:7: say which pictures: files: [PICTURE.png]\n"
            "vistrel.yaml:8: files: no file is called '*.txt'");
}

TEST_F(ProjectTest, PatternsFindFilesInOrder) {
  picture("art/b.png", 1);
  picture("art/a.png", 1);
  project("pages: '*.yaml'\npictures: {files: art/*.png, dither: yes, to: .}\n");
  const Project read = readProject(kProjectFileName);
  ASSERT_EQ(read.pages.size(), 1u);  // the project's own file is no page
  ASSERT_EQ(read.pictures.size(), 3u);
  EXPECT_EQ(read.pictures[0].file.text, "art/a.png");
  EXPECT_EQ(read.pictures[2].file.text, "art/logo.png");
  EXPECT_TRUE(read.pictures[2].dither);
}

TEST_F(ProjectTest, OnlyWhatChangedIsMade) {
  EXPECT_EQ(make(), (Files{"art/logo.kpx", "art/logo.clut", "menu.kpg", "tools.bobo", "ready.gif"}));
  EXPECT_EQ(parseKpx("", readFile("build/art/logo.kpx")).clut, "art/logo.clut");  // as the page sees it
  EXPECT_EQ(make(), Files{});
  EXPECT_EQ(report.files, (Files{"art/logo.clut", "art/logo.kpx", "menu.kpg", "ready.gif", "tools.bobo"}));

  writeText("tools.bob", "define f() { return 2; }\n");  // the page is built again and is the same
  EXPECT_EQ(make(), Files{"tools.bobo"});
  picture("art/logo.png", 0x40C040);
  EXPECT_EQ(make(), Files{"art/logo.clut"});  // all of one colour, and so the same picture
  fs::remove("build/ready.gif");
  EXPECT_EQ(make(), Files{"ready.gif"});
  project("pages: [menu.yaml]\nstrip: true\npictures: [art/logo.png]\n");
  EXPECT_EQ(make(), Files{"tools.bobo"});
  fs::last_write_time("menu.yaml", fs::file_time_type::clock::now());
  EXPECT_EQ(make(), Files{});
}

TEST_F(ProjectTest, WhatWasChangedByHandIsKeptUnlessAllIsBuilt) {
  make();
  const std::vector<uint8_t> built = readFile("build/menu.kpg");
  writeText("build/menu.kpg", "changed");
  const Files refused{"build/menu.kpg: was changed after it was built; move it, or say --all to write over it"};
  EXPECT_EQ(make(), refused);
  EXPECT_EQ(make(), refused);
  EXPECT_EQ(readFile("build/menu.kpg").size(), 7u);
  BuildOptions options;
  options.all = true;
  buildProject(readProject(kProjectFileName), options);
  EXPECT_EQ(readFile("build/menu.kpg"), built);
  EXPECT_EQ(make(), Files{});
}

TEST_F(ProjectTest, APatternDoesNotMeanShotsOfPages) {
  picture("menu.png", 0x20C040);
  picture("sun.png", 0x20C040);
  project("pages: [menu.yaml]\npictures: '*.png'\n");
  const Project read = readProject(kProjectFileName);
  ASSERT_EQ(read.pictures.size(), 1u);
  EXPECT_EQ(read.pictures[0].file.text, "sun.png");
  project("pages: [menu.yaml]\npictures: [menu.png]\n");
  EXPECT_EQ(readProject(kProjectFileName).pictures.size(), 1u);
}

TEST_F(ProjectTest, PicturesWaitForTheTableThatTheyShare) {
  picture("art/other.png", 0x2040C0);
  project(
      "pages: [menu.yaml]\ntables: {all.clut: pictures, standard.clut: standard}\n"
      "pictures: {files: [art/logo.png, art/other.png], table: all.clut}\n");
  EXPECT_EQ(make(), (Files{"all.clut", "standard.clut", "art/logo.kpx", "art/other.kpx", "menu.kpg", "tools.bobo",
                           "ready.gif"}));
  picture("art/other.png", 0x20C040);
  const Files again = make();
  EXPECT_NE(std::find(again.begin(), again.end(), "all.clut"), again.end());
  EXPECT_EQ(make(), Files{});
}

TEST_F(ProjectTest, ErrorsComeInOrderWhateverTheThreadsDo) {
  std::string pages;
  Files expected = {"vistrel.yaml:1: gone.yaml is not there"};
  for (int i = 10; i < 40; ++i) {
    const std::string name = "page" + std::to_string(i);
    const bool isBad = i % 3 == 0;
    writeText(name + ".yaml", isBad ? "flags: 16bit\npage: {type: group, x: -1}\n" : "page: {type: group}\n");
    pages += ", " + name + ".yaml";
    if (isBad) expected.push_back(name + ".yaml:2: x of page: -1 lies outside 0 to 65535");
  }
  project("pages: [gone.yaml" + pages + "]\n");
  EXPECT_EQ(make(8), expected);
  EXPECT_TRUE(fs::exists("build/page10.kpg") && fs::exists("build/page38.kpg"));
  EXPECT_EQ(make(8), expected);
  EXPECT_EQ(make(1), expected);
}

TEST_F(ProjectTest, StepsRunOnceAndAfterThoseBefore) {
  std::vector<BuildStep> steps(60);
  for (size_t i = 1; i < steps.size(); ++i) steps[i].after = {i / 2, i - 1 - i % 2 * (i > 1)};
  std::vector<std::atomic<int>> runs(steps.size());
  std::atomic<int> early = 0;
  runSteps(steps, 8, [&](size_t i) {
    for (const size_t before : steps[i].after) early += runs[before] != 1;
    ++runs[i];
  });
  EXPECT_EQ(early, 0);
  EXPECT_TRUE(std::all_of(runs.begin(), runs.end(), [](const auto& n) { return n == 1; }));
}

TEST_F(ProjectTest, WhatAPageNamesMustBeThere) {
  writeText("other.yaml", "flags: 16bit\npage: {type: group}\n");
  writeText("menu.yaml", R"(flags: 16bit
page:
  type: group
  textStyles: [{name: body, font: Sans.ttf}]
  children:
    - {type: image, name: logo, src: logo.kpx}
    - {type: frame, src: other.kpg}
    - {type: image, src: ART\LOGO.KPX}
)");
  const Files missing = {"menu.yaml:4: font of the text style 'body': 'Sans.ttf' is not in the project",
                         "menu.yaml:6: src of logo: 'logo.kpx' is not in the project; there is 'art/logo.kpx'",
                         "menu.yaml:7: src of frame2: 'other.kpg' is not in the project; add other.yaml to pages"};
  EXPECT_EQ(make(), missing);
  EXPECT_EQ(make(), missing);  // although nothing was due
  project("pages: [menu.yaml]\npictures: {files: art/logo.png, tableName: logo.clut}\n");
  EXPECT_EQ(
      make().back(),
      "menu.yaml:8: the colour table of ART\\LOGO.KPX: 'logo.clut' is not in the project; there is 'art/logo.clut'");
}

TEST_F(ProjectTest, NothingThatNoBuildMadeIsLost) {
  fs::create_directory("build");
  writeText("build/menu.kpg", "mine");
  writeText("build/notes.txt", "mine");
  EXPECT_EQ(make(), Files{"build/menu.kpg: is there and no build made it; move it, or give its source another name"});
  EXPECT_EQ(readFile("build/menu.kpg").size(), 4u);
  fs::remove("build/menu.kpg");
  EXPECT_EQ(make(), (Files{"menu.kpg", "tools.bobo", "ready.gif"}));

  writeText("build/tools.bobo", "changed");
  EXPECT_EQ(clean(), (Files{"build/art/logo.clut", "build/art/logo.kpx", "build/menu.kpg", "build/ready.gif"}));
  EXPECT_EQ(readFile("build/tools.bobo").size(), 7u);
  EXPECT_TRUE(fs::exists("build/notes.txt") && !fs::exists("build/art"));
  fs::remove("build/tools.bobo");
  fs::remove("build/notes.txt");
  make();
  clean();
  EXPECT_FALSE(fs::exists("build"));
}

TEST_F(ProjectTest, AnInterruptedBuildKnowsItsFilesAgain) {
  const auto makeHalf = [&] {
    const bool isFirst = !fs::exists("build/.vistrel-build.json");
    if (!isFirst) fs::copy_file("build/.vistrel-build.json", "before");
    make(2, [] {
      std::error_code nothingYet;
      fs::remove("claims");  // which copying can't replace everywhere
      fs::copy_file("build/.vistrel-build.claims", "claims", nothingYet);
    });
    fs::rename("claims", "build/.vistrel-build.claims");
    fs::remove("build/.vistrel-build.json");
    if (!isFirst) fs::rename("before", "build/.vistrel-build.json");
  };
  makeHalf();
  writeText("menu.yaml", std::string(kPage) + "    - {type: group}\n");
  picture("art/logo.png", 0x40C040);
  EXPECT_EQ(make(), (Files{"art/logo.clut", "menu.kpg"}));
  EXPECT_EQ(make(), Files{});

  // Over an earlier build, and with errors in between.
  writeText("tools.bob", "define f() { return 2; }\n");
  picture("art/logo.png", 0x4040C0);
  makeHalf();
  writeText("menu.yaml", "page: {tpye: group}\n");
  writeText("art/logo.png", "no picture");
  EXPECT_EQ(make().size(), 2u);
  writeText("menu.yaml", kPage);
  writeText("tools.bob", "define f() { return 3; }\n");
  picture("art/logo.png", 0xC040C0);
  EXPECT_EQ(make(), (Files{"art/logo.clut", "menu.kpg", "tools.bobo"}));
  // Both are the build's own to remove.
  writeText("tools.bob", "define f() { return 4; }\n");
  makeHalf();
  writeText("build/menu.kpg", "changed");
  std::string said;
  cleanProject(readProject(kProjectFileName), [&](const KitMessage& warning) { said += warning.whole() + "\n"; });
  EXPECT_EQ(said, "build/menu.kpg: was changed after it was built, and stays\n");
  EXPECT_EQ(contents("build").size(), 1u);
  fs::remove_all("build");
  // But what somebody has changed since is theirs.
  make();
  picture("art/logo.png", 0x4040C0);
  makeHalf();
  writeText("build/art/logo.clut", "changed");
  picture("art/logo.png", 0xC04040);
  EXPECT_EQ(make(),
            Files{"build/art/logo.clut: was changed after it was built; move it, or say --all to write over it"});
}

TEST_F(ProjectTest, WhatIsNoLongerNamedGoesWithTheNextGoodBuild) {
  make();
  writeText("menu.yaml", "flags: 16bit\npage: {tpye: group}\n  x");
  make();
  EXPECT_TRUE(fs::exists("build/ready.gif"));  // the page is wrong, and what it names isn't known
  writeText("menu.yaml", "flags: 16bit\npage: {type: group}\n");
  EXPECT_EQ(make(), Files{"menu.kpg"});
  EXPECT_FALSE(fs::exists("build/ready.gif") || fs::exists("build/tools.bobo"));
}

// Two pages have a script in common, and each a hook, whose name is what --strip leaves out.
TEST_F(ProjectTest, StrippingAndNotStrippingAlternateInOneFolder) {
  for (const char* page : {"menu", "other"})
    writeText(std::string(page) + ".yaml", "page: {type: group, scripts: [tools.bob], onLoad: f();}\n");
  writeText("plain.yaml", "page: {type: group}\n");
  const std::string pages = "pages: [menu.yaml, other.yaml, plain.yaml]\n";
  const Files differing = {"menu.kpg", "tools.bobo", "other.kpg"};
  std::map<std::string, std::vector<uint8_t>> folders[2];
  for (const bool strip : {false, true}) {
    project(pages + "output: fresh" + (strip ? "1\nstrip: true\n" : "0\n"));
    make();
    folders[strip] = contents(strip ? "fresh1" : "fresh0");
    folders[strip].erase(".vistrel-build.json");
  }
  for (const bool strip : {false, true, false, true}) {
    const bool isFirst = !fs::exists("build");
    project(pages + (strip ? "strip: true\n" : ""));
    EXPECT_EQ(make(4), isFirst ? (Files{"menu.kpg", "tools.bobo", "other.kpg", "plain.kpg"}) : differing);
    auto built = contents("build");
    built.erase(".vistrel-build.json");
    EXPECT_TRUE(built == folders[strip]);
    EXPECT_EQ(make(4), Files{});
  }
}

TEST_F(ProjectTest, WhatAnotherKitBuiltIsBuiltAgain) {
  make();
  const auto bytes = contents("build");
  const auto& manifest = bytes.at(".vistrel-build.json");
  std::string text(manifest.begin(), manifest.end());
  const std::string now = std::string("\"kit\": \"") + kitVersion() + "\"";
  size_t steps = 0;
  for (size_t at = text.find(now); at != std::string::npos; at = text.find(now, at), ++steps)
    text.replace(at, now.size(), "\"kit\": \"0.0.1\"");
  EXPECT_EQ(steps, 3u);  // the page, the picture and the GIF

  // One that fails now must not pass for built the next time.
  writeText("build/.vistrel-build.json", text);
  fs::remove("art/logo.png");
  EXPECT_NE(make(), Files{});
  picture("art/logo.png", 0xC04040);
  EXPECT_EQ(make(), Files{});
  EXPECT_TRUE(contents("build") == bytes);
}

TEST_F(ProjectTest, AParallelBuildIsTheSerialOne) {
  std::string pages = "[menu.yaml";
  for (int i = 0; i < 24; ++i) {
    const std::string n = std::to_string(i);
    picture("art/p" + n + ".png", uint32_t(0x0A0500 * i + 0x40));
    writeText("page" + n + ".yaml", "page: {type: group, scripts: [tools.bob], onLoad: x = " + n +
                                        "; , children: [{type: image, src: art/p" + n + ".kpx}, {odd: " + n + "}]}\n");
    pages += ", page" + n + ".yaml";
  }
  const std::string rest = pages +
                           "]\ntables: {all.clut: pictures, standard.clut: standard}\n"
                           "pictures: [{files: [art/p*.png], table: all.clut, dither: yes}, art/logo.png]\n";
  Files made[2];
  std::string warned[2];
  std::map<std::string, std::vector<uint8_t>> folders[2];
  for (const size_t jobs : {1, 8}) {
    project("pages: " + rest);
    warnings.clear();
    made[jobs > 1] = make(jobs);
    warned[jobs > 1] = warnings;
    folders[jobs > 1] = contents("build");
    fs::remove_all("build");
  }
  EXPECT_EQ(made[0].size(), 2 + 24 + 2 + 1 + 1 + 24 + 1u);
  EXPECT_EQ(made[0], made[1]);
  EXPECT_NE(warned[0], "");
  EXPECT_EQ(warned[0], warned[1]);
  EXPECT_TRUE(folders[0] == folders[1]);  // the record of the build included
}

TEST_F(ProjectTest, OnePageIsBuiltWithWhatItNeeds) {
  for (const char* name : {"art/shown.png", "art/named.png", "art/pieced.png", "art/spare.png"}) picture(name, 1);
  writeText("menu.yaml", R"(flags: 16bit
page:
  type: group
  onClick: 'topFrame.LoadPage("other.kpg");'
  children: [{type: frame, src: inner.kpg}, {type: image, src: ready.gif}]
)");
  writeText("inner.yaml", R"(flags: 16bit
page: {type: group, scripts: [tools.bob], children: [{type: image, src: art/shown.kpx}]}
)");
  writeText("tools.bob", "define f(w) { w.src = \"art/named.kpx\"; w.src = \"art/\" + \"pieced\" + \".kpx\"; }\n");
  writeText("other.yaml", "page: {type: gruop}\n");
  project(
      "pages: [other.yaml, menu.yaml, inner.yaml]\ntables: {t.clut: pictures}\n"
      "pictures: {files: art/*.png, table: t.clut}\n");
  const Files needed = {"menu.kpg",   "t.clut",        "art/shown.kpx",  "inner.kpg",
                        "tools.bobo", "art/named.kpx", "art/pieced.kpx", "ready.gif"};
  Files made = makePage("menu.yaml");
  std::sort(made.begin(), made.end());
  Files sorted = needed;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(made, sorted);
  EXPECT_EQ(report.files, sorted);
  EXPECT_EQ(makePage("menu.yaml"), Files{});

  // The whole project goes on from there, and what it has built outlives the building of one page.
  writeText("other.yaml", "page: {type: group}\n");
  EXPECT_EQ(make(), (Files{"art/logo.kpx", "art/spare.kpx", "other.kpg"}));
  writeText("menu.yaml", "page: {type: group}\n");
  EXPECT_EQ(makePage("menu.yaml"), Files{"menu.kpg"});
  EXPECT_TRUE(fs::exists("build/ready.gif"));
  EXPECT_EQ(make(), Files{});
  EXPECT_FALSE(fs::exists("build/ready.gif"));
}

TEST_F(ProjectTest, PagesThatScriptsLoadMustBeThere) {
  writeText("other.yaml", "page: {type: group}\n");
  writeText("beside.kpg", "a page from elsewhere");
  writeText("tools.bob", "// LoadPage(\"a.kpg\")\ndefine f() {\n  topFrame.LoadPage(\"b.kpg\");\n}\n");
  writeText("menu.yaml", R"--(templates:
  go: {parameters: {to: }, onClick: 'topFrame.LoadPage("$(to).kpg");'}
  picture: {type: image, src: gone.kpx}
page:
  type: group
  scripts: [tools.bob]
  onLoad: |
    stdout.Display("LoadPage(\"c.kpg\")");

    if (!frame.LoadPage("other.kpg")) frame.LoadPage("d" + ".kpg");
  children:
    - {template: go, with: {to: menu}}
    - {template: go, with: {to: beside}}
    - {template: go, with: {to: nowhere}, name: last}
    - {template: picture}
)--");
  project("pages: [menu.yaml]\n");
  const Files missing = {
      "menu.yaml:15: src of image4: 'gone.kpx' is not in the project",
      "tools.bob:3: LoadPage: 'b.kpg' is not in the project",
      "menu.yaml:10: LoadPage in onLoad of page: 'other.kpg' is not in the project; add other.yaml to pages",
      "menu.yaml:2: LoadPage in onClick of last: 'nowhere.kpg' is not in the project\n"
      "  menu.yaml:14: used here: template 'go'"};
  Files found = make();
  EXPECT_EQ(found, missing);
  EXPECT_EQ(readFile("build/beside.kpg"), readFile("beside.kpg"));
  // From the outside, where nothing is due and yet all names are others.
  try {
    BuildOptions options;
    fs::create_directory("sub");
    fs::current_path("sub");
    buildProject(readProject("../vistrel.yaml"), options);
    ADD_FAILURE();
  } catch (const KitError& e) {
    EXPECT_EQ(e.messages.back().whole(),
              "../menu.yaml:2: LoadPage in onClick of last: 'nowhere.kpg' is not in the project\n"
              "  ../menu.yaml:14: used here: template 'go'");
  }
  fs::current_path("..");
  // A page that is in the project and fails is not missing.
  writeText("other.yaml", "page: {type: gruop}\n");
  project("pages: [menu.yaml, other.yaml]\n");
  found = make();
  EXPECT_EQ(std::count_if(found.begin(), found.end(), [](auto& m) { return m.find("other.kpg") != m.npos; }), 0);
}

TEST_F(ProjectTest, PatternsForPagesPassOverWhatPagesInclude) {
  writeText("menu.yaml", "include: theme.yaml\npage: {type: group, children: [{repeat: rows.yaml, x: $(item)}]}\n");
  writeText("theme.yaml", "constants: {a: 1}\n");
  writeText("rows.yaml", "[1, 2]\n");
  project("pages: '*.yaml'\n");
  EXPECT_EQ(make(), Files{"menu.kpg"});
  EXPECT_EQ(warnings, "");
  writeText("settings.yaml", "flags: 16bit\npgae: {type: group}\n");
  make();
  EXPECT_EQ(warnings, "vistrel.yaml:1: warning: settings.yaml has no 'page', and no page reads it\n");
  writeText("settings.yaml", "page: [\n");
  EXPECT_TRUE(make().front().starts_with("settings.yaml:2: ")) << make().front();
  EXPECT_EQ(problems("pages: '[rt]*.yaml'\n"), "vistrel.yaml:1: pages: no file called '[rt]*.yaml' has a 'page'");
}

// Whoever waits for the project to be mended knows what to watch.
TEST_F(ProjectTest, AFailedBuildSaysWhatItHasReadAndLookedFor) {
  writeText("menu.yaml",
            "page:\n  type: group\n  scripts: [tools.bob, gone.bob]\n"
            "  children: [{repeat: {over: rows.csv}, x: -1}, {include: gone.yaml}]\n");
  writeText("rows.csv", "a\n1\n");
  project("pages: [menu.yaml, missing.yaml]\npictures: [art/logo.png]\nfonts: [art/none.ttf]\n");
  EXPECT_EQ(make().size(), 5u);
  EXPECT_EQ(report.inputs, (Files{"art/logo.png", "art/none.ttf", "gone.bob", "gone.yaml", "menu.yaml", "missing.yaml",
                                  "rows.csv", "tools.bob", "vistrel.yaml"}));
}

TEST_F(ProjectTest, WhatAFailedBuildLeavesIsStillTheBuildsOwn) {
  make();
  // The page is built again without its script, and another fails.
  writeText("menu.yaml", "page: {type: group}\n");
  writeText("bad.yaml", "page: {x: -1}\n");
  project("pages: [menu.yaml, bad.yaml]\n");
  EXPECT_EQ(make().size(), 1u);
  EXPECT_EQ(make().size(), 1u);
  EXPECT_TRUE(fs::exists("build/tools.bobo"));
  writeText("tools.bob", "define f() { return 9; }\n");
  writeText("menu.yaml", kPage);
  project("pages: [menu.yaml]\npictures: [art/logo.png]\n");
  EXPECT_EQ(make(), (Files{"menu.kpg", "tools.bobo"}));  // not "is there and no build made it"
  writeText("menu.yaml", "page: {type: group}\n");
  project("pages: [menu.yaml, bad.yaml]\n");
  make();
  project("pages: [menu.yaml]\n");
  EXPECT_EQ(make(), Files{});
  EXPECT_EQ(contents("build").size(), 3u);  // the page, its line table and the record
}

TEST_F(ProjectTest, TwoStepsMustNotMakeOneFileUnlike) {
  writeText("tools.bobo", "mine");
  project("pages: [menu.yaml]\npictures: [art/logo.png]\nfiles: [tools.bobo]\n");
  const Files error = {"vistrel.yaml:1: tools.bobo is made twice: of file tools.bobo and of page menu.yaml"};
  EXPECT_EQ(make(), error);
  EXPECT_EQ(make(), error);
  // A script that the project lists, too, is the same file.
  project("pages: [menu.yaml]\npictures: [art/logo.png]\nscripts: [tools.bob]\n");
  make();
  EXPECT_EQ(make(), Files{});
}

TEST_F(ProjectTest, TwoSourcesOfOneFileAreAnError) {
  writeText("art/logo.gif", "GIF89a");
  project("pages: [menu.yaml]\npictures: [art/logo.png, art/logo.gif]\n");
  EXPECT_EQ(make(), Files{"vistrel.yaml:2: art/logo.kpx is made twice: of picture art/logo.png and of picture "
                          "art/logo.gif"});
}

TEST_F(ProjectTest, OutputsStayInTheirFolder) {
  fs::create_directory("sub");
  writeText("sub/page.yaml", "flags: 16bit\npage: {type: group, scripts: [../../evil.bob]}\n");
  writeText("../evil.bob", "f = 1;");
  project("pages: [sub/page.yaml]\n");
  const Files errors = make();
  fs::remove("../evil.bob");
  EXPECT_EQ(errors, Files{"vistrel.yaml:1: page sub/page.yaml would write ../evil.bobo, outside of the output folder"});
  EXPECT_FALSE(fs::exists("build/../../evil.bobo"));
}

class PackTest : public ProjectTest {
 protected:
  PackTest() {
    for (const char* name : {"one", "two", "three", "spare"}) picture(std::string(name) + ".png", 0x2040C0);
    writeText("list.txt", "1");
    writeText("menu.yaml", R"(flags: 16bit
page:
  type: group
  scripts: [tools.bob]
  children:
    - {type: image, name: one, src: one.kpx}
    - {type: image, src: one.kpx}
)");
    writeText("tools.bob", "define f(n) { widgets.one.src = \"art/logo.kpx\"; }\n");
    project(
        "pages: [menu.yaml]\nfiles: [list.txt]\ntables: {all.clut: pictures}\n"
        "pictures: [{files: ['*.png'], table: all.clut}, art/logo.png]\n");
  }

  Pack pack() {
    make();
    return planPack(readProject(kProjectFileName), report);
  }
  static std::string write(const Pack& pack, const std::string& output) try {
    writePack(readProject(kProjectFileName), pack, output);
    return "";
  } catch (const KitError& e) {
    return e.what();
  }
};

TEST_F(PackTest, WhatIsUsedGoesAndNothingElse) {
  Pack packed = pack();
  Files names;
  for (const PackedFile& file : packed.files) names.push_back(file.name);
  EXPECT_EQ(names,
            (Files{"all.clut", "art/logo.clut", "art/logo.kpx", "list.txt", "menu.kpg", "one.kpx", "tools.bobo"}));
  EXPECT_EQ(packed.unused, (Files{"spare.kpx", "three.kpx", "two.kpx"}));
  ASSERT_EQ(packed.pages.size(), 1u);
  EXPECT_EQ(packed.pages[0].pictures, 1u);
  EXPECT_EQ(packed.pages[0].memory, 4 * 3 + 7 + 33u + 12u);  // pixels, name and record, in a block of the memory

  writeText("tools.bob", "define f(n) { widgets.one.src = n + \".kpx\"; }\ndefine g() { f(\"two\"); }\n");
  EXPECT_EQ(pack().unused, (Files{"art/logo.clut", "art/logo.kpx", "spare.kpx", "three.kpx"}));
  std::ofstream(kProjectFileName, std::ios::app) << "keep: [s*.kpx]\n";
  EXPECT_EQ(pack().unused, (Files{"art/logo.clut", "art/logo.kpx", "three.kpx"}));
}

TEST_F(PackTest, AFolderIsReplacedIfAPackFilledIt) {
  EXPECT_EQ(write(pack(), "out"), "");
  EXPECT_EQ(readFile("out/art/logo.kpx"), readFile("build/art/logo.kpx"));
  writeText("tools.bob", "define f() { return 3; }\n");
  EXPECT_EQ(write(pack(), "out"), "");
  EXPECT_EQ(readFile("out/tools.bobo"), readFile("build/tools.bobo"));
  EXPECT_FALSE(fs::exists("out/art/logo.kpx"));
  writeText("out/mine.txt", "mine");
  EXPECT_EQ(write(pack(), "out"),
            "out/mine.txt: is there and no pack put it there; name a folder that is empty or new");
  fs::create_directory("other");
  writeText("other/menu.kpg", "mine");
  EXPECT_TRUE(write(pack(), "other").starts_with("other/menu.kpg: is there"));
}

TEST(Archive, LongNamesAreCutAtASlashOrRefused) {
  const std::string folder(120, 'f'), file(90, 'n');
  EXPECT_EQ(tarGzArchive({{folder + "/" + file, {1}}}), tarGzArchive({{folder + "/" + file, {1}}}));
  EXPECT_THROW(tarGzArchive({{std::string(101, 'n'), {1}}}), KitError);
  EXPECT_THROW(zipArchive({{std::string(256, 'n'), {1}}}), KitError);
  EXPECT_TRUE(isKitZip(zipArchive({})));
  EXPECT_FALSE(isKitZip({'P', 'K'}));
}

TEST(Depfile, NamesAreEscapedForMake) {
  EXPECT_EQ(depfileText("out dir/a$b", {"in#1.yaml", "x.bob"}), "out\\ dir/a$$b: \\\n  in\\#1.yaml \\\n  x.bob\n");
}

}  // namespace
