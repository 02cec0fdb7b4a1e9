// How a page source's attributes are written into a page: by the kind that they have in the engine's table of
// attributes.
#pragma once

#include <optional>
#include <string_view>

#include "engine/format/attributes.h"

// Nothing for an attribute that nothing reads.
using AttributeForm = std::optional<AttributeKind>;

// `other` is any object that the engine doesn't look into.
enum class ObjectKind { root, widget, style, line, other };

// `type` is the widget type of a root or widget; empty for a plain one.
AttributeForm attributeForm(ObjectKind kind, std::string_view type, std::string_view name);

// The kind of the objects in a table of that form.
ObjectKind tableObjectKind(AttributeForm form);
