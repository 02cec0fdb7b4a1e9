#include "kit/expand/links.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "kit/expand/directions.h"
#include "kit/expand/mapedit.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

constexpr size_t kMaxLinked = 4096;  // widgets, since each is compared with each

// Where a widget lies on the screen.
struct Box {
  int64_t left, top, right, bottom;
};

struct Candidate {
  YamlNode* widget;
  Box box;
};

struct Direction {
  const char *link, *hook;
  bool isHorizontal, isForward;  // forward: right or down
};
constexpr Direction kDirections[] = {{"up", "onUp", false, false},
                                     {"down", "onDown", false, true},
                                     {"left", "onLeft", true, false},
                                     {"right", "onRight", true, true}};

// The box as seen in a direction, so that "right" is the only one to think of.
Box turned(Box box, const Direction& direction) {
  if (!direction.isHorizontal) box = {box.top, box.left, box.bottom, box.right};
  if (!direction.isForward) box = {-box.right, box.top, -box.left, box.bottom};
  return box;
}

int64_t numberOf(const YamlNode& widget, const char* key) {
  const YamlNode* node = widget.find(key);
  return node ? parseInteger(node->text).value_or(0) : 0;
}

bool isHiddenAtFirst(const YamlNode& widget) {
  const std::string hidden = widget.textOf("hidden");
  return hidden == "content" || hidden == "both" || hidden == "yes" || hidden == "true";
}

// Whether the focus does anything to it.
bool showsOrAnswersFocus(const YamlNode& widget) {
  constexpr std::array kSigns{"highlightFrame", "highlightTextStyle",
                              "highlightSrc",   "selectTextStyle",
                              "navigate",       "maxLength",
                              "onClick",        "onFocus",
                              "onBlur",         "onUp",
                              "onDown",         "onLeft",
                              "onRight",        "up",
                              "down",           "left",
                              "right",          "upLeft",
                              "upRight",        "downLeft",
                              "downRight"};
  return std::any_of(kSigns.begin(), kSigns.end(), [&](const char* sign) { return widget.find(sign) != nullptr; });
}

// Which of them lies next in that direction; -1 for none. In the same row first, the nearest of those; then, wrapping,
// what lies farthest on the other side in the row; then the nearest of any row. The first in the source of two alike.
long neighbour(const std::vector<Candidate>& all, size_t from, const Direction& direction, bool wraps) {
  using Order = std::tuple<int, int64_t, int64_t>;
  const Box here = turned(all[from].box, direction);
  long best = -1;
  Order bestOrder;
  for (size_t i = 0; i < all.size(); ++i) {
    if (i == from) continue;
    const Box box = turned(all[i].box, direction);
    const bool isInRow = box.top < here.bottom && here.top < box.bottom;
    const int64_t ahead = box.left - here.right;
    const int64_t aside = std::abs((box.top + box.bottom) - (here.top + here.bottom));
    Order order;
    if (isInRow && ahead >= 0) {
      order = {0, ahead, aside};
    } else if (isInRow && wraps && box.right <= here.left) {
      order = {1, box.left, aside};
    } else if (!isInRow && ahead >= 0) {
      const int64_t off = std::max(box.top - here.bottom, here.top - box.bottom);
      order = {2, ahead * ahead + off * off, aside};
    } else {
      continue;
    }
    if (best < 0 || order < bestOrder) {
      best = long(i);
      bestOrder = order;
    }
  }
  return best;
}

class LinkWriter {
 public:
  LinkWriter(YamlNode& p, std::vector<KitMessage>& e) : page(p), errors(e) {}

  void run() {
    readNames(page);
    leads.insert(page.textOf("start"));
    leads.erase("");
    Links outside;
    visit(page, 0, 0, outside);
  }

 private:
  // What a page or a group links.
  struct Links {
    bool on = false, wraps = false;
    std::vector<Candidate> widgets;
  };

  enum class Word { none, automatic, wrap, nothingSaid };

  Word wordOf(YamlNode& widget) {
    const YamlNode* node = findDirection(widget, "links");
    if (!node) return Word::nothingSaid;
    const YamlNode said = *node;
    removeDirection(widget, "links");
    if (said.text == "auto") return Word::automatic;
    if (said.text == "wrap") return Word::wrap;
    if (said.text != "none")
      errors.push_back(messageAt(said.place, "links: " + shownNode(said) + " is not one of auto, wrap and none" +
                                                 suggestion(said.text, {"auto", "wrap", "none"})));
    return Word::none;
  }

  void visit(YamlNode& widget, int64_t x, int64_t y, Links& around) {
    const Word word = wordOf(widget);
    x += numberOf(widget, "x");
    y += numberOf(widget, "y");
    YamlNode* children = widget.textOf("type") == "textContainer" ? nullptr : findValue(widget, "children");
    if (around.on && takesPart(widget, word, children != nullptr))
      around.widgets.push_back({&widget, {x, y, x + numberOf(widget, "width"), y + numberOf(widget, "height")}});
    if (!children) return;
    if (word == Word::nothingSaid) return visitAll(*children, x, y, around);
    Links own{word != Word::none, word == Word::wrap, {}};
    visitAll(*children, x, y, own);
    addLinks(own, widget.place);
  }

  void visitAll(YamlNode& children, int64_t x, int64_t y, Links& links) {
    for (YamlNode& child : children.list)
      if (child.isMap()) visit(child, x, y, links);
  }

  // Of a group the word is about what lies in it.
  bool takesPart(const YamlNode& widget, Word word, bool isGroup) const {
    if (isHiddenAtFirst(widget) || word == Word::none) return false;
    if (word != Word::nothingSaid && !isGroup) return true;
    if (!widget.textOf("master").empty()) return false;  // it shows the focus of another
    return showsOrAnswersFocus(widget) || leads.contains(widget.textOf("name"));
  }

  void addLinks(Links& links, const YamlPlace& place) {
    if (links.widgets.size() > kMaxLinked) {
      errors.push_back(messageAt(place, "links: there are more than 4,096 widgets to link"));
      return;
    }
    for (size_t i = 0; i < links.widgets.size(); ++i)
      for (const Direction& direction : kDirections) {
        YamlNode& widget = *links.widgets[i].widget;
        if (widget.find(direction.link) || widget.find(direction.hook)) continue;
        const long to = neighbour(links.widgets, i, direction, links.wraps);
        if (to >= 0) addPair(widget, direction.link, nameOf(*links.widgets[size_t(to)].widget));
      }
  }

  // Its name, or one that is made for it.
  std::string nameOf(YamlNode& widget) {
    if (const YamlNode* name = widget.find("name")) return name->text;
    std::string name;
    do name = "link" + std::to_string(++namesMade);
    while (names.contains(name));
    addPair(widget, "name", name);
    return name;
  }

  void readNames(const YamlNode& widget) {
    names.insert(widget.textOf("name"));
    leads.insert(widget.textOf("master"));
    if (const YamlNode* children = widget.find("children"))
      for (const YamlNode& child : children->list) readNames(child);
  }

  YamlNode& page;
  std::vector<KitMessage>& errors;
  std::set<std::string> names;
  std::set<std::string> leads;  // names of widgets that others follow, and of the first to have the focus
  int namesMade = 0;
};

bool hasLinks(const YamlNode& widget) {
  if (findDirection(widget, "links")) return true;
  const YamlNode* children = widget.find("children");
  return children && std::any_of(children->list.begin(), children->list.end(), hasLinks);
}

}  // namespace

void linkNeighbours(YamlNode& source, std::vector<KitMessage>& errors) {
  YamlNode* page = findValue(source, "page");
  if (page && hasLinks(*page)) LinkWriter(*page, errors).run();
}
