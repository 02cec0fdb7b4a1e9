// Where the widgets of a running page were written.
//
// A page that was compiled for the run has its places with it. One that lies built on the disk, as pages inside others
// do, is compiled once more from the source beside it or the project's, and that source counts when its bytes come out
// the same.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/inspect.h"
#include "kit/run/pagerun.h"
#include "kit/source/schema.h"

struct WidgetSource {
  ObjectPlaces places;
  std::shared_ptr<const std::string> text;  // of the object's file when the page was built, in which its place counts
  ObjectKind object = ObjectKind::widget;   // or root
  std::string type;                         // of widget, as the page says
  bool isIndexed = false;                   // of an 8-bit page
  Bounds given;                             // its rectangle as the page says
  size_t sharedBy = 1;  // objects of the page that this source makes: several by a template, a repetition, an anchor
};

// Of one run, to be made when its page has just been opened; a reload needs a new one.
class WidgetSources {
 public:
  explicit WidgetSources(PageRun& run);

  // Nothing for what no source is known of: the top frame, and pages that were built elsewhere.
  std::optional<WidgetSource> of(WidgetId id);

  // Where the attribute was written; nothing if it wasn't, or nobody knows.
  std::optional<YamlPlace> placeOf(WidgetId id, const std::string& attribute);

 private:
  const PagePlaces& placesOf(const std::string& page);
  void readTexts(const std::vector<std::string>& files);

  PageRun& run;
  std::map<std::string, PagePlaces> built;  // by the pages' full names; empty for those without a source
  std::map<std::string, std::shared_ptr<const std::string>> texts;
};

// Of the attribute, or else null.
const YamlPlace* findPlace(const ObjectPlaces& places, const std::string& attribute);

// "menu.yaml:12", without the folder.
std::string shortPlace(const YamlPlace& place);
