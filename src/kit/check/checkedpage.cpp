#include "kit/check/checkedpage.h"

#include <algorithm>

#include "engine/page/frame.h"
#include "engine/screen/display.h"
#include "engine/widgets/group.h"
#include "kit/source/schema.h"

namespace {

YamlPlace placeIn(const ObjectPlaces& places, std::string_view attribute) {
  for (const ObjectPlaces::Attribute& each : places.attributes)
    if (each.name == attribute) return each.place;
  return places.object;
}

}  // namespace

const PageValue* CheckedWidget::find(std::string_view attribute) const {
  for (const PageEntry& entry : node->attributes)
    if (entry.name == attribute) return &entry.value;
  return nullptr;
}

std::string CheckedWidget::text(std::string_view attribute) const {
  const PageValue* value = find(attribute);
  return value && value->tag == PageTag::string ? value->bytes : "";
}

std::optional<int32_t> CheckedWidget::number(std::string_view attribute) const {
  const PageValue* value = find(attribute);
  return value && value->tag == PageTag::integer ? std::optional(int32_t(value->number)) : std::nullopt;
}

bool CheckedWidget::isTrue(std::string_view attribute) const {
  const PageValue* value = find(attribute);
  return value && value->tag == PageTag::boolean && value->number != 0;
}

YamlPlace CheckedWidget::place(std::string_view attribute) const { return placeIn(node->places, attribute); }

CheckedStyle::CheckedStyle(const PageNode& n) : node(&n) {
  for (const auto& [attribute, value] : n.attributes) {
    const bool isText = value.tag == PageTag::string && !value.bytes.empty(), isInteger = value.tag == PageTag::integer;
    const bool isTrue = value.tag == PageTag::boolean && value.number != 0;
    if (attribute == "name" && isText) name = value.bytes;
    if (attribute == "font" && isText) font = value.bytes;
    if (attribute == "encoding" && isText) encoding = value.bytes;
    if (attribute == "size" && isInteger) size = int32_t(value.number);
    if (attribute == "horScale" && isInteger) horScale = int32_t(value.number);
    if (attribute == "antialias") antialias = isTrue;
    if (attribute == "gridfit") gridfit = isTrue;
  }
}

YamlPlace CheckedStyle::place(std::string_view attribute) const { return placeIn(node->places, attribute); }

CheckedPage::CheckedPage(const PageTree& t) : tree(t) {
  add(tree.root, 0, 1, 0);
  complete.resize(widgets.size());
  for (size_t i = 0; i < widgets.size(); ++i) complete[i] = i;
  std::sort(complete.begin(), complete.end(), [&](size_t a, size_t b) { return widgets[a].ends < widgets[b].ends; });
  for (const size_t i : complete)
    if (!widgets[i].name.empty()) names.emplace(widgets[i].name, i);
  if (const PageValue* table = root().find("textStyles"))
    for (const PageValue& entry : table->table)
      if (!entry.object.empty()) styles.emplace_back(entry.object.front());
  for (size_t i = 0; i < styles.size(); ++i) styleNames.emplace(styles[i].name, i);
}

bool CheckedPage::fillsScreen() const { return root().width >= kScreenWidth && root().height >= kScreenHeight; }

const CheckedStyle* CheckedPage::style(std::string_view name) const {
  const auto found = styleNames.find(name);
  return found == styleNames.end() ? nullptr : &styles[found->second];
}

std::optional<size_t> CheckedPage::named(std::string_view name) const {
  const auto found = names.find(name);
  return found == names.end() ? std::nullopt : std::optional(found->second);
}

void CheckedPage::add(const PageNode& node, size_t around, size_t number, int depth) {
  const size_t at = widgets.size();
  const bool isRoot = at == 0;
  const int32_t x = isRoot ? 0 : widgets[around].x, y = isRoot ? 0 : widgets[around].y;
  CheckedWidget widget{&node, "", "", "", x + node.x, y + node.y, node.width, node.height, around, clock++, 0};
  widget.type = widget.text("type");
  widget.name = widget.text("name");
  widget.label = objectLabel(isRoot ? ObjectKind::root : ObjectKind::widget, widget.type, widget.name, number);
  const PageValue* children = widget.type == "group" && depth < kMaxWidgetDepth ? widget.find("children") : nullptr;
  widgets.push_back(std::move(widget));
  if (children) {
    size_t child = 0;
    for (const PageValue& entry : children->table) {
      ++child;
      if (!entry.object.empty()) add(entry.object.front(), at, child, depth + 1);
    }
  }
  widgets[at].ends = clock++;
}
