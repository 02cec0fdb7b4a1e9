// Where the keys lead on a page that is open: what each widget does with each direction, and what the focus reaches.
//
// Only what is certain counts: a script that runs in place of a move may do anything. The digit keys go to the first
// nine widgets of a page wherever those lie.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/inspect.h"

struct FocusWay {
  std::string_view direction;  // the attribute: up ... downRight
  int x, y;                    // -1, 0 or 1
};
const FocusWay& focusWay(std::string_view direction);

enum class ArrowState {
  followed,
  script,       // one runs in place of the move
  takenByKind,  // the key changes its value, or moves its lines
  staysInside,  // the page inside has the focus and takes the key
};

struct FocusWidget {
  WidgetView view;
  std::vector<LinkView> links;  // of all eight directions
  bool answersFocus = false;    // it shows the focus, or something happens there by a key
  bool isTypedInto = false, hasFocusInside = false;

  ArrowState stateOf(const LinkView& link) const;
};

class FocusWays {
 public:
  // Of the page in that frame; 0 for the innermost one that keys go to.
  explicit FocusWays(Engine& engine, WidgetId frame = 0);

  WidgetId frame() const { return itsFrame; }
  // The page's `start` or, without one, what has the focus; 0 for neither.
  WidgetId start() const { return itsStart; }
  // A `start` that no widget of the page has as its name.
  const std::string& missingStart() const { return itsMissingStart; }

  const std::vector<FocusWidget>& widgets() const { return all; }     // in the order of the page
  const std::vector<size_t>& digits() const { return digitTargets; }  // where they lead, from 1: places among these
  WidgetId named(const std::string& name) const;                      // that the player finds; 0 for none

  // From the start on, by direction keys or by digits, too: places among the widgets.
  std::set<size_t> reached(bool withDigits) const;
  size_t placeOf(WidgetId id) const { return places.at(id); }

 private:
  WidgetId innermost() const;
  const FrameView* findFrame(WidgetId id) const;
  void readWidgets(Engine& engine);
  void readOrder();
  void findStart();

  std::vector<FrameView> frames;
  WidgetId itsFrame = 0, itsStart = 0;
  std::string itsMissingStart;
  std::vector<FocusWidget> all;
  std::map<WidgetId, size_t> places;
  std::map<std::string, WidgetId> names;
  std::vector<size_t> digitTargets;
};
