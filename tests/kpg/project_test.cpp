// Projects and colours as their authors call them.
#include "kit/pictures/png.h"
#include "kpgfixture.h"

namespace fs = std::filesystem;

namespace {

using ProjectCommandsTest = KpgTest;

TEST_F(ProjectCommandsTest, ANewProjectBuildsAndItsPageAnswersAKey) {
  ASSERT_EQ(kpg("new 'my \"first\"'"), 0) << err;
  EXPECT_NE(out.find("kpg build\n"), std::string::npos);
  EXPECT_EQ(shell("cd 'my \"first\"' && kpg build >../out.txt 2>../err.txt"), 0);
  EXPECT_EQ(text("err.txt"), "");
  EXPECT_NE(text("out.txt").find("build/main.kpg\n"), std::string::npos);
  EXPECT_EQ(
      kpg("shot 'my \"first\"/build/main.kpg' --strict --key Right --key Select --eval 'widgets.said.value;' --log -"),
      0)
      << err;
  EXPECT_NE(out.find("You have chosen films"), std::string::npos) << out;
  EXPECT_EQ(kpg("new 'my \"first\"'"), 1);
  EXPECT_EQ(err, "my \"first\": is there and not empty\n");
}

TEST_F(ProjectCommandsTest, TheProjectAroundIsBuiltAndCleaned) {
  fs::create_directories("p/sub");
  writePng("p/c.png", 1, 1, {0xC04040});
  writeText("p/vistrel.yaml",
            "pages: [a.yaml, b.yaml]\ntables: {t.clut: pictures}\npictures: {files: c.png, table: t.clut}\n");
  writeText("p/a.yaml", "page: {type: group, scripts: [s.bob]}\n");
  writeText("p/b.yaml", "page: {type: group}\n");
  writeText("p/s.bob", "x = 1;\n");
  EXPECT_EQ(shell("cd p/sub && kpg build --depfile d.mk >out.txt"), 0);
  EXPECT_EQ(text("p/sub/out.txt"),
            "../build/t.clut\n../build/c.kpx\n../build/a.kpg\n../build/s.bobo\n../build/b.kpg\n");
  EXPECT_EQ(text("p/sub/d.mk"),
            "../build/.vistrel-build.json: \\\n  ../a.yaml \\\n  ../b.yaml \\\n  ../c.png \\\n  ../s.bob \\\n  "
            "../vistrel.yaml\n");
  EXPECT_EQ(kpg("build p"), 0);
  EXPECT_EQ(out, "nothing has changed, 5 in p/build/\n");
  EXPECT_EQ(kpg("build p --all -o elsewhere"), 0) << err;
  EXPECT_TRUE(fs::exists("elsewhere/b.kpg"));
  EXPECT_EQ(kpg("build p/vistrel.yaml -o elsewhere"), 0);
  EXPECT_TRUE(out.starts_with("nothing has changed")) << out;

  writeText("p/a.yaml", "page: {type: group, x: -1}\n");
  writeText("p/b.yaml", "page: {type: group, y: -1}\n");
  EXPECT_EQ(kpg("build p --jobs 4"), 1);
  EXPECT_EQ(err,
            "p/a.yaml:1: x of page: -1 lies outside 0 to 65535\np/b.yaml:1: y of page: -1 lies outside 0 to 65535\n");
  // Line tables are there, but are nothing to ship.
  EXPECT_TRUE(fs::exists("p/build/a.bobmap") && fs::exists("p/build/s.bobo.bobmap"));
  EXPECT_EQ(kpg("clean p"), 0);
  EXPECT_EQ(out, "5 files removed\n");
  EXPECT_FALSE(fs::exists("p/build"));
  EXPECT_EQ(kpg("build"), 1);
  EXPECT_EQ(err, "there is no vistrel.yaml here or in a folder around; kpg new NAME begins a project\n");
}

TEST_F(ProjectCommandsTest, OnePageHasADepfileToo) {
  fs::create_directory("my pages");
  writeText("my pages/a.yaml", "page: {type: group, scripts: [s.bob]}\n");
  writeText("my pages/s.bob", "x = 1;\n");
  ASSERT_EQ(kpg("build 'my pages/a.yaml' -o a.kpg --depfile a.d"), 0) << err;
  EXPECT_EQ(text("a.d"), "a.kpg: \\\n  my\\ pages/a.yaml \\\n  my\\ pages/s.bob\n");
  EXPECT_EQ(kpg("build 'my pages/a.yaml'"), 1);
  EXPECT_EQ(err, "kpg build: --out is required\nkpg build --help lists its options\n");
}

TEST_F(ProjectCommandsTest, APageOfAProjectIsBuiltWhereTheProjectBuildsIt) {
  fs::create_directories("p/pages");
  writePng("p/pages/c.png", 1, 1, {0xC04040});
  writeText("p/vistrel.yaml", "pages: [pages/a.yaml, pages/b.yaml]\npictures: pages/c.png\n");
  writeText("p/pages/a.yaml", "page: {background: c.kpx, onLoad: x = 1;}\n");
  writeText("p/pages/b.yaml", "page: {x: -1}\n");  // which is no fault of the other page
  writeText("p/none.yaml", "page: {}\n");
  ASSERT_EQ(kpg("build p/pages/a.yaml --depfile a.d"), 0) << err;
  EXPECT_EQ(out, "p/build/pages/a.kpg\np/build/pages/c.kpx\np/build/pages/c.clut\n");
  EXPECT_EQ(text("a.d"),
            "p/build/.vistrel-build.json: \\\n  p/pages/a.yaml \\\n  p/pages/c.png \\\n  p/vistrel.yaml\n");
  EXPECT_EQ(shell("cd p/pages && kpg build a.yaml >../../out.txt"), 0);
  EXPECT_EQ(text("out.txt"), "nothing has changed, 3 in ../build/\n");
  EXPECT_EQ(kpg("build p/pages/a.yaml --strip"), 0);
  EXPECT_EQ(out, "p/build/pages/a.kpg\n");
  EXPECT_EQ(kpg("build p/none.yaml"), 1);
  EXPECT_EQ(err, "p/none.yaml: is none of the pages of p/vistrel.yaml; add it there, or say -o PAGE.kpg\n");
  EXPECT_EQ(kpg("build p/none.yaml -o none.kpg"), 0);
}

// Other programs read what is packed.
TEST_F(ProjectCommandsTest, OutputsThatAProjectCantHaveAreRefused) {
  ASSERT_EQ(kpg("new p"), 0) << err;
  writeText("file", "x");
  const std::pair<const char*, const char*> cases[] = {{"build p -o -", "a project is built into a folder"},
                                                       {"build p -o p", "is the project's own folder"},
                                                       {"build p -o p/.", "is the project's own folder"},
                                                       {"pack p -o -", "a pack is a folder or a file"},
                                                       {"pack p -o x.rar", "x.rar: is no kind of archive"},
                                                       {"pack p -o file", "file: is a file; name a folder"},
                                                       {"pack p -o /dev/full", "/dev/full: is a file; name a folder"}};
  for (const auto& [arguments, message] : cases) {
    EXPECT_EQ(kpg(arguments), 1) << arguments;
    EXPECT_NE(err.find(message), std::string::npos) << arguments << "\n" << err;
  }
  EXPECT_FALSE(fs::exists("-") || fs::exists("x.rar") || fs::exists("p/build") || fs::exists("p/main.kpg"));
  EXPECT_EQ(kpg("pack p -o X.ZIP"), 0) << err;
  EXPECT_TRUE(text("X.ZIP").starts_with("PK"));

  writeText("p/vistrel.yaml", "pages: []\n");
  EXPECT_EQ(kpg("build p"), 0) << err;
  EXPECT_NE(out.find(" removed, which the project no longer makes\nnothing made, 0 in p/build/\n"), std::string::npos)
      << out;
}

TEST_F(ProjectCommandsTest, PacksAreTheSameEachTimeAndOthersReadThem) {
  ASSERT_EQ(kpg("new p"), 0) << err;
  ASSERT_EQ(kpg("pack p -o a.zip"), 0) << err;
  EXPECT_NE(out.find("5 files"), std::string::npos) << out;
  ASSERT_EQ(kpg("pack p -o a.tar.gz"), 0) << err;
  ASSERT_EQ(kpg("pack p -o folder"), 0) << err;
  writeText("compare.py", R"(
import pathlib, tarfile, zipfile
folder = {p.name: p.read_bytes() for p in pathlib.Path('folder').iterdir()}
z = zipfile.ZipFile('a.zip')
t = tarfile.open('a.tar.gz')
assert z.testzip() is None
assert {n: z.read(n) for n in z.namelist()} == folder
assert {m.name: t.extractfile(m).read() for m in t} == folder
)");
  EXPECT_EQ(shell("python3 compare.py"), 0);
  ASSERT_EQ(kpg("build p --all"), 0);
  EXPECT_EQ(shell("cp a.zip b.zip && kpg pack p -o a.zip >out.txt && cmp a.zip b.zip"), 0);
  ASSERT_EQ(kpg("pack p"), 0) << err;
  ASSERT_EQ(kpg("pack p"), 0) << err;
  EXPECT_EQ(text("p/p.zip"), text("a.zip"));
  writeText("p/p.zip", "mine");
  EXPECT_EQ(kpg("pack p"), 1);
  EXPECT_EQ(err, "p/p.zip: is there and was not made by kpg; say -o NAME.zip to pack into another file\n");
}

TEST_F(ProjectCommandsTest, AColorShowsAsThePageShowsIt) {
  for (const char* color : {"#101830", "#F0C040", "#808080", "#00FF80"}) {
    ASSERT_TRUE(
        load(std::string("flags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: \"") + color + "\"}\n"));
    char shown[16];
    std::snprintf(shown, sizeof shown, "#%06X", pixel(300, 200));
    EXPECT_EQ(kpg(std::string("color '") + color + "'"), 0);
    EXPECT_NE(out.find(std::string("it shows as          ") + shown), std::string::npos)
        << color << " " << shown << out;
  }
  EXPECT_EQ(kpg("color red"), 1);
}

TEST_F(KpgTest, CheckEndsWithStatusOneForFindings) {
  writeText("p.yaml", "page:\n  up: nowhere\n");
  EXPECT_EQ(kpg("check p.yaml"), 1);
  EXPECT_EQ(out, "p.yaml:2: no-such-name: up of page: there is no widget 'nowhere', and the key leads nowhere\n");
  EXPECT_EQ(kpg("check --json p.yaml"), 1);
  EXPECT_NE(out.find("\"check\": \"no-such-name\""), std::string::npos) << out;
  const std::string finding =
      "p.yaml:2: no-such-name: up of page: there is no widget 'nowhere', and the key leads nowhere\n";
  EXPECT_EQ(kpg("build --check p.yaml -o p.kpg"), 1);
  EXPECT_EQ(err, finding);
  EXPECT_TRUE(std::filesystem::exists("p.kpg"));
  writeText("bad.yaml", "page:\n  bgColor: no color\n");
  EXPECT_EQ(kpg("check bad.yaml p.yaml gone.yaml"), 1);
  EXPECT_EQ(out, finding);
  EXPECT_NE(err.find("bad.yaml:2: bgColor"), std::string::npos) << err;
  EXPECT_NE(err.find("gone.yaml: "), std::string::npos) << err;
  writeText("vistrel.yaml", "pages: [p.yaml]\nallow: [no-such-name]\n");
  EXPECT_EQ(kpg("check"), 0);
  EXPECT_EQ(out, "");
}

}  // namespace
