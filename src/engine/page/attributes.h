// Every attribute that a page can have: on which objects, of which kind, and what it means.
//
// One table for all who must agree. The engine reads by these names, the kit chooses the bytes by the kind, the guide's
// tables and what editors offer come from the words. It is constant; nothing here belongs to a running engine.
//
// An attribute of a widget may be meant for all types or for one; the root is a widget too, with more attributes.
#pragma once

#include <span>
#include <string_view>

enum class AttributeOwner { widget, root, style, line };

enum class AttributeKind {
  integer,
  boolean,
  color,
  string,
  script,
  widgets,  // table of objects that are widgets
  styles,   // ... text styles
  lines,    // ... lines of a text container
  files,    // table of script file names
};

struct AttributeRow {
  AttributeOwner owner;
  std::string_view type;  // of widget; empty for all
  std::string_view name;
  AttributeKind kind;
  std::string_view value;      // what an author writes: a range, a unit, or the words to choose from, between commas
  std::string_view byDefault;  // what counts without it; empty when that is nothing
  std::string_view help;       // one line, in the guide's own marks
};

// In the order of the guide: the owners one after the other, and the types of a widget after what all widgets have.
std::span<const AttributeRow> attributeRows();

// The row by which that object reads the attribute, or null when nothing does. `type` is the widget type of a widget or
// of the root; empty for a plain box.
const AttributeRow* attributeRow(AttributeOwner owner, std::string_view type, std::string_view name);
