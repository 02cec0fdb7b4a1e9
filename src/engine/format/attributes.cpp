#include "engine/format/attributes.h"

namespace {

const AttributeRow* find(AttributeOwner owner, std::string_view type, std::string_view name) {
  for (const AttributeRow& row : attributeRows())
    if (row.owner == owner && row.type == type && row.name == name) return &row;
  return nullptr;
}

}  // namespace

const AttributeRow* attributeRow(AttributeOwner owner, std::string_view type, std::string_view name) {
  using enum AttributeOwner;
  if (owner == style || owner == line) return find(owner, "", name);
  if (owner == root)
    if (const AttributeRow* row = find(root, "", name)) return row;
  if (const AttributeRow* row = find(widget, type, name)) return row;  // a type may say more of what all have
  return find(widget, "", name);
}
