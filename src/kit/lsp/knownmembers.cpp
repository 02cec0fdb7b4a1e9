#include "kit/lsp/knownmembers.h"

#include <algorithm>

namespace {

// clang-format off: one row a line, whatever its length.
constexpr KnownMember kMembers[] = {
    {"", "widgets", "", "an object with a property for each widget of the page that has a name"},
    {"", "textStyles", "", "an object with a `TextStyle` for each style of the page"},
    {"", "frame", "", "the frame that the page is in"},
    {"", "parent", "", "the scope of the frame around it as an object; `nil` at the top"},
    {"", "topFrame", "", "the frame that fills the screen"},
    {"", "KOVA", "", "an object that stays for the whole session, for what pages share"},
    {"", "stdin", "", "the console, a `File`"},
    {"", "stdout", "", "the console, a `File`"},
    {"", "stderr", "", "the console, a `File`"},
    {"", "toString", "(v, width, pad)", "the value as text, at most 1,024 bytes, padded to the width"},
    {"", "Type", "(v)", "the name of the value's kind as a symbol"},
    {"", "Hash", "(v)", "a number that equal strings and symbols share"},
    {"", "rand", "(n)", "a random number from 0 to n - 1; the row of numbers is the same each time"},
    {"", "gc", "()", "tidies the memory"},
    {"", "Eval", "(text)", "compiles and runs the first statement of the text"},
    {"", "Load", "(name, file)", "runs a source file, printing the value of each statement"},
    {"", "CompileFile", "(source, object)", "compiles a source file to an object file"},
    {"", "LoadObjectFile", "(name)", "runs an object file: `true`, or `false` after an error in it"},
    {"", "Quit", "()", "ends what is running with the error \"Exit\""},
    {"", "Object", "", "what all objects descend from"},
    {"", "String", "", "`new String(n)`: a string of n zero bytes"},
    {"", "Vector", "", "`new Vector(n)`: a vector of n times `nil`"},
    {"", "Integer", "", "the kind of whole numbers"},
    {"", "Float", "", "the kind of other numbers"},
    {"", "Symbol", "", "the kind of names"},
    {"", "Method", "", "the kind of functions"},
    {"", "File", "", "`new File(name, mode)` opens a file, with the mode as in C; `nil` if that fails"},
    {"", "Timer", "", "`new Timer(f, interval, repeat)` calls `f()` after that many milliseconds"},
    {"", "TextStyle", "", "`new TextStyle(o)`: a style from the properties of the object `o`"},
    {"", "StringTable", "", "`new StringTable(file)` opens a table of numbered texts; `nil` if it can't be read"},
    {"", "EventTarget", "", "`new EventTarget()` makes a target of events of one's own"},

    {"Widget", "Show", "(background)",
     "shows the content; with `true` the background as well, with `false` that is hidden"},
    {"Widget", "Hide", "(background)",
     "hides the content; with `true` the background is shown, with `false` it is hidden as well"},
    {"Widget", "ShowBackground", "()", "shows the background alone"},
    {"Widget", "HideBackground", "()", "hides the background alone"},
    {"Widget", "SetFocus", "()", "moves the focus to it"},
    {"Widget", "AddElement", "(v)", "adds a choice, a string, to a select; `true` if the widget took it"},
    {"Widget", "HandleEvent", "(id, p0, p1)", "sends it an event; `true` if it was consumed"},
    {"Widget", "x", "", "reading returns what the page file says; writing changes where it is drawn from then on"},
    {"Widget", "y", "", "reading returns what the page file says; writing changes where it is drawn from then on"},
    {"Widget", "width", "", "reading returns what the page file says; writing changes how it is drawn from then on"},
    {"Widget", "height", "", "reading returns what the page file says; writing changes how it is drawn from then on"},
    {"Widget", "value", "",
     "a text's text, the number of a number or slider, a select's choice from 0, a text container's line"},
    {"Widget", "minValue", "", "the least value of a number or slider"},
    {"Widget", "maxValue", "", "the greatest value of a number or slider"},
    {"Widget", "bgColor", "", "the colour; shows only on widgets that have a `bgColor` in the page"},
    {"Widget", "background", "", "the picture's file name, or `nil`"},
    {"Widget", "highlighted", "", "whether it looks as if it had the focus"},
    {"Widget", "src", "", "the picture of an image"},
    {"Widget", "highlightSrc", "", "the picture of an image with the focus"},
    {"Widget", "style", "", "of a widget with text a copy of its style, as a `TextStyle`; writing takes a copy"},
    {"Widget", "highlightStyle", "", "the same for its style with the focus"},
    {"Frame", "LoadPage", "(file)", "opens a page in it, in place of the present one; `true` if that worked"},
    {"Frame", "UnloadPage", "()", "empties it; `nil` if there was no page, or if it is going already"},
    {"Frame", "Focus", "()", "the widget that has the focus in it, or `nil`"},
    {"EventTarget", "OnEvent", "(id, f)",
     "`f(event)` is asked first when the target gets that event; a result other than `nil` consumes it"},
    {"EventTarget", "ObserveEvent", "(id, f)",
     "`f(event)` is called for each such key while the target is active, whoever consumes it"},
    {"EventTarget", "Push", "()", "makes the target active, before all others; `nil` if it was active"},
    {"EventTarget", "Remove", "()", "ends that"},
    {"Event", "id", "", "what happened"},
    {"Event", "classId", "", "the upper half of `id`"},
    {"Event", "eventId", "", "the lower half of `id`"},
    {"Event", "param0", "",
     "of a direction 1 up, 2 down, 4 left, 8 right, or two of them; of a digit 0x80000000 and the digit"},
    {"Event", "param1", "", "the second parameter"},
    {"Event", "timeStamp", "", "when it happened; keys carry no time"},
    {"Event", "keyCode", "", "the key"},
    {"Timer", "Set", "(interval, repeat)", "starts it anew"},
    {"Timer", "Clear", "()", "stops it"},
    {"Timer", "timeRemaining", "", "milliseconds; negative when it is past. Writing starts it anew"},
    {"TextStyle", "CacheGlyphs", "(text)", "draws the characters in advance; letters and digits if no text is given"},
    {"TextStyle", "CacheGlyphsFromFile", "(file)", "the same for the text in a file, in UTF-8; `nil` if there is none"},
    {"StringTable", "String", "(i)", "the text of that number, from 1, cut at 80 bytes, or `nil`"},
    {"StringTable", "Close", "()", "closes it"},

    {"File", "Print", "(a, b, ...)", "prints the values as the console shows them: strings between quotes"},
    {"File", "Display", "(a, b, ...)", "prints the values, a string as its bare text"},
    {"File", "PutC", "(code)", "writes a byte: `true`, or `false` if that fails"},
    {"File", "GetC", "()", "the next byte, or `nil` at the end"},
    {"File", "Close", "()", "`true`, or `false` if it was closed already"},
    {"String", "size", "", "the number of bytes"},
    {"String", "Intern", "()", "the symbol of that text"},
    {"String", "toInteger", "()", "the number that the text begins with"},
    {"String", "toFloat", "()", "the number that the text begins with"},
    {"Symbol", "printName", "", "its text"},
    {"Vector", "size", "", "the number of elements; can be set"},
    {"Vector", "Push", "(x)", "adds at the end, returns `x`"},
    {"Vector", "PushFront", "(x)", "adds at the front, returns `x`"},
    {"Vector", "Pop", "()", "removes from the end, returns what it removed"},
    {"Vector", "PopFront", "()", "removes from the front, returns what it removed"},
    {"Vector", "Clone", "()", "a copy"},
    {"Integer", "toFloat", "()", "the same as a float"},
    {"Integer", "toInteger", "()", "the number itself"},
    {"Integer", "toString", "()", "its text"},
    {"Float", "toFloat", "()", "the number itself"},
    {"Float", "toInteger", "()", "without what is after the point"},
    {"Method", "Decode", "()", "prints its instructions"},
    {"Method", "Apply", "(..., vector)", "calls it with the arguments before and the elements of the vector"},
    {"Object", "Class", "()", "the parent"},
    {"Object", "Clone", "()", "a copy with the same parent and properties of its own"},
    {"Object", "Exists", "(key)", "whether the object or its parents have the property"},
    {"Object", "ExistsLocally", "(key)", "whether the object alone has the property"},
    {"Object", "Send", "(selector, ..., vector)",
     "calls the method with the arguments between and the elements of the vector"},
    {"Object", "Show", "(file)", "lists parent and properties"},
    {"Object", "initialize", "()", "the object; what `new` calls"},
};
// clang-format on

std::string_view parentOf(std::string_view object) {
  if (object == "Frame") return "Widget";
  return object == "Widget" ? "EventTarget" : "";
}

}  // namespace

std::span<const KnownMember> knownMembers() { return kMembers; }

std::vector<const KnownMember*> membersOfObject(std::string_view object) {
  std::vector<const KnownMember*> result;
  for (; !object.empty(); object = parentOf(object))
    for (const KnownMember& member : kMembers)
      if (member.object == object) result.push_back(&member);
  return result;
}

const KnownMember* knownMember(std::string_view object, std::string_view name) {
  for (;; object = parentOf(object)) {
    for (const KnownMember& member : kMembers)
      if (member.object == object && member.name == name) return &member;
    if (parentOf(object).empty()) return nullptr;
  }
}

bool isKnownSelector(std::string_view name) {
  return std::any_of(std::begin(kMembers), std::end(kMembers),
                     [name](const KnownMember& member) { return !member.object.empty() && member.name == name; });
}

std::string objectOfChain(std::string_view chain) {
  if (chain == "frame" || chain == "topFrame") return "Frame";
  if (chain == "stdin" || chain == "stdout" || chain == "stderr") return "File";
  const size_t point = chain.rfind('.');
  const std::string_view before = point == std::string_view::npos ? "" : chain.substr(0, point);
  if (before == "widgets" || before.ends_with(".widgets")) return "Widget";
  if (chain.ends_with(".style") || chain.ends_with(".highlightStyle"))
    return objectOfChain(before) == "Widget" ? "TextStyle" : "";
  return before == "textStyles" || before.ends_with(".textStyles") ? "TextStyle" : "";
}
