// Every attribute that a page can have: on which objects, of which kind, and what it means.
//
// One table for all who must agree. The engine's readers name attributes by the types at the end of this file, so a
// name that is not in the table, or not of the kind that is read, doesn't compile. The kit chooses the bytes by the
// kind, and the guide's tables come from the words. It is constant; nothing here belongs to a running engine.
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

namespace attributetable {

using enum AttributeOwner;
using enum AttributeKind;

// In the order of the guide: the owners one after the other, and the types of a widget after what all widgets have.
// clang-format off: one row a line, whatever its length.
inline constexpr AttributeRow kRows[] = {
    {widget, "", "type", string, "`group`, `image`, `frame`, `text`, `number`, `slider`, `select`, `textContainer`",
     "a plain box", "the kind; an unknown one is a plain box, too"},
    {widget, "", "name", string, "text", "", "for links and scripts"},
    {widget, "", "bgColor", color, "colour", "", "fills the widget's rectangle"},
    {widget, "", "background", string, "image file", "", "drawn over the colour; not of a slider"},
    {widget, "", "tileBackground", boolean, "boolean", "false", "repeats the image over the rectangle"},
    {widget, "", "hidden", string, "`content`, `background`, `both`, `yes`, `true`, `none`, `no`, `false`", "none",
     "what is hidden at first; see below"},
    {widget, "", "timeout", integer, "milliseconds", "", "hides the widget that long after it is shown"},
    {widget, "", "highlightFrame", boolean, "boolean", "false",
     "a frame around the widget while it has the focus; not of a slider"},
    {widget, "", "frameColor", color, "colour", "0", "of that frame; read only with `highlightFrame: true`"},
    {widget, "", "frameWidth", integer, "pixels", "4", "of that frame; read only with `highlightFrame: true`"},
    {widget, "", "master", string, "widget name", "",
     "shares the highlight of that widget, which must come earlier in the page"},
    {widget, "", "up", string, "widget name", "", "where up leads"},
    {widget, "", "down", string, "widget name", "", "where down leads"},
    {widget, "", "left", string, "widget name", "", "where left leads"},
    {widget, "", "right", string, "widget name", "", "where right leads"},
    {widget, "", "upLeft", string, "widget name", "`up`, then `left`", "where that diagonal leads"},
    {widget, "", "upRight", string, "widget name", "`up`, then `right`", "where that diagonal leads"},
    {widget, "", "downLeft", string, "widget name", "`down`, then `left`", "where that diagonal leads"},
    {widget, "", "downRight", string, "widget name", "`down`, then `right`", "where that diagonal leads"},
    {widget, "", "onUp", script, "script", "", "runs for up, in place of the link"},
    {widget, "", "onDown", script, "script", "", "runs for down, in place of the link"},
    {widget, "", "onLeft", script, "script", "", "runs for left, in place of the link"},
    {widget, "", "onRight", script, "script", "", "runs for right, in place of the link"},
    {widget, "", "onClick", script, "script", "", "runs for select"},
    {widget, "", "onFocus", script, "script", "", "runs when the focus comes"},
    {widget, "", "onBlur", script, "script", "", "runs when the focus goes"},
    {widget, "", "onChange", script, "script", "", "runs when a key has changed the value"},

    {widget, "group", "children", widgets, "list of widgets", "", "what lies in it"},

    {widget, "text", "value", string, "text", "", "what it says"},
    {widget, "text", "textStyle", string, "style name", "", "how; without a style nothing shows"},
    {widget, "text", "highlightTextStyle", string, "style name", "`textStyle`", "how while it has the focus"},
    {widget, "text", "align", string, "`left`, `center`, `right`", "left", "where it lies across the widget"},
    {widget, "text", "valign", string, "`top`, `center`, `bottom`", "top", "where it lies down the widget"},
    {widget, "text", "multiline", boolean, "boolean", "false", "wraps the text"},
    {widget, "text", "maxLength", integer, "number of bytes", "",
     "lets digit keys write: each is appended, Clear empties the text"},
    {widget, "text", "echoChar", string, "character", "", "shown in place of each typed one"},
    {widget, "text", "fromRight", boolean, "boolean", "false",
     "a script that reads the value gets the **last** bytes of the buffer of `maxLength`, typed into or not"},

    {widget, "number", "min", integer, "number", "1", "the least value"},
    {widget, "number", "max", integer, "number", "100", "the greatest value"},
    {widget, "number", "value", integer, "number", "`min`", "the value at first"},
    {widget, "number", "size", integer, "number of figures", "0",
     "at least so many, with zeros in front; a negative count puts spaces after the number instead"},
    {widget, "number", "textStyle", string, "style name", "", "how it looks without the focus"},
    {widget, "number", "highlightTextStyle", string, "style name", "", "how it looks with the focus"},
    {widget, "number", "navigate", string, "`leftRight`, `upDown`, `both`", "",
     "which keys move the value while it has the focus"},
    {widget, "number", "immediate", boolean, "boolean", "false", "each change by a key runs `onChange`"},

    {widget, "select", "choices", string, "text", "",
     "the choices, each after the text's first character; scripts can add more"},
    {widget, "select", "textStyle", string, "style name", "",
     "of the current choice without the focus; with `showAll` of all other choices"},
    {widget, "select", "highlightTextStyle", string, "style name", "",
     "of the current choice with the focus, which else doesn't show; with `showAll` of the current choice"},
    {widget, "select", "showAll", boolean, "boolean", "false",
     "shows all choices, in a row; both styles must be there, or the page doesn't load"},
    {widget, "select", "vertical", boolean, "boolean", "false", "with `showAll`: in a column"},
    {widget, "select", "align", string, "`left`, `center`, `right`", "left", "as of a text"},
    {widget, "select", "valign", string, "`top`, `center`, `bottom`", "top", "as of a text"},
    {widget, "select", "navigate", string, "`leftRight`, `upDown`, `both`", "",
     "which keys move the choice while it has the focus; the choices wrap"},
    {widget, "select", "immediate", boolean, "boolean", "false", "each change by a key runs `onChange`"},

    {widget, "textContainer", "children", lines, "list of lines", "", "what it shows"},
    {widget, "textContainer", "selectTextStyle", string, "style name", "",
     "of the selected line; without it the selection doesn't move"},
    {widget, "textContainer", "selectedLine", integer, "number, from 1", "0", "selected first; 0 for no selection"},
    {widget, "textContainer", "scrollDelta", integer, "pixels", "the size of `selectTextStyle`, else 1",
     "of one scroll step"},

    {line, "", "style", string, "style name", "", "how the line looks; it must be there"},
    {line, "", "content", string, "text", "", "what the line says; it must be there"},

    {widget, "slider", "min", integer, "number", "1", "the least value"},
    {widget, "slider", "max", integer, "number", "100", "the greatest value"},
    {widget, "slider", "value", integer, "number", "`min`", "the value at first"},
    {widget, "slider", "fgColor", color, "colour", "white", "up to the value"},
    {widget, "slider", "bgColor", color, "colour", "black", "beyond the value"},
    {widget, "slider", "navigate", string, "`leftRight`, `upDown`, `both`", "",
     "which keys move the value while it has the focus; it wraps at the ends"},
    {widget, "slider", "immediate", boolean, "boolean", "false", "each change by a key runs `onChange`"},

    {widget, "image", "src", string, "image file", "", "the picture"},
    {widget, "image", "highlightSrc", string, "image file", "", "the picture while it has the focus"},

    {widget, "frame", "src", string, "page file", "", "the page inside it"},

    {root, "", "colorTable", string, "CLUT file", "",
     "the colours of an 8-bit page; without one the page is black all over"},
    {root, "", "start", string, "widget name", "", "has the focus first"},
    {root, "", "onLoad", script, "script", "", "runs when the page has opened"},
    {root, "", "onUnload", script, "script", "", "runs when the page goes"},
    {root, "", "scripts", files, "list of files", "", "script files, loaded in order"},
    {root, "", "scriptingLanguage", string, "text", "`script`", "the language of the page's scripts"},
    {root, "", "textStyles", styles, "list of styles", "", "styles of the page's texts"},

    {style, "", "name", string, "text", "`default`", "what widgets call it"},
    {style, "", "font", string, "file", "",
     "a TrueType font, plain or packed; without one, or with one that can't be read, nothing is drawn"},
    {style, "", "size", integer, "pixels", "24", "of the letters"},
    {style, "", "color", color, "colour", "0", "of the letters"},
    {style, "", "bgColor", color, "colour", "", "a box under the text"},
    {style, "", "antialias", boolean, "boolean", "false", "soft edges, translucent; see below"},
    {style, "", "gridfit", boolean, "boolean", "false", "stems and bars on whole pixels; see [the hinter](hinter.md)"},
    {style, "", "tracking", integer, "sixteenths of a pixel", "0", "space in front of each character"},
    {style, "", "letterExtra", integer, "65,536ths of a pixel", "0", "the same for letters alone"},
    {style, "", "spaceExtra", integer, "65,536ths of a pixel", "0", "the same for spaces alone"},
    {style, "", "horScale", integer, "65,536ths", "65536",
     "widens or narrows; 58254 (8/9) makes up for the shape of a television's pixels"},
    {style, "", "encoding", string, "`utf8`, `ascii`, `utf16`", "utf8",
     "of the texts in this style: UTF-8, a byte a character, or UTF-16 with the lowest byte first"},
    {style, "", "underline", boolean, "boolean", "false", "is kept, and never drawn"},
};
// clang-format on

}  // namespace attributetable

constexpr std::span<const AttributeRow> attributeRows() { return attributetable::kRows; }

// The row by which that object reads the attribute, or null when nothing does. `type` is the widget type of a widget or
// of the root; empty for a plain box.
const AttributeRow* attributeRow(AttributeOwner owner, std::string_view type, std::string_view name);

// The name of an attribute that somewhere in the table has one of those kinds, or any kind when none are given. It can
// only be made from a literal, and is checked when the program is compiled.
template <AttributeKind... kinds>
class AttributeNameOf {
 public:
  constexpr AttributeNameOf() = default;
  template <AttributeKind... others>
  constexpr AttributeNameOf(AttributeNameOf<others...> name) requires(sizeof...(kinds) == 0) : text(name) {}
  consteval AttributeNameOf(const char* name) : text(name) {
    if (name && !isInTable(name)) throw "no attribute of this name has the kind that is read";
  }

  constexpr operator const char*() const { return text; }  // null for none

 private:
  static constexpr bool isInTable(std::string_view name) {
    for (const AttributeRow& row : attributeRows())
      if (row.name == name && (sizeof...(kinds) == 0 || ((row.kind == kinds) || ...))) return true;
    return false;
  }

  const char* text = nullptr;
};

using AttributeName = AttributeNameOf<>;
using IntegerAttribute = AttributeNameOf<AttributeKind::integer>;
using BooleanAttribute = AttributeNameOf<AttributeKind::boolean>;
using ColorAttribute = AttributeNameOf<AttributeKind::color>;
using StringAttribute = AttributeNameOf<AttributeKind::string>;
using ScriptAttribute = AttributeNameOf<AttributeKind::script>;
using TableAttribute =
    AttributeNameOf<AttributeKind::widgets, AttributeKind::styles, AttributeKind::lines, AttributeKind::files>;
