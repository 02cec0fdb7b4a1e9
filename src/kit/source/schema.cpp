#include "kit/source/schema.h"

namespace {

std::optional<AttributeOwner> ownerOf(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::root: return AttributeOwner::root;
    case ObjectKind::widget: return AttributeOwner::widget;
    case ObjectKind::style: return AttributeOwner::style;
    case ObjectKind::line: return AttributeOwner::line;
    case ObjectKind::other: break;
  }
  return std::nullopt;
}

}  // namespace

AttributeForm attributeForm(ObjectKind kind, std::string_view type, std::string_view name) {
  const auto owner = ownerOf(kind);
  const AttributeRow* row = owner ? attributeRow(*owner, type, name) : nullptr;
  return row ? AttributeForm(row->kind) : std::nullopt;
}

ObjectKind tableObjectKind(AttributeForm form) {
  if (form == AttributeKind::widgets) return ObjectKind::widget;
  if (form == AttributeKind::styles) return ObjectKind::style;
  if (form == AttributeKind::lines) return ObjectKind::line;
  return ObjectKind::other;
}
