// A page under test: what is done with it is remembered, and what the tests look at is found by the names of widgets.
//
// A widget of a page in a frame is named FRAME/WIDGET; a name alone is the first of all pages.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/inspect.h"
#include "kit/pictures/picture.h"
#include "kit/run/pagerun.h"

class TestedPage {
 public:
  explicit TestedPage(const PageRunOptions& options) : run(options) {}

  void act(const PageAction& action);

  struct Answer {
    bool isValue;
    std::string text;  // the value as the console prints it, or what is wrong
  };
  // An expression as a line of the console. newLines and newComplaints don't have the answer.
  Answer evaluate(const std::string& expression);

  // Lines that were logged since this was last called, but blank ones and those that say what is loaded.
  std::vector<std::string> newLines();

  // What the system complained of since this was last called.
  std::vector<std::string> newComplaints();

  std::optional<WidgetView> widget(const std::string& name);
  // "FRAME/WIDGET", as far down as the focus leads; nothing if there is none. A widget without a name is "?".
  std::optional<std::string> focus();

  // After a collection.
  HeapView heap();
  size_t imageCacheBytes();

  Picture screen();

  PageRun run;
  std::vector<PageAction> history;  // all that was done since the page was loaded

 private:
  void takeLog();

  std::string unseen;  // log that newLines hasn't returned
  size_t logTaken = 0, complaintsTaken = 0;
};
