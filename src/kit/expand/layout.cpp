#include "kit/expand/layout.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "kit/expand/directions.h"
#include "kit/expand/mapedit.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

constexpr int kDefaultTextSize = 24;

[[noreturn]] void fail(const YamlPlace& place, const std::string& text) { throw SourceFault{place, text}; }

// One of the two directions in which things are placed.
struct Axis {
  const char *position, *size;
  size_t gap;            // which of two gaps
  size_t before, after;  // which of four paddings
};
constexpr Axis kAcross{"x", "width", 0, 3, 1}, kDown{"y", "height", 1, 0, 2};

// A layout as its widget says it.
struct Layout {
  enum class Kind { row, column, grid };
  enum class Align { stretch, start, center, end };
  Kind kind = Kind::row;
  Align align = Align::stretch;  // across a row or column
  int columns = 1;
  int gaps[2] = {0, 0};            // across, down
  int paddings[4] = {0, 0, 0, 0};  // top, right, bottom, left
};

int pixels(const YamlNode& node, const std::string& what) {
  try {
    return positionValue(node);
  } catch (const SourceFault& fault) {
    fail(fault.at, what + ": " + fault.text);
  }
}

// A number for all, or a list of so many.
template <size_t n>
void readNumbers(const YamlNode* node, const std::string& what, int (&into)[n]) {
  if (!node) return;
  if (node->isScalar()) {
    std::fill(std::begin(into), std::end(into), pixels(*node, what));
    return;
  }
  if (!node->isList() || node->list.size() != n)
    fail(node->place, what + " is a number or a list of " + std::to_string(n));
  for (size_t i = 0; i < n; ++i) into[i] = pixels(node->list[i], what);
}

// Of a group: texts and selects have an attribute of that name.
const YamlNode* findAlign(const YamlNode& widget) {
  return widget.textOf("type") == "group" ? findDirection(widget, "align") : nullptr;
}

Layout::Align alignOf(const YamlNode& node) {
  const std::vector<std::string> words{"stretch", "start", "center", "end"};
  const auto found = std::find(words.begin(), words.end(), scalarText(node, "a word"));
  if (found == words.end())
    fail(node.place,
         "align: " + shownNode(node) + " is not one of " + listOfWords(words) + suggestion(node.text, words));
  return Layout::Align(found - words.begin());
}

Layout readLayout(const YamlNode& widget, size_t entries) {
  const YamlNode& kind = *findDirection(widget, "layout");
  const std::string& text = scalarText(kind, "row, column or grid");
  Layout result;
  readNumbers(widget.find("gap"), "gap", result.gaps);
  readNumbers(widget.find("padding"), "padding", result.paddings);
  const YamlNode* columns = widget.find("columns");
  if (columns && text != "grid") fail(columns->place, "columns are for a grid");
  const YamlNode* align = findAlign(widget);
  if (align && text == "grid") fail(align->place, "align is for a row or a column");
  if (align) result.align = alignOf(*align);
  if (text == "row") {
    result.columns = int(std::max<size_t>(entries, 1));
  } else if (text == "column") {
    result.kind = Layout::Kind::column;
  } else if (text == "grid") {
    result.kind = Layout::Kind::grid;
    if (!columns) fail(kind.place, "a grid needs 'columns'");
    result.columns = pixels(*columns, "columns");
    if (result.columns == 0) fail(columns->place, "a grid has a column at least");
  } else {
    fail(kind.place,
         shownNode(kind) + " is not one of row, column and grid" + suggestion(text, {"row", "column", "grid"}));
  }
  return result;
}

// Nothing if there is none; 0 for what is no number, which is for the reader to refuse.
std::optional<int64_t> numberOf(const YamlNode& widget, const char* key) {
  const YamlNode* node = widget.find(key);
  if (!node) return std::nullopt;
  return std::clamp<int64_t>(parseInteger(node->text).value_or(0), 0, 65535);
}

// In front, in the order in which authors write them.
void setNumber(YamlNode& widget, std::string_view key, int64_t n) {
  constexpr std::array<std::string_view, 4> kOrder{"x", "y", "width", "height"};
  const auto place = [&](std::string_view k) { return std::find(kOrder.begin(), kOrder.end(), k); };
  addPair(widget, std::string(key), std::to_string(n));
  const auto last = widget.map.end() - 1;
  const auto at = std::find_if(widget.map.begin(), last, [&](const YamlPair& p) { return place(p.key) > place(key); });
  std::rotate(at, last, widget.map.end());
}

// The children that the layout places.
template <class Node>
std::vector<Node*> placedIn(Node& widget) {
  std::vector<Node*> result;
  for (auto& pair : widget.map) {
    if (pair.key != "children") continue;
    for (auto& child : pair.value.list)
      if (child.isMap() && !child.find("x") && !child.find("y")) result.push_back(&child);
  }
  return result;
}

// What a row or column of things takes in its direction.
struct Track {
  std::optional<int64_t> size;  // if any of them has one
  const YamlNode* first = nullptr;
};

std::optional<int64_t> sizeWithin(const YamlNode& widget, const Axis& axis);

std::vector<Track> tracksOf(const std::vector<const YamlNode*>& children, const Layout& layout, const Axis& axis,
                            bool isInnerSizeKnown) {
  const bool across = &axis == &kAcross;
  const size_t columns = size_t(layout.columns), rows = (children.size() + columns - 1) / columns;
  std::vector<Track> tracks(across ? std::min(columns, children.size()) : rows);
  for (size_t i = 0; i < children.size(); ++i) {
    Track& track = tracks[across ? i % columns : i / columns];
    if (!track.first) track.first = children[i];
    const auto size = isInnerSizeKnown ? numberOf(*children[i], axis.size) : sizeWithin(*children[i], axis);
    if (size) track.size = std::max<int64_t>(track.size.value_or(0), *size);
  }
  return tracks;
}

// Whether the layout has one track only in that direction.
bool isCross(const Layout& layout, const Axis& axis) {
  return layout.kind == (&axis == &kAcross ? Layout::Kind::column : Layout::Kind::row);
}

int paddingOf(const Layout& layout, const Axis& axis) {
  return layout.paddings[axis.before] + layout.paddings[axis.after];
}

// The size that a widget says, or else what a layout in it needs; nothing if that can't be said.
std::optional<int64_t> sizeWithin(const YamlNode& widget, const Axis& axis) {
  if (const auto given = numberOf(widget, axis.size)) return given;
  if (!findDirection(widget, "layout")) return std::nullopt;
  const std::vector<const YamlNode*> children = placedIn(widget);
  const Layout layout = readLayout(widget, children.size());
  int64_t total = paddingOf(layout, axis);
  const std::vector<Track> tracks = tracksOf(children, layout, axis, false);
  for (const Track& track : tracks) {
    if (!track.size) return std::nullopt;
    total += *track.size + (&track != &tracks.front() ? layout.gaps[axis.gap] : 0);
  }
  return total;
}

class LayoutWriter {
 public:
  LayoutWriter(YamlNode& p, std::vector<KitMessage>& e) : page(p), errors(e) {}

  void run() { visit(page); }

 private:
  void visit(YamlNode& widget) {
    if (findDirection(widget, "layout")) {
      try {
        const std::string type = widget.textOf("type");
        if (&widget != &page && type != "group" && type != "textContainer" && !widget.find("children"))
          fail(findDirection(widget, "layout")->place, "places what lies in a group or a textContainer, and this is " +
                                                           (type.empty() ? "a plain box" : "a " + type));
        if (isList(widget)) {
          placeLines(widget);
        } else {
          placeChildren(widget);
        }
      } catch (const SourceFault& fault) {
        const std::string name = widget.textOf("name");
        errors.push_back(messageAt(fault.at, "layout" + (name.empty() ? "" : " of " + name) + ": " + fault.text));
      }
      if (findAlign(widget)) removeDirection(widget, "align");
      for (const char* key : {"layout", "gap", "padding", "columns"}) removeDirection(widget, key);
    }
    if (YamlNode* children = findValue(widget, "children"); children && !isList(widget))
      for (YamlNode& child : children->list) visit(child);
  }

  static bool isList(const YamlNode& widget) {
    const YamlNode* type = widget.find("type");
    return type && type->text == "textContainer";
  }

  // -- widgets

  static void placeChildren(YamlNode& widget) {
    const std::vector<YamlNode*> children = placedIn(widget);
    const Layout layout = readLayout(widget, children.size());
    const std::optional<int64_t> width = sizeWithin(widget, kAcross), height = sizeWithin(widget, kDown);
    place(widget, children, layout, kAcross, width);
    place(widget, children, layout, kDown, height);
  }

  static void place(YamlNode& widget, const std::vector<YamlNode*>& children, const Layout& layout, const Axis& axis,
                    std::optional<int64_t> size) {
    const bool isGiven = widget.find(axis.size);
    const std::vector<int64_t> sizes =
        settled(tracksOf({children.begin(), children.end()}, layout, axis, isGiven), layout, axis, size);
    if (!isGiven && size) setNumber(widget, axis.size, *size);
    std::vector<int64_t> starts;
    int64_t at = layout.paddings[axis.before];
    for (const int64_t one : sizes) {
      starts.push_back(at);
      at += one + layout.gaps[axis.gap];
    }
    for (size_t i = 0; i < children.size(); ++i) {
      const size_t columns = size_t(layout.columns), track = &axis == &kAcross ? i % columns : i / columns;
      const int64_t own = sizeIn(*children[i], layout, axis, sizes[track]);
      if (!children[i]->find(axis.size)) setNumber(*children[i], axis.size, own);
      setNumber(*children[i], axis.position, starts[track] + offsetIn(layout, axis, sizes[track] - own));
    }
  }

  // What has a size of its own keeps it, unless a layout in it says that and the row stretches it.
  static int64_t sizeIn(const YamlNode& child, const Layout& layout, const Axis& axis, int64_t track) {
    const bool stretches = !isCross(layout, axis) || layout.align == Layout::Align::stretch;
    return (stretches ? numberOf(child, axis.size) : sizeWithin(child, axis)).value_or(track);
  }

  // What is too large begins where the row does.
  static int64_t offsetIn(const Layout& layout, const Axis& axis, int64_t left) {
    if (!isCross(layout, axis) || left <= 0) return 0;
    if (layout.align == Layout::Align::center) return left / 2;
    return layout.align == Layout::Align::end ? left : 0;
  }

  // The sizes of rows or columns: what they say, and equal shares of what is left.
  static std::vector<int64_t> settled(std::vector<Track> tracks, const Layout& layout, const Axis& axis,
                                      std::optional<int64_t> size) {
    if (isCross(layout, axis) && size)
      for (Track& track : tracks) track.size.reset();  // a row is as high as what it lies in
    int64_t left = size.value_or(0) - paddingOf(layout, axis), open = 0;
    for (const Track& track : tracks) {
      left -= track.size.value_or(0) + (&track != &tracks.front() ? layout.gaps[axis.gap] : 0);
      open += !track.size;
    }
    std::vector<int64_t> sizes;
    int64_t shares = 0;
    for (const Track& track : tracks) {
      if (!track.size && !size)
        fail(track.first->place, std::string("a ") + axis.size + " is needed, of this or of what lies around it");
      if (!track.size && left < open)
        fail(track.first->place, std::string("what lies around leaves no ") + axis.size + " for this");
      sizes.push_back(track.size ? *track.size : left / open + (shares++ < left % open));
    }
    return sizes;
  }

  // -- lines of a list

  // One under the other, each as high as its style: the size above the baseline, and a quarter below.
  void placeLines(YamlNode& widget) {
    YamlNode* lines = findValue(widget, "children");
    const Layout layout = readLayout(widget, 1);
    if (layout.kind != Layout::Kind::column)
      fail(findDirection(widget, "layout")->place, "lines of a text container can only be a column");
    if (!lines) return;
    int at = layout.paddings[kDown.before];
    for (YamlNode& line : lines->list) {
      if (!line.isMap() || line.find("y")) continue;
      const YamlNode* style = line.find("style");
      const int size = textSize(style ? style->text : "");
      setNumber(line, "y", at + size);
      if (!line.find("x")) setNumber(line, "x", layout.paddings[kAcross.before]);
      at += size + size / 4 + layout.gaps[kDown.gap];
    }
  }

  int textSize(const std::string& style) {
    if (sizes.empty()) readTextSizes();
    const auto found = sizes.find(style);
    return found == sizes.end() ? kDefaultTextSize : found->second;
  }

  void readTextSizes() {
    sizes[""] = kDefaultTextSize;
    const YamlNode* styles = page.find("textStyles");
    if (!styles) return;
    for (const YamlNode& style : styles->list) {
      const YamlNode* name = style.find("name");
      sizes.emplace(name ? name->text : "default", int(numberOf(style, "size").value_or(kDefaultTextSize)));
    }
  }

  YamlNode& page;
  std::vector<KitMessage>& errors;
  std::map<std::string, int> sizes;  // of text styles
};

}  // namespace

void layOut(YamlNode& source, std::vector<KitMessage>& errors) {
  if (YamlNode* page = findValue(source, "page")) LayoutWriter(*page, errors).run();
}
