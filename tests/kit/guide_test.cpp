// The guide's tables of attributes say what the engine's table says.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

#include "engine/format/attributes.h"

namespace {

std::string tableOf(AttributeOwner owner, std::string_view type) {
  std::string table = "| Attribute | Value | Default | Meaning |\n|---|---|---|---|\n";
  for (const AttributeRow& row : attributeRows()) {
    if (row.owner != owner || row.type != type) continue;
    table += "| `" + std::string(row.name) + "` |";
    for (const std::string_view cell : {row.value, row.byDefault, row.help})
      table += (cell.empty() ? "" : " ") + std::string(cell) + " |";
    table += "\n";
  }
  return table + "\n";
}

TEST(Guide, HasATableForEachKindOfObject) {
  std::ifstream in(VISTREL_GUIDE);
  const std::string guide{std::istreambuf_iterator<char>(in), {}};
  std::set<std::pair<AttributeOwner, std::string_view>> objects;
  for (const AttributeRow& row : attributeRows()) objects.emplace(row.owner, row.type);
  for (const auto& [owner, type] : objects) {
    const std::string table = tableOf(owner, type);
    EXPECT_NE(guide.find(table), std::string::npos) << "docs/authoring.md needs this table:\n" << table;
  }
}

}  // namespace
