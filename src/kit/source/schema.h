// What the engine reads in a page: which attribute, on which kind of object, in which form.
#pragma once

#include <string_view>

enum class AttributeForm {
  unknown,  // nothing reads it
  integer,
  boolean,
  color,
  string,
  script,
  widgets,  // table of object records that are widgets
  styles,   // ... text styles
  lines,    // ... lines of a text container
  files,    // table of script file names
};

enum class ObjectKind { root, widget, style, line, other };

// `type` is the widget type of a root or widget; empty for a plain one.
AttributeForm attributeForm(ObjectKind kind, std::string_view type, std::string_view name);

// The kind of the objects in a table of that form.
ObjectKind tableObjectKind(AttributeForm form);
