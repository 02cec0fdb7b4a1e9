// What else happens to files: the disk is full, a file changes while it is read, and others write where pages are
// shown.
#include <sys/resource.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "gfx/foundation/hsdebug.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/project/build.h"
#include "kit/project/livefiles.h"
#include "kit/run/pagerun.h"
#include "support/blockfont.h"
#include "support/pagefixture.h"

namespace {

namespace fs = std::filesystem;

class DiskFaultsTest : public PageTest {
 protected:
  DiskFaultsTest() {
    const std::vector<uint8_t> font = BlockFontFile();
    writeText("blocks.ttf", {font.begin(), font.end()});
  }
};

// While it lives, a file takes this many bytes and no more.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : signal(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit now{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &now);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, signal);
  }

 private:
  rlimit before{};
  void (*signal)(int);
};

constexpr char kTexts[] = R"(flags: 16bit
page:
  type: group
  width: 720
  height: 480
  bgColor: 0x10808000
  textStyles: [{name: plain, font: blocks.ttf, size: 20, color: 0xEB808000}]
  children: [{type: text, name: words, x: 100, y: 100, width: 300, height: 40, textStyle: plain, value: a}]
)";

TEST_F(DiskFaultsTest, AScriptThatFillsTheDiskHearsOfItAndThePageGoesOn) {
  ASSERT_TRUE(load(kTexts));
  std::string source;
  for (int i = 0; i < 150; ++i) source += "define f" + std::to_string(i) + "() { return 1; }\n";
  writeText("big.bob", source);
  {
    const FullDisk full(4096);
    desktop.typeLine("f = new File(\"out.txt\", \"w\");");
    desktop.typeLine("for (i = 0; i < 20000; i++) f.Display(\"0123456789\");");
    desktop.log.clear();
    desktop.typeLine("f.Close();");
    EXPECT_EQ(desktop.log, "--> nil\n");
    desktop.typeLine("CompileFile(\"big.bob\", \"big.bobo\");");
    desktop.typeLine("widgets.words.value = \"ab\";");
  }
  EXPECT_EQ(fs::file_size("out.txt"), 4096u);
  desktop.typeLine("CompileFile(\"big.bob\", \"big.bobo\");");
  desktop.typeLine("LoadObjectFile(\"big.bobo\");");
  desktop.log.clear();
  desktop.typeLine("f149();");
  desktop.typeLine("widgets.words.value;");
  EXPECT_EQ(desktop.log, "--> 1\n--> \"ab\"\n");
}

TEST_F(DiskFaultsTest, AFontThatIsReplacedChangesNothingUnderARunningPage) {
  const auto showB = [&] {
    desktop.typeLine("widgets.words.value = \"bb b\";");
    desktop.settle();
    return desktop.window();
  };
  ASSERT_TRUE(load(kTexts));
  const auto expected = showB();
  const std::vector<uint8_t> font = readFile("blocks.ttf");
  SfntBuilder other;
  other.AddContours({RectContour(0, 0, 100, 100)}, 600);
  const auto otherFont = other.Build();
  // Renamed over, emptied in its place, and gone.
  const std::function<void()> changes[] = {[&] { writeFile("blocks.ttf", otherFont.data(), otherFont.size()); },
                                           [] { fs::resize_file("blocks.ttf", 100); },
                                           [] { fs::remove("blocks.ttf"); }};
  for (const auto& change : changes) {
    writeFile("blocks.ttf", font.data(), font.size());
    ASSERT_TRUE(load(kTexts));  // as "a", so that the other glyphs are made later
    change();
    EXPECT_TRUE(showB() == expected);
  }
  writeFile("blocks.ttf", font.data(), font.size());
  ASSERT_TRUE(load(kTexts));
  EXPECT_TRUE(showB() == expected);
}

// An editor that writes in place, byte after byte, while pages are loaded and built: whatever is read, nothing breaks,
// and when the files are whole again, so is the page.
TEST_F(DiskFaultsTest, FilesThatShrinkAndGrowWhileTheyAreRead) {
  const hsHaltProc before = hsSetHaltProc([] { ADD_FAILURE() << hsReportText(); });
  writePng("art.png", 20, 20, std::vector<uint32_t>(400, 0x123456));
  writeText("vistrel.yaml", "pages: [menu.yaml]\npictures: [art.png]\nfonts: [blocks.ttf]\noutput: built\n");
  writeText("menu.yaml", std::string(kTexts) + "  onLoad: 'widgets.words.value = \"abab\";'\n  background: art.kpx\n");
  buildProject(readProject("vistrel.yaml"), {});
  const auto show = [&] {
    const bool loaded = loadFile("built/menu.kpg");
    desktop.log.clear();
    return loaded ? desktop.window() : std::vector<uint32_t>();
  };
  const auto expected = show();
  std::map<std::string, std::vector<uint8_t>> files;
  for (const char* name :
       {"built/menu.kpg", "built/art.kpx", "built/art.clut", "built/blocks.ttf", "menu.yaml", "art.png", "blocks.ttf"})
    files[name] = readFile(name);
  std::atomic<bool> isOver = false;
  std::thread editor([&] {
    for (size_t round = 1; !isOver; ++round)
      for (const auto& [name, bytes] : files) {
        std::ofstream out(name, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size() * (round % 7) / 7)).flush();
        out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        out.close();
        fs::resize_file(name, bytes.size());
      }
  });
  const Project project = readProject("vistrel.yaml");
  for (int i = 0; i < 300; ++i) {
    show();
    desktop.typeLine("topFrame.UnloadPage();");
    if (i % 10 != 0) continue;
    Project elsewhere = project;
    elsewhere.output = fs::absolute("other").string();
    try {
      BuildOptions options;
      options.all = true;
      buildProject(elsewhere, options);
    } catch (const KitError& e) {
      EXPECT_STRNE(e.what(), "");
    }
  }
  isOver = true;
  editor.join();
  for (const auto& [name, bytes] : files) writeFile(name, bytes.data(), bytes.size());
  EXPECT_TRUE(show() == expected);
  hsSetHaltProc(before);
}

// Builds replace files by whole ones, so that whoever loads a page has one build's or the other's. A studio makes its
// own of the sources.
TEST_F(DiskFaultsTest, PlayersAndStudiosShareAFolderThatIsBuiltMeanwhile) {
  constexpr int kPlayers = 2, kStudios = 10, kBuilds = 40;
  const auto author = [&](int version) {
    const std::string color = version == 0 ? "0xEB808000" : "0x40808000";
    writeText("menu.yaml",
              "flags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: " + color +
                  ", textStyles: [{name: plain, font: blocks.ttf, size: 20, color: 0x80808000}], scripts: [tools.bob], "
                  "onLoad: 'widgets.words.value = greet();', children: [{type: text, name: words, textStyle: plain, x: "
                  "10, y: 10, width: 90, height: 30}]}\n");
    writeText("tools.bob", "define greet() { return \"ab\"; }\n// " + std::string(size_t(version) * 100, '.') + "\n");
  };
  writeText("vistrel.yaml", "pages: [menu.yaml]\nfonts: [blocks.ttf]\noutput: built\n");
  const Project project = readProject("vistrel.yaml");
  const std::string page = fs::absolute("built/menu.kpg").string();
  std::vector<std::vector<uint32_t>> pictures;
  for (const int version : {1, 0}) {
    author(version);
    buildProject(project, {});
    ASSERT_TRUE(loadFile("built/menu.kpg")) << log();
    pictures.push_back(desktop.window());
  }
  ASSERT_FALSE(pictures[0] == pictures[1]);

  std::atomic<bool> isOver = false;
  std::atomic<size_t> loads = 0, others = 0;
  std::vector<std::thread> players;
  for (int i = 0; i < kPlayers; ++i)
    players.emplace_back([&] {
      HeadlessDesktop player;
      player.start();
      do {
        if (!player.shell.loadPage(page)) ++others;
        player.settle();
        others += std::find(pictures.begin(), pictures.end(), player.window()) == pictures.end();
        ++loads;
      } while (!isOver);
    });
  for (int i = 0; i < kStudios; ++i)
    players.emplace_back([&, source = fs::absolute("menu.yaml").string()] {
      LiveFiles files(source);
      do {
        files.begin();
        PageRunOptions options;
        options.files = &files;
        PageRun run(options);
        others += !run.load(source) || std::find(pictures.begin(), pictures.end(), run.take().pixels) == pictures.end();
        ++loads;
      } while (!isOver);
    });
  for (int i = 0; i < kBuilds; ++i) {
    author(i % 2);
    EXPECT_NO_THROW(buildProject(project, {}));
  }
  isOver = true;
  for (std::thread& player : players) player.join();
  EXPECT_EQ(others, 0u) << "of " << loads;
}

}  // namespace
