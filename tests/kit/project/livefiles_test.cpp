// Pages that are made in memory as the player asks for their files.
#include "kit/project/livefiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/project/build.h"
#include "kit/run/pagerun.h"
#include "kit/source/pagebuild.h"
#include "support/temporaryfolder.h"

namespace {

namespace fs = std::filesystem;

class LiveFilesTest : public testing::Test {
 protected:
  std::string at(const std::string& name) const { return (folder.path() / name).string(); }
  void write(const std::string& name, const std::string& text) {
    fs::create_directories((folder.path() / name).parent_path());
    writeFile(at(name), text.data(), text.size());
  }
  void paint(const std::string& name, uint32_t color) {
    fs::create_directories((folder.path() / name).parent_path());
    writePng(at(name), 8, 8, std::vector<uint32_t>(64, color));
  }
  // As if it had been saved some time before the other.
  void saveBefore(const std::string& name, const std::string& other) {
    fs::last_write_time(at(name), fs::last_write_time(at(other)) - std::chrono::seconds(5));
  }

  // The pixel at 4, 4 of a page that is opened, after a key.
  uint32_t pixel(LiveFiles& files, const std::string& page, const std::string& key = "") {
    files.begin();
    PageRunOptions options;
    options.files = &files;
    options.lines = true;
    PageRun run(options);
    EXPECT_TRUE(run.load(at(page))) << run.log();
    if (!key.empty()) run.act({PageAction::key, key});
    log = run.logWithPlaces();
    read = run.dependencies();
    return run.take().pixels[4 * 720 + 4];
  }
  std::string errors(LiveFiles& files, const std::string& page) {
    try {
      pixel(files, page);
      return "";
    } catch (const KitError& e) {
      return e.what();
    }
  }
  bool dependsOn(const std::string& name) const {
    const fs::path wanted = fs::path(at(name)).lexically_normal();
    return std::any_of(read.begin(), read.end(),
                       [&](const std::string& file) { return fs::absolute(file).lexically_normal() == wanted; });
  }
  // All that lies in the folder, but the sources.
  size_t filesThere() const {
    size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path())) count += entry.is_regular_file();
    return count;
  }

  const TemporaryFolder folder;
  std::string log;
  std::vector<std::string> read;
};

constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF;

// As a 16-bit page shows them.
bool isRed(uint32_t p) { return (p >> 16) > 0xC0 && (p & 0xFFFF) < 0x8000; }
bool isGreen(uint32_t p) { return (p >> 8 & 0xFF) > 0xC0 && (p >> 16) < 0x80; }
bool isBlue(uint32_t p) { return (p & 0xFF) > 0xC0 && (p >> 16) < 0x80; }

std::string pageWith(const std::string& picture, const std::string& more = "") {
  return "flags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  start: art\n" + more +
         "  children:\n  - {type: image, name: art, width: 8, height: 8, src: " + picture +
         ", highlightSrc: " + picture + ", onClick: 'topFrame.LoadPage(\"next.kpg\");'}\n";
}

TEST_F(LiveFilesTest, AProjectIsMadeInMemory) {
  write("vistrel.yaml",
        "pages: [main.yaml, next.yaml]\n"
        "tables: {common.clut: {}}\n"
        "pictures: [{files: art/*.png, table: common.clut}]\n");
  write("main.yaml", pageWith("art/one.kpx", "  scripts: [tools.bob]\n  onLoad: greet();\n"));
  write("next.yaml", pageWith("art/two.kpx"));
  write("tools.bob", "define greet() {\n  stdout.Display(\"hello\\n\");\n}\n");
  paint("art/one.png", kRed);
  paint("art/two.png", kBlue);
  const size_t sources = filesThere();

  LiveFiles files(at("main.yaml"));
  EXPECT_TRUE(isRed(pixel(files, "main.yaml")));
  EXPECT_NE(log.find("hello"), std::string::npos) << log;
  EXPECT_TRUE(dependsOn("art/one.png") && dependsOn("art/two.png")) << "one table for both";
  EXPECT_TRUE(dependsOn("main.yaml") && dependsOn("tools.bob") && dependsOn("vistrel.yaml"));
  EXPECT_FALSE(dependsOn("next.yaml"));
  EXPECT_TRUE(isBlue(pixel(files, "main.yaml", "Select"))) << "the next page is made when it is loaded";
  EXPECT_TRUE(dependsOn("next.yaml"));
  EXPECT_EQ(filesThere(), sources) << "nothing is written";

  // What changes is made anew, and so is what is made of it.
  paint("art/one.png", kGreen);
  EXPECT_TRUE(isGreen(pixel(files, "main.yaml")));
  write("tools.bob", "define greet() {\n  nosuch;\n}\n");
  pixel(files, "main.yaml");
  EXPECT_NE(log.find("tools.bob:2"), std::string::npos) << log;

  // Files of an earlier build don't count.
  write("tools.bob", "define greet() {}\n");
  buildProject(readProject(at("vistrel.yaml")), {});
  paint("art/one.png", kBlue);
  EXPECT_TRUE(isBlue(pixel(files, "main.yaml")));
}

TEST_F(LiveFilesTest, WhatIsWrongIsSaidAndWaitedFor) {
  write("vistrel.yaml", "pages: [main.yaml]\npictures: [art/*.png]\n");
  write("main.yaml", pageWith("art/one.kpx"));
  write("art/one.png", "no picture");
  LiveFiles files(at("main.yaml"));
  EXPECT_NE(errors(files, "main.yaml").find("one.png"), std::string::npos);
  paint("art/one.png", kRed);
  EXPECT_TRUE(isRed(pixel(files, "main.yaml")));

  write("main.yaml", "page: {type: gruop}\n");
  const std::string error = errors(files, "main.yaml");
  EXPECT_NE(error.find("main.yaml:1: "), std::string::npos);
  EXPECT_EQ(error.find('\n'), std::string::npos) << "once: " << error;
  write("vistrel.yaml", "pages: [main.yaml\n");
  EXPECT_NE(errors(files, "main.yaml").find("vistrel.yaml:"), std::string::npos);
  write("vistrel.yaml", "pages: [main.yaml]\npictures: [art/*.png]\n");
  write("main.yaml", pageWith("art/one.kpx"));
  EXPECT_TRUE(isRed(pixel(files, "main.yaml")));
}

TEST_F(LiveFilesTest, WhatTheProjectSaysOfAPictureCounts) {
  const std::string project = "pages: [main.yaml]\npictures: [{files: art/*.png, background: '%'}]\n";
  const auto with = [&](const std::string& color) {
    std::string text = project;
    return text.replace(text.find('%'), 1, color);
  };
  write("vistrel.yaml", with("#FF0000"));
  write("main.yaml", pageWith("art/one.kpx"));
  // An empty picture shows its background.
  const fs::path art = fs::path(at("art/one.png"));
  fs::create_directories(art.parent_path());
  const uint8_t kClear[] = {0x89, 'P',  'N',  'G',  0x0D, 0x0A, 0x1A, 0x0A, 0,    0,    0,    13,   'I',  'H',
                            'D',  'R',  0,    0,    0,    1,    0,    0,    0,    1,    8,    6,    0,    0,
                            0,    0x1F, 0x15, 0xC4, 0x89, 0,    0,    0,    11,   'I',  'D',  'A',  'T',  0x78,
                            0xDA, 0x63, 0x60, 0,    2,    0,    0,    5,    0,    1,    0xE9, 0xFA, 0xDC, 0xD8,
                            0,    0,    0,    0,    'I',  'E',  'N',  'D',  0xAE, 0x42, 0x60, 0x82};
  writeFile(art.string(), kClear, sizeof kClear);
  LiveFiles files(at("main.yaml"));
  const auto bytes = [&] {
    files.begin();
    const MadeFile* file = files.find(fs::path(at("build/art/one.kpx")).lexically_normal());
    return file ? file->bytes : std::string();
  };
  const std::string red = bytes();
  ASSERT_FALSE(red.empty()) << files.errors().front().whole();
  const auto table = [&] { return files.find(fs::path(at("build/art/one.clut")).lexically_normal())->bytes; };
  const std::string redTable = table();
  EXPECT_EQ(bytes(), red);
  write("vistrel.yaml", with("#0000FF"));
  bytes();
  EXPECT_NE(table(), redTable);
}

TEST_F(LiveFilesTest, SourcesThatDontExistYetAreWaitedFor) {
  for (const bool inProject : {false, true}) {
    if (inProject) write("vistrel.yaml", "pages: [main.yaml]\npictures: [art/*.png]\n");
    write("main.yaml", pageWith("art/one.kpx"));
    paint("art/other.png", kBlue);
    fs::remove(at("art/one.png"));
    LiveFiles files(at("main.yaml"));
    pixel(files, "main.yaml");
    EXPECT_TRUE(dependsOn("art/one.png")) << inProject;
    paint("art/one.png", kRed);
    EXPECT_TRUE(isRed(pixel(files, "main.yaml"))) << inProject;
  }
}

TEST_F(LiveFilesTest, WithoutAProjectTheNewerOfTwoCounts) {
  write("main.yaml", pageWith("one.kpx"));
  write("next.yaml", pageWith("two.kpx"));
  paint("one.png", kRed);
  paint("two.png", kBlue);
  const size_t sources = filesThere();
  LiveFiles files(at("main.yaml"));
  EXPECT_TRUE(isRed(pixel(files, "main.yaml")));
  EXPECT_TRUE(isBlue(pixel(files, "main.yaml", "Select")));
  EXPECT_EQ(filesThere(), sources);

  // A picture that was made with other options stays until its source is saved again.
  fs::copy_file(at("two.png"), at("made.png"));
  buildPage(at("next.yaml"), at("next.kpg"));
  write("next.yaml", pageWith("one.kpx"));
  saveBefore("next.yaml", "next.kpg");
  EXPECT_TRUE(isBlue(pixel(files, "main.yaml", "Select")));
  saveBefore("next.kpg", "next.yaml");
  EXPECT_TRUE(isRed(pixel(files, "main.yaml", "Select")));
}

TEST_F(LiveFilesTest, ACompiledPageIsTakenAsItIs) {
  write("main.yaml", pageWith("one.kpx"));
  paint("one.png", kRed);
  buildPage(at("main.yaml"), at("main.kpg"));
  write("main.yaml", "page: {}\n");
  LiveFiles files(at("main.kpg"));
  saveBefore("main.yaml", "main.kpg");
  EXPECT_TRUE(isRed(pixel(files, "main.kpg")));
}

}  // namespace
