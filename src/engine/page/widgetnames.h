// The widgets of a page by name, in step with the frame's list: of several of one name the first in the list is found.
#pragma once

#include <string_view>
#include <unordered_map>

struct Widget;

class WidgetNames {
 public:
  void append(Widget* widget);     // which is the list's last now
  void takeFirst(Widget* widget);  // which was the list's first
  void clear() { chains.clear(); }

  Widget* find(std::string_view name) const;  // null if there is none

 private:
  struct Chain {
    Widget* first;
    Widget* last;
  };
  std::unordered_map<std::string_view, Chain> chains;  // names lie in the page's bytes
};
