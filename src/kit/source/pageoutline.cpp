#include "kit/source/pageoutline.h"

#include <set>
#include <string_view>
#include <utility>

#include "engine/format/pagefile.h"
#include "engine/page/frame.h"
#include "engine/widgets/group.h"
#include "kit/errors.h"
#include "kit/source/schema.h"

namespace {

// The first attribute of each name counts, if it has the tag that its reader wants.
std::optional<PageAttribute> find(const PageObject& record, std::string_view name, PageTag tag) {
  for (uint32_t i = 0; i < record.attributeCount(); ++i) {
    const PageAttribute a = pageAttribute(record, i);
    if (!a.name || name != a.name) continue;
    return PageTag(a.tag) == tag ? std::optional(a) : std::nullopt;
  }
  return std::nullopt;
}

std::string textOf(const PageAttribute& a) {
  const char* text;
  return PageTag(a.tag) == PageTag::string && attrString(a, &text) ? text : "";
}

std::string textOf(const PageObject& record, std::string_view name) {
  const auto a = find(record, name, PageTag::string);
  return a ? textOf(*a) : "";
}

bool findTable(const PageObject& record, std::string_view name, PageTable* table) {
  const auto a = find(record, name, PageTag::table);
  return a && attrTable(*a, table);
}

class Outliner {
 public:
  Outliner(const PageData& p, const PagePlaces& pl) : page(p), places(pl) {}

  PageOutline run() {
    const PageObject root = pageRoot(page);
    outline.depth = pageFlags(page) & kPageIs8Bit ? 8 : 16;
    readScripts(root);
    readStyles(root);
    outline.root = widget(root, ObjectKind::root, {}, 1, 0);
    return std::move(outline);
  }

 private:
  // Objects of a damaged page can share their bytes or lie in one another; those of any other each have some bytes of
  // their own.
  bool isSpent() { return ++steps > page.bytes.size(); }

  YamlPlace placeOf(const PageObject& record) const {
    const auto place = places.find(record.offset);
    return place == places.end() ? YamlPlace() : place->second.object;
  }

  void readScripts(const PageObject& root) {
    PageTable table;
    if (!findTable(root, "scripts", &table)) return;
    for (uint32_t i = 0; i < table.count(); ++i)
      if (const char* file = table.string(i)) outline.scripts.emplace_back(file);
  }

  void readStyles(const PageObject& root) {
    PageTable table;
    if (!findTable(root, "textStyles", &table)) return;
    for (uint32_t i = 0; i < table.count(); ++i) {
      const PageObject record = table.object(i);
      const std::string name = textOf(record, "name");
      const auto size = find(record, "size", PageTag::integer);
      outline.styles.push_back(
          {name.empty() ? "default" : name, textOf(record, "font"), size ? int32_t(size->value) : 24, placeOf(record)});
    }
  }

  // `around` is the widget around it, for its corner.
  OutlineWidget widget(const PageObject& record, ObjectKind kind, const OutlineWidget& around, size_t number,
                       int depth) {
    const std::string type = textOf(record, "type");
    OutlineWidget w = object(record, kind, type, around, number);
    ++outline.widgets;
    if (type == "group" && depth < kMaxWidgetDepth) addChildren(record, &w, depth + 1);
    if (type == "textContainer") addLines(record, &w);
    return w;
  }

  OutlineWidget object(const PageObject& record, ObjectKind kind, const std::string& type, const OutlineWidget& around,
                       size_t number) {
    OutlineWidget w;
    w.name = kind == ObjectKind::line ? "" : textOf(record, "name");
    w.label = objectLabel(kind, type, w.name, number);
    w.type = kind == ObjectKind::line ? "line" : isWidgetType(type) ? type : "box";
    w.x = around.x + record.x();
    w.y = around.y + record.y();
    w.width = record.width();
    w.height = record.height();
    w.place = placeOf(record);
    std::set<std::string_view> met;  // the first attribute of a name counts
    for (uint32_t i = 0; i < record.attributeCount(); ++i) {
      const PageAttribute a = pageAttribute(record, i);
      if (isSpent()) break;
      if (a.name && met.insert(a.name).second) addAttribute(a, kind, type, &w);
    }
    return w;
  }

  void addAttribute(const PageAttribute& a, ObjectKind kind, const std::string& type, OutlineWidget* w) {
    if (PageTag(a.tag) == PageTag::script && attributeForm(kind, type, a.name) == AttributeKind::script)
      w->hooks.emplace_back(a.name);
    const NamedThing thing = namedBy(kind, type, a.name);
    const std::string text = textOf(a);
    if (text.empty()) return;
    if (thing == NamedThing::widget) w->links.push_back({a.name, text});
    if (thing == NamedThing::style) w->styles.push_back({a.name, text});
    if (thing == NamedThing::file) w->files.push_back({a.name, text});
  }

  void addChildren(const PageObject& record, OutlineWidget* group, int depth) {
    PageTable table;
    if (!findTable(record, "children", &table)) return;
    for (uint32_t i = 0; i < table.count() && outline.widgets < kMaxPageWidgets && !isSpent(); ++i)
      if (const PageObject child = table.object(i))
        group->children.push_back(widget(child, ObjectKind::widget, *group, i + 1, depth));
  }

  void addLines(const PageObject& record, OutlineWidget* container) {
    PageTable table;
    if (!findTable(record, "children", &table)) return;
    for (uint32_t i = 0; i < table.count() && !isSpent(); ++i)
      if (const PageObject line = table.object(i))
        container->children.push_back(object(line, ObjectKind::line, "", *container, i + 1));
  }

  const PageData& page;
  const PagePlaces& places;
  PageOutline outline;
  size_t steps = 0;
};

}  // namespace

PageOutline outlinePage(const std::string& path, std::vector<uint8_t> bytes, const PagePlaces& places) {
  if (!pageCheck(bytes.data(), bytes.size())) throw KitError(path, "not a page file");
  const PageData page(std::move(bytes));
  return Outliner(page, places).run();
}
