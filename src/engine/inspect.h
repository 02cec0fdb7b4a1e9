// A running engine seen from outside: widgets, frames, timers, pictures, fonts and memory, as values.
//
// For windows, tests and profilers that look at a page; with the observer (engine/base/observer.h), which it includes,
// it is the one header that they need. A view is a copy and stays as it is when what it shows has changed or gone; a
// number of a widget that has gone finds nothing. Looking logs nothing and changes nothing that a page can see, so it
// is allowed at any time, from inside an observer too.
//
// What surprises: nothing is cut to what it lies in, and a widget that is redrawn paints over its children. So what is
// on top is what was drawn last, and views tell the order of drawing.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/observer.h"
#include "engine/format/attributes.h"

class Engine;

// ---- widgets

enum class WidgetKind { box, group, image, frame, text, number, slider, select, textContainer };

std::string_view widgetKindName(WidgetKind kind);  // as a page's `type`; empty for a box

struct WidgetView {
  WidgetId id = 0;
  WidgetId parent = 0;  // the widget that it lies in; of a page's root, its frame; 0 for the top frame
  WidgetId frame = 0;   // whose page it is on; 0 for the top frame
  int level = 0;        // below the top frame, through nested pages
  WidgetKind kind = WidgetKind::box;
  std::string name;     // empty for none
  uint32_t record = 0;  // where its page's file has it; 0 for the top frame, which is on none
  Bounds given;         // its rectangle as the page says, relative to the parent's corner
  Bounds place;         // the same as it is now
  Bounds bounds;        // on the screen
  bool isRoot = false;

  bool contentHidden = false, backgroundHidden = false;
  bool focused = false;                              // of its frame
  bool highlighted = false;                          // shows as focused: it is, or its master
  bool active = false;                               // a frame that hears posted events
  bool redrawWaits = false;                          // will be redrawn in the next step
  uint64_t drawnAs = 0;                              // greater for what was drawn later; 0 for never
  bool takesUpDown = false, takesLeftRight = false;  // such keys change its value in place of the focus

  std::optional<uint32_t> bgColor;  // engine colours
  std::string background;           // picture; empty for none
  std::string text;                 // that it says now: an echo, figures, the current choice, the selected line
  std::string style;                // by which; empty for none, and for one that a script has made
  std::string picture;              // of an image that it shows now
  ImageRefusal pictureRefusal = ImageRefusal::none;  // of that picture, when it was last asked for
  std::optional<int32_t> value;                      // of numbers and sliders
  size_t count = 0;                                  // of choices or lines
  std::optional<size_t> selected;                    // of them, from 0
};

// All, each before what lies in it, in the order of the page.
std::vector<WidgetView> inspectWidgets(Engine& engine);
std::optional<WidgetView> inspectWidget(Engine& engine, WidgetId id);

enum class ValueOrigin {
  byDefault,
  page,
  refused,  // the page has it, with a type that its reader refuses, so the default counts
  changed,  // by a script, a key or a timeout: it differs from what the page says, or from the default
};

struct AttributeView {
  std::string name;
  AttributeKind kind;
  ValueOrigin origin;
  std::string text;               // as an author writes it; for scripts and tables empty
  std::optional<int64_t> number;  // of integers, booleans and colours; bytes of a script, entries of a table
};

inline constexpr char kUnnamedStyle[] = "(from a script)";  // the text for a style that the page doesn't have

// Every attribute that the widget can have, in the order of attributeRows, with the value that counts now. Defaults
// that depend on others are given in the guide's words.
std::vector<AttributeView> inspectAttributes(Engine& engine, WidgetId id);

struct LinkView {
  std::string_view direction;  // the attribute: up ... downRight
  std::string name;            // as the page says; empty for none
  WidgetId target = 0;         // where the key leads, by whichever link is followed; 0 for nowhere
  bool script = false;         // a script runs in place of the move
};

// The eight directions of a widget, for when it has the focus.
std::vector<LinkView> inspectLinks(Engine& engine, WidgetId id);

struct WidgetDetails {
  WidgetView view;
  std::vector<AttributeView> attributes;
  std::vector<LinkView> links;
};

// Shows every widget on the frame's page to `look`, one at a time, in the order of inspectWidgets. Many are looked at
// faster so than by their numbers, each of which is searched for.
void inspectPage(Engine& engine, WidgetId frame, const std::function<void(WidgetDetails)>& look);

// The lines of a text as they are drawn. Measures as drawing does, so it can fill the glyph cache.
std::vector<std::string> inspectTextLines(Engine& engine, WidgetId id);

// ---- what is seen

// Those whose rectangle has the point, the topmost first; hidden ones at the end.
std::vector<WidgetId> widgetsAt(Engine& engine, int32_t x, int32_t y);

enum class Unseen {
  notDrawn,          // not since it was made
  contentHidden,     // by the page, a script or a timeout
  zeroSize,          // and nothing that shows without a size
  outsideScreen,     // wholly
  covered,           // wholly, by what was drawn later: `by`
  nothingToShow,     // a box without background, an image without a name for its present state, no choices or lines
  emptyText,         //
  noStyle,           // none named, or none for the highlighted state: `what` is the name of one that is missing
  fontMissing,       // `what` is the file; empty when the style names none
  fontUnusable,      // `what` is the file
  pictureRefused,    // `what` is the name, `refusal` the reason
  transparentColor,  // of the text, or of a box
  sameColor,         // as what it lies on, for certain
};

struct UnseenReason {
  Unseen why;
  std::vector<WidgetId> by;
  std::string what;
  ImageRefusal refusal = ImageRefusal::none;
};

// What keeps the widget's content from being seen; nothing when it is all in order, or not known.
std::vector<UnseenReason> whyNotSeen(Engine& engine, WidgetId id);

// Of all widgets, in the order of inspectWidgets; faster than one by one, and without who covers whom.
std::vector<std::vector<UnseenReason>> whyNotSeen(Engine& engine);

// ---- pages

enum class PageState { empty, loading, loaded, unloading };

struct FrameView {
  WidgetId id = 0;
  WidgetId around = 0;  // the frame around it; 0 for the top one
  std::string name;     // of the frame
  std::string page;     // file; empty when the frame is
  PageState state = PageState::empty;
  bool eightBit = false;
  size_t widgets = 0;  // of the page, without those of pages in it
  WidgetId focus = 0;
  std::string colorTable, start;  // as the page says
};

std::vector<FrameView> inspectFrames(Engine& engine);  // each before those in it

enum class FontState { missing, unusable, unused, usable };  // unused: not opened by any text so far

struct StyleView {
  WidgetId frame = 0;
  std::string name;
  std::string font;  // file, as the page says; empty for none
  FontState fontState = FontState::missing;
  uint16_t size = 0;  // pixels
  uint32_t color = 0;
  std::optional<uint32_t> bgColor;
  bool antialias = false, gridfit = false, underline = false;
  int32_t horScale = 0, letterExtra = 0, spaceExtra = 0;  // 16.16
};

std::vector<StyleView> inspectStyles(Engine& engine);

struct FontView {
  std::string file;
  size_t bytes = 0;
  FontState state = FontState::unused;
};

std::vector<FontView> inspectFonts(Engine& engine);

struct TimerView {
  TimerIdentity identity;
  uint32_t due = 0;  // on the host's clock, in milliseconds
  uint32_t interval = 0;
  bool repeats = false;
  std::string callback;  // of a script's timer, as a traceback names it; empty for one without a name
};

std::vector<TimerView> inspectTimers(Engine& engine);  // those that wait, the next first

// ---- memory

struct HeapView {
  uint32_t spaceBytes = 0, usedBytes = 0;  // dead objects count until the next collection
  uint32_t stackWords = 0, stackUsed = 0;
  uint32_t collections = 0;  // so far
  uint32_t nativeBytes = 0;  // as the collector reports it
  size_t handles = 0;        // ever in use at the same time
};

HeapView inspectHeap(Engine& engine);

struct CachedImageView {
  std::string name;
  uint32_t width = 0, height = 0;  // pixels
  uint32_t offset = 0, bytes = 0;  // in the block
  bool ownColors = false;
};

struct ImageCacheView {
  uint32_t blockBytes = 0, tableBytes = 0;
  uint32_t freeBytes = 0;                // between the table and the pictures; what was freed comes back later
  std::vector<CachedImageView> entries;  // the first is thrown out first
};

ImageCacheView inspectImageCache(Engine& engine);

struct GlyphCacheView {
  int32_t strikes = 0, mostStrikes = 0;      // one too many empties the cache
  uint32_t imageBytes = 0, budgetBytes = 0;  // ever made; beyond the budget each is reported on standard output
  uint32_t cleared = 0;                      // how often
};

GlyphCacheView inspectGlyphCache(Engine& engine);
