#include "engine/text/textstyle.h"

#include <cstring>
#include <new>

#include "gfx/foundation/hstypes.h"
#include "gfx/pixel/hsgattribute.h"
#include "host/host.h"

namespace {

void setBit(const PageAttribute& attribute, uint32_t bit, TextStyle* style) {
  bool value = false;
  if (attrBool(attribute, &value) && value) style->styleFlags |= bit;
}

uint16_t encodingNamed(const char* name) {
  if (std::strcmp(name, "ascii") == 0) return hsGAttribute::kSingleBytes;
  return std::strcmp(name, "utf16") == 0 ? hsGAttribute::kUTF16 : hsGAttribute::kUTF8;
}

// Each sets what its attribute says; a value of the wrong type has been logged and changes nothing.
struct StyleAttribute {
  AttributeName name;
  void (*set)(const PageAttribute& attribute, NamedStyle* named);
};

constexpr StyleAttribute kStyleAttributes[] = {
    {"name",
     [](const PageAttribute& a, NamedStyle* named) {
       const char* name;
       if (attrString(a, &name)) named->name = name;
     }},
    {"font",
     [](const PageAttribute& a, NamedStyle* named) {
       const char* file;
       if (!attrString(a, &file)) return;
       named->style.font = fontLoad(file);
       if (!named->style.font) hostLog("Error loading font '%s'\n", file);
     }},
    {"size",
     [](const PageAttribute& a, NamedStyle* named) {
       int32_t size;
       if (attrInt(a, &size)) named->style.size = uint16_t(size);
     }},
    {"color", [](const PageAttribute& a, NamedStyle* named) { attrColor(a, &named->style.color); }},
    {"antialias", [](const PageAttribute& a, NamedStyle* named) { setBit(a, kTextStyleAntialias, &named->style); }},
    {"gridfit", [](const PageAttribute& a, NamedStyle* named) { setBit(a, kTextStyleGridfit, &named->style); }},
    {"tracking",
     [](const PageAttribute& a, NamedStyle* named) {
       int32_t tracking;
       if (attrInt(a, &tracking)) named->style.letterExtra = named->style.spaceExtra = hsWrapShl(tracking, 12);
     }},
    {"bgColor",
     [](const PageAttribute& a, NamedStyle* named) {
       if (attrColor(a, &named->style.bgColor)) named->style.styleFlags |= kTextStyleBackground;
     }},
    {"underline", [](const PageAttribute& a, NamedStyle* named) { setBit(a, kTextStyleUnderline, &named->style); }},
    {"letterExtra", [](const PageAttribute& a, NamedStyle* named) { attrInt(a, &named->style.letterExtra); }},
    {"spaceExtra", [](const PageAttribute& a, NamedStyle* named) { attrInt(a, &named->style.spaceExtra); }},
    {"horScale", [](const PageAttribute& a, NamedStyle* named) { attrInt(a, &named->style.horScale); }},
    {"encoding",
     [](const PageAttribute& a, NamedStyle* named) {
       const char* name;
       if (attrString(a, &name)) named->style.encoding = encodingNamed(name);
     }},
};

void readStyle(const PageObject& record, NamedStyle* named) {
  for (uint32_t i = 0; i < record.attributeCount(); ++i) {
    const PageAttribute attribute = pageAttribute(record, i);
    if (!attribute.name) continue;
    const StyleAttribute* known = nullptr;
    for (const StyleAttribute& candidate : kStyleAttributes)
      if (std::strcmp(candidate.name, attribute.name) == 0) known = &candidate;
    if (known) {
      known->set(attribute, named);
    } else {
      hostLog("Unknown style attribute '%s'\n", attribute.name);
    }
  }
}

}  // namespace

bool TextStyles::read(const PageTable& table) try {
  for (uint32_t i = 0; i < table.count(); ++i) readStyle(table.object(i), &styles.emplace_back());
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

const TextStyle* TextStyles::find(const char* name) const {
  for (const NamedStyle& named : styles)
    if (named.name == name) return &named.style;
  return nullptr;
}
