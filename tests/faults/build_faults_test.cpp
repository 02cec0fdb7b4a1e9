// Memory that runs out and files that fail while a project is built: it is said, no file is half written, and the next
// build makes what there is to make.
#include <filesystem>
#include <map>

#include "faults/eachfails.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/project/build.h"
#include "support/allocations.h"
#include "support/blockfont.h"
#include "support/temporaryfolder.h"

namespace {

namespace fs = std::filesystem;

constexpr char kProject[] = R"(pages: [menu.yaml, other.yaml]
tables: {all.clut: pictures, standard.clut: standard}
pictures:
  - {files: [art/logo.png, art/mark.gif], table: all.clut}
  - {files: art/alone.png, dither: true, background: "#203040"}
fonts: [blocks.ttf]
scripts: [tools.bob]
)";

constexpr char kMenu[] = R"(flags: 8bit
include: theme.yaml
templates:
  row: {parameters: {text: , line: }, type: text, x: 10, y: '$(line * 20)', width: 90, height: 20, value: $(text)}
page:
  type: group
  width: 720
  height: 480
  colorTable: all.clut
  scripts: [tools.bob]
  textStyles: [{name: plain, font: blocks.ttf, size: 10, color: 9}]
  onLoad: |
    greet("menu");
    widgets.logo.x = $(left);
  children:
    - {type: image, name: logo, width: 4, height: 3, src: art/logo.kpx, onClick: 'topFrame.LoadPage("other.kpg");'}
    - {type: image, src: art/mark.kpx}
    - {type: image, src: ready.gif}
    - {repeat: rows.csv, template: row, with: {text: $(item.name), line: $(index)}}
)";

constexpr char kOther[] =
    "page: {type: group, onLoad: 'x = new Vector();', children: [{type: frame, src: menu.kpg}, {type: image, src: "
    "art/alone.kpx}]}\n";

constexpr std::string_view kGif("GIF89a\1\0\1\0\x80\0\0\xFF\xFF\xFF\0\0\0,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35);
constexpr int64_t kSlack = 64 << 10;  // bytes, where the C library counts

using Contents = std::map<std::string, std::vector<uint8_t>>;

class BuildFaultsTest : public testing::Test {
 protected:
  BuildFaultsTest() {
    fs::create_directory(at("art"));
    save("vistrel.yaml", kProject);
    save("menu.yaml", kMenu);
    save("other.yaml", kOther);
    save("theme.yaml", "constants: {left: 12}\n");
    save("rows.csv", "name\none\ntwo\n");
    save("ready.gif", kGif);
    save("art/mark.gif", kGif);
    const std::vector<uint8_t> font = BlockFontFile();
    save("blocks.ttf", {reinterpret_cast<const char*>(font.data()), font.size()});
    writePng(at("art/alone.png"), 5, 2, std::vector<uint32_t>(10, 0x2040C0));
  }

  std::string at(const std::string& name) const { return (folder.path() / name).string(); }
  void save(const std::string& name, std::string_view text) const { writeFile(at(name), text.data(), text.size()); }

  // The author changes everything but what the constructor has written.
  void author(int version) const {
    const std::string number = std::to_string(version);
    save("tools.bob", "define greet(who) { local i, s = \"\"; for (i = 0; i < " + number + "; i++) s = s + who; }\n");
    save("theme.yaml", "constants: {left: " + number + "}\n");
    writePng(at("art/logo.png"), 4, 3, std::vector<uint32_t>(12, 0x104080u * unsigned(version)));
  }

  void build(size_t threads = 1) const {
    BuildOptions options;
    options.jobs = threads;
    buildProject(readProject(at("vistrel.yaml")), options);
  }

  Contents built() const {
    Contents all;
    for (const auto& entry : fs::recursive_directory_iterator(at("build")))
      if (entry.is_regular_file())
        all[entry.path().lexically_relative(at("build")).generic_string()] = readFile(entry.path().string());
    return all;
  }

  Contents builtOf(int version) const {
    author(version);
    fs::remove_all(at("build"));
    build();
    return built();
  }

  // A second version is built over the first, or where nothing is yet; then the author has made a third.
  template <class Fault>
  void buildWithFaults(uint64_t stride, bool overOlder) {
    const Contents older = builtOf(1), newer = builtOf(2), newest = builtOf(3);
    const auto putBack = [&] {
      author(2);
      fs::remove_all(at("build"));
      if (!overOlder) return;
      fs::create_directories(at("build/art"));
      for (const auto& [name, bytes] : older) writeFile(at("build/" + name), bytes.data(), bytes.size());
    };
    putBack();
    int64_t memory = 0;
    eachFails<Fault>(
        stride,
        [&] {
          try {
            build();
          } catch (const KitError& e) {
            EXPECT_STRNE(e.what(), "");
          }
        },
        [&] {
          if (fs::exists(at("build")))
            for (const auto& [name, bytes] : built()) {
              if (name == ".vistrel-build.json" || name == ".vistrel-build.claims") continue;
              const auto before = older.find(name), after = newer.find(name);
              ASSERT_TRUE((overOlder && before != older.end() && bytes == before->second) ||
                          (after != newer.end() && bytes == after->second))
                  << name << " of " << bytes.size();
            }
          author(3);
          try {
            build();
          } catch (const KitError& e) {
            FAIL() << e.what();
          }
          for (const auto& [name, bytes] : built()) {
            ASSERT_TRUE(newest.contains(name)) << name;
            ASSERT_EQ(std::string(bytes.begin(), bytes.end()),
                      std::string(newest.at(name).begin(), newest.at(name).end()))
                << name;
          }
          ASSERT_EQ(built().size(), newest.size());
          putBack();
          if (memory == 0) memory = allocatedBytes();
          ASSERT_LE(allocatedBytes(), memory + kSlack);
        });
  }

  const TemporaryFolder folder;
};

TEST_F(BuildFaultsTest, MemoryThatRunsOutLeavesTheNextBuildWhole) { buildWithFaults<FailingAllocation>(197, true); }
TEST_F(BuildFaultsTest, MemoryThatRunsOutLeavesTheFirstBuildWhole) { buildWithFaults<FailingAllocation>(397, false); }
TEST_F(BuildFaultsTest, AFileThatFailsLeavesTheNextBuildWhole) { buildWithFaults<FailingFileCall>(5, true); }
TEST_F(BuildFaultsTest, AFileThatFailsLeavesTheFirstBuildWhole) { buildWithFaults<FailingFileCall>(11, false); }

// Which call fails is another one each time; what matters is that no thread is left alone with it.
TEST_F(BuildFaultsTest, ThreadsEndWhateverFailsOnThem) {
  const Contents whole = builtOf(1);
  fs::remove_all(at("build"));
  eachFails<FailingAllocation>(
      797,
      [&] {
        try {
          build(4);
        } catch (const KitError& e) {
          EXPECT_STRNE(e.what(), "");
        }
      },
      [&] {
        ASSERT_NO_THROW(build(4));
        ASSERT_TRUE(built() == whole);
        fs::remove_all(at("build"));
      });
}

TEST_F(BuildFaultsTest, FilesThatBelongTogetherAreAllReplacedOrTheErrorTellsWhich) {
  for (const char* name : {"first", "third", "last"}) save(name, "old");
  std::string error;
  size_t staying = 0, back = 0;
  eachFails<FailingFileCall>(
      1,
      [&] {
        error.clear();
        try {
          OutputFiles files;
          for (const char* name : {"first", "second", "third", "last"}) files.add(at(name), "new", 3);
          files.finish();
        } catch (const KitError& e) {
          error = e.what();
        }
      },
      [&] {
        for (const char* name : {"first", "second", "third", "last"}) {
          const bool isThere = fs::exists(at(name));
          const std::vector<uint8_t> bytes = isThere ? readFile(at(name)) : std::vector<uint8_t>();
          const bool isNew = std::string(bytes.begin(), bytes.end()) == "new";
          const bool isToldToStay = error.find(at(name) + ": was written before that, and stays") != std::string::npos;
          ASSERT_EQ(isNew, error.empty() || isToldToStay) << name << '\n' << error;
          ASSERT_EQ(isThere, isNew || name != std::string("second")) << name;
          staying += isToldToStay;
          back += !error.empty() && !isNew;
          save(name, "old");
        }
        fs::remove(at("second"));
        for (const auto& entry : fs::directory_iterator(folder.path())) ASSERT_NE(entry.path().extension(), ".part");
      });
  EXPECT_GT(staying, 0u);
  EXPECT_GT(back, 0u);
}

}  // namespace
