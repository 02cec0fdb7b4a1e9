// Projects: what their file may say, which steps a build takes, and what becomes of the files.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <functional>

#include "kit/files.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/png.h"
#include "kit/project/archive.h"
#include "kit/project/build.h"
#include "kit/project/depfile.h"
#include "kit/project/pack.h"
#include "kit/project/runsteps.h"
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
  std::vector<std::string> make(size_t jobs = 2, const std::function<void()>& meanwhile = {}) {
    std::vector<std::string> made;
    BuildOptions options;
    options.progress = [&](size_t, size_t, const std::string&) {
      if (meanwhile) meanwhile();
    };
    options.jobs = jobs;
    options.made = [&](const std::string& file) { made.push_back(file); };
    try {
      report = buildProject(readProject(kProjectFileName), options);
    } catch (const KitError& e) {
      made.clear();
      for (const KitMessage& message : e.messages) made.push_back(message.whole());
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

  BuildReport report;
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
  writeText("build/menu.kpg", "changed");
  EXPECT_EQ(make(), (Files{"menu.kpg", "ready.gif"}));
  project("pages: [menu.yaml]\nstrip: true\npictures: [art/logo.png]\n");
  EXPECT_EQ(make(), Files{"tools.bobo"});
  fs::last_write_time("menu.yaml", fs::file_time_type::clock::now());
  EXPECT_EQ(make(), Files{});
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
  make(2, [] { fs::copy_file("build/.vistrel-build.json", "then", fs::copy_options::overwrite_existing); });
  fs::rename("then", "build/.vistrel-build.json");
  writeText("menu.yaml", std::string(kPage) + "    - {type: group}\n");
  picture("art/logo.png", 0x40C040);
  EXPECT_EQ(make(), (Files{"art/logo.clut", "menu.kpg"}));
  EXPECT_EQ(make(), Files{});
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
