// What commands write, and what they leave alone.
#include <fcntl.h>

#include <random>

#include "kit/pictures/png.h"
#include "kpgfixture.h"
#include "support/blockfont.h"

namespace {

namespace fs = std::filesystem;

const char* const kPage = "page: {width: 720, height: 480, scripts: [tools.bob]}\n";

class OutputTest : public KpgTest {
 protected:
  OutputTest() {
    writeText("m.yaml", kPage);
    writeText("tools.bob", "x = 1;\n");
    writeText("c.yaml", "page: {}\n");
    writePng("a.png", 2, 1, {0x102030, 0x405060});
  }

  // Runs the command, which has to fail with the message, and looks whether everything in the folder is as before.
  void expectNothingLost(const std::string& arguments, const std::string& message, const std::string& first = "") {
    const auto before = contents();
    EXPECT_EQ(kpg(arguments, first), 1) << arguments;
    EXPECT_NE(err.find(message), std::string::npos) << arguments << "\n" << err;
    EXPECT_EQ(contents(), before) << arguments;
  }

 private:
  static std::map<std::string, std::string> contents() {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator("."))
      if (entry.is_regular_file() && entry.path() != "./out.txt" && entry.path() != "./err.txt" &&
          !entry.path().filename().string().starts_with(".vistrel-build."))
        files[entry.path().string()] = text(entry.path().string());
    return files;
  }
};

TEST_F(OutputTest, NoCommandWritesOverItsInputs) {
  ASSERT_EQ(kpg("build c.yaml -o c.kpg"), 0) << err;
  ASSERT_EQ(kpg("clut --standard -o a.clut"), 0);
  WriteFile("blocks.ttf", BlockFontFile());
  fs::create_symlink("a.png", "link.png");
  for (const char* arguments :
       {"build m.yaml -o m.yaml", "build m.yaml -o tools.bob", "image a.png -o a.png", "image a.png -o link.png",
        "image a.png -o a.clut --clut a.clut", "clut a.png -o a.png", "font blocks.ttf -o blocks.ttf",
        "compile tools.bob -o tools.bob", "shot c.kpg -o c.kpg", "shot c.kpg -o x.png --log c.kpg",
        "shot m.yaml -o tools.bob", "build m.yaml -o new.kpg --depfile m.yaml",
        "build m.yaml -o new.kpg --depfile tools.bob"})
    expectNothingLost(arguments, "written over");
  expectNothingLost("image a.png -o b.clut", "is the name of the picture's colour table");
  expectNothingLost("shot c.kpg -o x.png --log x.png", "'x.png' can't take two outputs");
}

TEST_F(OutputTest, TheOutputsOfABuildAreFilesOfTheirOwn) {
  for (const char* arguments : {"build c.yaml -o q.kpg --depfile q.kpg", "build c.yaml -o q.kpg --depfile ./q.kpg",
                                "build c.yaml -o - --depfile -", "build m.yaml -o q.kpg --depfile tools.bobo"})
    expectNothingLost(arguments, "can't take two outputs");
  fs::create_directory("p");
  writeText("p/vistrel.yaml", "pages: [a.yaml]\n");
  writeText("p/a.yaml", "page: {}\n");
  for (const char* name : {"vistrel.yaml", "a.yaml", "build/a.kpg", "build/.vistrel-build.json"}) {
    EXPECT_EQ(kpg("build p --depfile p/" + std::string(name)), 1) << name;
    EXPECT_NE(err.find("written over"), std::string::npos) << err;
  }
  EXPECT_EQ(text("p/vistrel.yaml"), "pages: [a.yaml]\n");
  EXPECT_TRUE(text("p/build/a.kpg").starts_with("KPGF"));
}

TEST_F(OutputTest, AFileThatNobodyNamedIsWrittenOverOnlyIfKpgMadeIt) {
  writePng("m.png", 1, 1, {0});
  ASSERT_EQ(kpg("shot m.yaml"), 0) << err;
  ASSERT_EQ(kpg("shot m.yaml"), 0) << err;
  writeText("m.png", "painted by hand");
  expectNothingLost("shot m.yaml", "m.png: is there and was not made by kpg");
  EXPECT_EQ(kpg("shot m.yaml -o m.png"), 0) << err;

  writeText("a.clut", "a table of somebody else");
  expectNothingLost("image a.png -o a.kpx", "a.clut: is there and was not made by kpg");
  fs::remove("a.clut");
  EXPECT_EQ(kpg("image a.png -o a.kpx"), 0) << err;
  EXPECT_EQ(kpg("image a.png -o a.kpx"), 0) << err;

  ASSERT_EQ(kpg("build m.yaml -o m.kpg"), 0) << err;
  writeText("tools.bobo", "precious");
  writeText("tools.bob", "x = 2;\n");
  expectNothingLost("build m.yaml -o m.kpg", "tools.bobo: is there and was not made by kpg");
}

TEST_F(OutputTest, ACompilationThatFailsLeavesNoFile) {
  writeText("bad.bob", "x = 1;\ny = ;\n");
  expectNothingLost("compile bad.bob -o bad.bobo", "bad.bob:2: Syntax error - Expecting a primary expression\n");
  expectNothingLost("compile none.bob -o none.bobo", "none.bob: No such file or directory");
  expectNothingLost("build m.yaml -o none/m.kpg", "none/m.kpg: can't be written: No such file or directory");
}

TEST_F(OutputTest, ADashIsTheStandardOutput) {
  ASSERT_EQ(kpg("build c.yaml -o c.kpg"), 0) << err;
  WriteFile("blocks.ttf", BlockFontFile());
  const std::pair<const char*, const char*> cases[] = {{"build c.yaml", "KPGF"},
                                                       {"shot c.kpg", "\x89PNG"},
                                                       {"clut --standard", ""},
                                                       {"compile tools.bob", "BOBO"},
                                                       {"font blocks.ttf", "\x89PNG"}};
  for (const auto& [command, start] : cases) {
    ASSERT_EQ(kpg(std::string(command) + " -o file"), 0) << command << err;
    for (const char* name : {" -o -", " --out -", " -o /dev/stdout"}) {
      ASSERT_EQ(kpg(std::string(command) + name), 0) << command << err;
      EXPECT_TRUE(out == text("file")) << command << name;
      EXPECT_TRUE(out.starts_with(start)) << command << name;
    }
  }
  EXPECT_FALSE(fs::exists("-"));
  expectNothingLost("build m.yaml -o -", "script files go beside the page");
  expectNothingLost("image a.png -o -", "colour table goes beside the picture");
  expectNothingLost("shot c.kpg -o - --log -", "the standard output can't take two outputs");
  // What a shell has opened to append to is appended to.
  EXPECT_EQ(shell("echo first >all; kpg compile tools.bob -o /dev/stdout >>all"), 0);
  EXPECT_TRUE(text("all").starts_with("first\nBOBO"));
}

TEST_F(OutputTest, WhatCannotBePrintedIsAnError) {
  ASSERT_EQ(kpg("build c.yaml -o c.kpg"), 0) << err;
  for (const char* command : {"dump c.kpg", "eval '1;'", "--help", "completion bash", "image --list a.png",
                              "compile tools.bob -o -", "shot c.kpg -o x.png --log /dev/full --eval '1;'",
                              "decode tools.bob", "shot c.kpg -o x.png --log - --eval '1;'"}) {
    EXPECT_EQ(shell("kpg " + std::string(command) + " >/dev/full 2>err.txt"), 1) << command;
    EXPECT_NE(text("err.txt").find("can't be written: No space left on device"), std::string::npos) << text("err.txt");
  }
  // Nothing is printed, so nothing fails; and no file gets the place of the closed stream.
  EXPECT_EQ(shell("kpg build c.yaml -o d.kpg >&-"), 0);
  EXPECT_EQ(text("d.kpg"), text("c.kpg"));
}

// No file may have more than 8 blocks of 512 bytes, and each of these is to have more.
TEST_F(OutputTest, ADiskThatIsFullLeavesWhatWasThere) {
  std::vector<uint32_t> noise(100 * 100);
  std::mt19937 random(1);
  for (uint32_t& pixel : noise) pixel = random() & 0xFFFFFF;
  fs::create_directory("p");
  writePng("p/noise.png", 100, 100, std::vector<uint32_t>(100 * 100));
  std::string page =
      "page:\n  type: group\n  width: 720\n  height: 480\n  children:\n    - {type: image, src: noise.kpx}\n";
  writeText("p/vistrel.yaml", "pages: [a.yaml]\npictures: [noise.png]\nscripts: [s.bob]\n");
  writeText("p/a.yaml", page);
  writeText("p/s.bob", "x = 1;\n");
  ASSERT_EQ(kpg("build p"), 0) << err;
  std::string script;
  for (int i = 0; i < 400; ++i) {
    page += "    - {type: text, name: words" + std::to_string(i) + ", value: words}\n";
    script += "define f" + std::to_string(i) + "() { return 1; }\n";
  }
  writePng("p/noise.png", 100, 100, noise);
  writeText("p/a.yaml", page);
  writeText("p/s.bob", script);
  for (const char* name : {"a.kpg", "n.kpx", "n.clut", "x.png", "s.bobo"}) writeText(name, "before");
  for (const char* arguments :
       {"build p/a.yaml -o a.kpg --lines", "image p/noise.png -o n.kpx", "shot p/a.yaml -o x.png",
        "compile p/s.bob -o s.bobo", "build p --jobs 3", "pack p -o p.zip", "film p/a.yaml -o f.gif --key Down"})
    expectNothingLost(arguments, "can't be written: File too large", "trap '' XFSZ; ulimit -f 8; ");
  EXPECT_EQ(kpg("build p"), 0) << err;
}

TEST_F(OutputTest, AReaderThatLeavesEndsTheProgramAfterThePictureIsSaved) {
  EXPECT_EQ(shell("{ kpg shot m.yaml -o x.png --log - 2>err.txt --eval "
                  "'for (i = 0; i < 20000; ++i) stdout.Display(i, \"\\n\");'; echo $? >status; } | head -1 >first"),
            0);
  EXPECT_EQ(text("first"), "0\n");
  EXPECT_EQ(text("status"), "1\n");
  EXPECT_EQ(text("err.txt"), "standard output: can't be written: Broken pipe\n");
  EXPECT_TRUE(isKitPng(readFile("x.png")));
  writeText("endless.bob", "while (true) stdout.Display(\"again\\n\");\n");
  EXPECT_EQ(
      shell("timeout 20 sh -c '{ \"$0\" run endless.bob 2>err.txt; echo $? >status; } | head -1 >first' " KPG_PROGRAM),
      0);
  EXPECT_EQ(text("status"), "1\n");
}

TEST_F(OutputTest, ScriptsAreFormattedInPlaceOnlyWhenAsked) {
  const std::string untidy = "// Adds.\ndefine  add(a,b){ return a+b; }\n",
                    tidy = "// Adds.\ndefine add(a, b) { return a + b; }\n";
  writeText("a.bob", untidy);
  writeText("b.bob", tidy);
  EXPECT_EQ(kpg("format a.bob"), 0);
  EXPECT_EQ(out, tidy);
  EXPECT_EQ(shell("kpg format <a.bob >c.bob"), 0);
  EXPECT_EQ(text("c.bob"), tidy);
  EXPECT_EQ(text("a.bob"), untidy);
  EXPECT_EQ(kpg("format --check a.bob b.bob"), 1);
  EXPECT_EQ(out, "a.bob\n");
  writeText("bad.bob", "define (;\n");
  EXPECT_EQ(kpg("format -w bad.bob a.bob b.bob"), 1);
  EXPECT_EQ(out, "a.bob written\n");
  EXPECT_TRUE(err.starts_with("bad.bob:1: ")) << err;
  EXPECT_EQ(text("a.bob"), tidy);
  EXPECT_EQ(text("bad.bob"), "define (;\n");
  EXPECT_EQ(kpg("format --check a.bob b.bob"), 0);
}

}  // namespace
