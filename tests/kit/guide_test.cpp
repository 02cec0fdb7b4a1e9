// The guide's tables of attributes say what the engine's table says.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "engine/format/attributes.h"
#include "kit/check/finding.h"
#include "kit/expand/directions.h"
#include "kit/project/project.h"
#include "support/pagefixture.h"

namespace {

template <class Rows, class IsIn>
std::string tableOf(const std::string& what, const Rows& rows, const IsIn& isIn) {
  std::string table = "| " + what + " | Value | Default | Meaning |\n|---|---|---|---|\n";
  for (const auto& row : rows) {
    if (!isIn(row)) continue;
    table += "| `" + std::string(row.name) + "` |";
    for (const std::string_view cell : {row.value, row.byDefault, row.help})
      table += (cell.empty() ? "" : " ") + std::string(cell) + " |";
    table += "\n";
  }
  return table + "\n";
}

std::string textOf(const char* file) {
  std::ifstream in(file);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string guideText() { return textOf(VISTREL_GUIDE); }

TEST(Guide, HasATableForEachKindOfObject) {
  const std::string guide = guideText();
  std::set<std::pair<AttributeOwner, std::string_view>> objects;
  for (const AttributeRow& row : attributeRows()) objects.emplace(row.owner, row.type);
  for (const auto& [owner, type] : objects) {
    const std::string table = tableOf("Attribute", attributeRows(), [o = owner, t = type](const AttributeRow& row) {
      return row.owner == o && row.type == t;
    });
    EXPECT_NE(guide.find(table), std::string::npos) << "docs/authoring.md needs this table:\n" << table;
  }
}

TEST(Guide, HasATableOfLayouts) {
  const std::string table = tableOf(
      "Key", directions(), [](const SourceDirection& direction) { return direction.owner == DirectionOwner::group; });
  EXPECT_NE(guideText().find(table), std::string::npos) << "docs/authoring.md needs this table:\n" << table;
}

TEST(Guide, HasATableOfTheChecks) {
  std::string table = "| Check | What it finds |\n|---|---|\n";
  for (const CheckKind& kind : checkKinds())
    table += "| `" + std::string(kind.name) + "` | " + std::string(kind.about) + " |\n";
  EXPECT_NE(guideText().find(table + "\n"), std::string::npos) << "docs/authoring.md needs this table:\n" << table;
}

// At the trap that it finds, too.
TEST(Guide, NamesEachCheckWhereItWarns) {
  const std::string text = guideText() + textOf(VISTREL_BOB_MANUAL);
  for (const CheckKind& kind : checkKinds()) {
    const std::string name = "`" + std::string(kind.name) + "`";
    size_t mentions = 0;
    for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) ++mentions;
    if (kind.name != "unknown-allow") {
      EXPECT_GT(mentions, 1u) << name;
    }
  }
}

class GuideProject : public PageTest {};

TEST_F(GuideProject, IsReadAsItSays) {
  const std::string guide = guideText();
  const size_t begin = guide.find("```yaml\npages:") + 8, end = guide.find("```", begin);
  std::filesystem::create_directory("art");
  writeText("art/dawn.png", "");
  writeText(kProjectFileName, guide.substr(begin, end - begin));
  const Project project = readProject(kProjectFileName);
  EXPECT_EQ(project.pages.size(), 2u);
  EXPECT_EQ(project.tables.size(), 3u);
  EXPECT_EQ(project.pictures.size(), 2u);
  EXPECT_EQ(project.fonts.size(), 3u);
}

// A key that is unknown is answered by all that are known.
TEST_F(GuideProject, HasALineForEachKey) {
  writeText(kProjectFileName, "zzzzzzzz: 1\n");
  std::string known;
  try {
    readProject(kProjectFileName);
  } catch (const KitError& e) {
    known = e.what();
  }
  const std::string guide = guideText();
  std::istringstream words(known.substr(known.rfind("it has ") + 7));
  int count = 0;
  for (std::string word; words >> word;) {
    if (word == "and") continue;
    if (word.back() == ',') word.pop_back();
    EXPECT_NE(guide.find("\n| `" + word + "` |"), std::string::npos) << word;
    ++count;
  }
  EXPECT_GE(count, 9);
}

}  // namespace
