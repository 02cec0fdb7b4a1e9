#include "engine/page/attributes.h"

namespace {

using enum AttributeOwner;
using enum AttributeKind;

// clang-format off: one row a line, whatever its length.
constexpr AttributeRow kRows[] = {
    {widget, "", "type", string, "`group`, `image`, `frame`, `text`, `number`, `slider`, `select`, `textContainer`",
     "a plain box", "the kind; an unknown one is a plain box, too"},
    {widget, "", "name", string, "text", "", "for links and scripts"},
    {widget, "", "bgColor", color, "colour", "", "fills the widget's rectangle"},
    {widget, "", "background", string, "image file", "", "drawn over the colour"},
    {widget, "", "tileBackground", boolean, "boolean", "false", "repeats the image over the rectangle"},
    {widget, "", "hidden", string, "`content`, `background`, `both`, `yes`, `true`", "",
     "what is hidden at first; see below"},
    {widget, "", "timeout", integer, "milliseconds", "", "hides the widget that long after it is shown"},
    {widget, "", "highlightFrame", boolean, "boolean", "false", "a frame around the widget while it has the focus"},
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

const AttributeRow* find(AttributeOwner owner, std::string_view type, std::string_view name) {
  for (const AttributeRow& row : kRows)
    if (row.owner == owner && row.type == type && row.name == name) return &row;
  return nullptr;
}

}  // namespace

std::span<const AttributeRow> attributeRows() { return kRows; }

const AttributeRow* attributeRow(AttributeOwner owner, std::string_view type, std::string_view name) {
  if (owner == style || owner == line) return find(owner, "", name);
  if (owner == root)
    if (const AttributeRow* row = find(root, "", name)) return row;
  if (const AttributeRow* row = find(widget, type, name)) return row;  // a type may say more of what all have
  return find(widget, "", name);
}
