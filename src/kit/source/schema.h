// How a page source's attributes are written into a page, and which values they may have: by the engine's table of
// attributes.
//
// The engine takes any value and falls back silently; it is the kit that refuses what the table doesn't have.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/format/attributes.h"

// Nothing for an attribute that nothing reads.
using AttributeForm = std::optional<AttributeKind>;

// `other` is any object that the engine doesn't look into.
enum class ObjectKind { root, widget, style, line, other };

// `type` is the widget type of a root or widget; empty for a plain one.
AttributeForm attributeForm(ObjectKind kind, std::string_view type, std::string_view name);

// The engine's row of it; null for an attribute that nothing reads.
const AttributeRow* rowOfAttribute(ObjectKind kind, std::string_view type, std::string_view name);

// "`a`, `b`" has the words a and b; whatever else there is in a cell of a table is for people.
std::vector<std::string> wordsInCell(std::string_view cell);

// The words to choose from; none when any value will do.
std::vector<std::string> attributeWords(ObjectKind kind, std::string_view type, std::string_view name);

// All that such an object has, its rectangle included.
std::vector<std::string> attributeNames(ObjectKind kind, std::string_view type);

// What a text of a page names.
enum class NamedThing { nothing, widget, style, file };
NamedThing namedBy(ObjectKind kind, std::string_view type, std::string_view name);
NamedThing namedBy(const AttributeRow& row);

// The objects that have an attribute of that name, as people call them: "a text or a number", "the page"; empty when
// nothing has.
std::string whatHas(std::string_view name);

// Whether the player reads the attribute and such a widget shows nothing of it: a slider draws its bar and no more.
bool isNeverSeen(std::string_view type, std::string_view name);

bool isWidgetType(std::string_view type);

// Whether the text is one of the attribute's words, or the attribute takes any.
bool isAttributeWord(ObjectKind kind, std::string_view type, std::string_view name, std::string_view text);

// Whether the attribute is children that would never show, since only some kinds of widgets have any.
bool isChildrenOfPlainBox(ObjectKind kind, std::string_view type, std::string_view name);

// Whether the player loads no page with that value, which is what the sentence says; empty for any other.
std::string whyNumberIsRefused(ObjectKind kind, std::string_view type, std::string_view name, int32_t number);

// Whether an attribute that nothing reads is most likely a misspelt `type`, without which a widget is a plain box.
bool isMisspeltType(ObjectKind kind, std::string_view name);

// The kind of the objects in a table of that form.
ObjectKind tableObjectKind(AttributeForm form);

// A short name for an object, for messages and tracebacks: its own name or, without one, its type and its number among
// its siblings, from 1.
std::string objectLabel(ObjectKind kind, std::string_view type, std::string_view name, size_t number);
