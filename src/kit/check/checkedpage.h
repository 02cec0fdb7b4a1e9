// A page's tree laid out for the checks: its widgets in one list, with the rectangles and names that the player gives
// them.
//
// The player finds a widget by its name only once it is complete, its children before itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "kit/source/pagetree.h"

struct CheckedWidget {
  const PageNode* node;
  std::string type;  // empty for a plain box
  std::string name;  // empty for none
  std::string label;
  int32_t x, y, width, height;  // on the screen, in pixels
  size_t around;                // the number of the widget that it lies in; the root's own for the root
  size_t begins, ends;          // when the player begins to make it, and when it is complete

  // The first attribute of that name counts.
  const PageValue* find(std::string_view attribute) const;
  bool has(std::string_view attribute) const { return find(attribute); }
  std::string text(std::string_view attribute) const;  // empty when it is missing, or no text
  std::optional<int32_t> number(std::string_view attribute) const;
  bool isTrue(std::string_view attribute) const;
  // Of the attribute's key; the widget's own without one.
  YamlPlace place(std::string_view attribute = {}) const;
};

// A text style as the player reads it.
struct CheckedStyle {
  static constexpr int32_t kUnscaled = 0x10000;

  const PageNode* node;
  std::string name = "default", font, encoding = "utf8";  // the font is empty for none
  int32_t size = 24, horScale = kUnscaled;
  bool antialias = false, gridfit = false;

  explicit CheckedStyle(const PageNode& node);
  // What glyphs are chosen by. They are kept as long as none of this changes, the encoding left aside.
  auto look() const { return std::tie(font, size, horScale, antialias, gridfit); }
  YamlPlace place(std::string_view attribute = {}) const;
};

class CheckedPage {
 public:
  explicit CheckedPage(const PageTree& tree);

  const PageTree& tree;
  std::vector<CheckedWidget> widgets;  // in the order of the source; the first is the root
  std::vector<size_t> complete;        // the same, in the order in which the player completes them

  std::vector<CheckedStyle> styles;  // in the order of the source

  const CheckedWidget& root() const { return widgets.front(); }
  // A smaller page is taken for one that a frame shows.
  bool fillsScreen() const;
  // The one that the player finds; nothing for a name that none has.
  std::optional<size_t> named(std::string_view name) const;
  const CheckedStyle* style(std::string_view name) const;  // null for a name that none has

 private:
  void add(const PageNode& node, size_t around, size_t number, int depth);

  std::map<std::string, size_t, std::less<>> names, styleNames;
  size_t clock = 0;
};
