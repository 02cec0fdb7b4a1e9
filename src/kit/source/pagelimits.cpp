#include "kit/source/pagelimits.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "engine/format/pagefile.h"
#include "engine/widgets/group.h"
#include "kit/source/pagecut.h"

namespace {

// Counts widgets as the engine makes them, until there are too many.
class WidgetCount {
 public:
  explicit WidgetCount(uint32_t most) : most(most) {}

  void add(const PageObject& record, int depth) {
    const char* type;
    PageTable children;
    if (++count > most || depth >= kMaxWidgetDepth) return;
    if (!readIf(record, "type", PageTag::string, &type) || std::strcmp(type, "group") != 0) return;
    if (!readIf(record, "children", PageTag::table, &children)) return;
    for (uint32_t i = 0; i < children.count() && count <= most; ++i)
      if (const PageObject child = children.object(i)) add(child, depth + 1);
  }

  uint32_t count = 0;

 private:
  // Reads an attribute that has that tag; any other would be reported.
  static bool readIf(const PageObject& record, StringAttribute name, PageTag tag, const char** text) {
    const auto a = attrFind(record, name);
    return a && PageTag(a->tag) == tag && attrString(*a, text);
  }
  static bool readIf(const PageObject& record, TableAttribute name, PageTag tag, PageTable* table) {
    const auto a = attrFind(record, name);
    return a && PageTag(a->tag) == tag && attrTable(*a, table);
  }

  const uint32_t most;
};

}  // namespace

bool pageHasTooManyWidgets(std::vector<uint8_t> bytes, uint32_t most) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (!text.starts_with(kPageMagic)) return false;  // the check would log it
  if (!pageCheck(bytes.data(), bytes.size())) return false;
  const PageData page(std::move(bytes));
  WidgetCount widgets(most);
  widgets.add(pageRoot(page), 0);
  return widgets.count > most;
}

std::vector<KitMessage> pageProblems(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::vector<KitMessage> problems;
  if (pageIsCutShort(bytes)) problems.push_back({path, 0, kPageIsCutShort});
  if (pageHasTooManyWidgets(bytes)) problems.push_back({path, 0, kPageHasTooManyWidgets});
  return problems;
}
