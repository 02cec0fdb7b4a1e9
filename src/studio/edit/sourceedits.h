// Changes that the inspector makes to page sources: texts in memory, with undo and redo, written back when asked.
//
// Everything but the changed value stays as its author wrote it. A value that comes from a template is overridden where
// the template is used. What is inside a template or a repetition shares its source with others, and all of them
// change: WidgetSource::sharedBy says how many, for whoever wants to ask first. What the source computes, or a layout
// places, is not overwritten.
//
// What surprises: a file that somebody else has changed meanwhile is neither edited nor written over. Once the page has
// been built from it, its edits can no longer be undone.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "studio/inspector/widgetsources.h"

struct SourceValue {
  std::string key;
  std::optional<std::string> text;  // none removes the key
};

class SourceEdits {
 public:
  // These throw KitError with a sentence, and then nothing has changed.

  // The value is what an author would write: a text without quotes, a number, a colour, true or false.
  void setAttribute(const WidgetSource& widget, const std::string& name, const std::string& value);
  // So that its default counts, or what its template says.
  void removeAttribute(const WidgetSource& widget, const std::string& name);
  // In what the widget lies in; cut to what a page can hold. Steps in a row with one `drag`, if it isn't 0, are one.
  void setBounds(const WidgetSource& widget, const Bounds& place, uint32_t drag = 0);

  // What there is to undo and to redo, as people call it: "value of 'title'"; empty for nothing.
  std::string undoName() const { return next > 0 ? steps[next - 1].name : ""; }
  std::string redoName() const { return next < steps.size() ? steps[next].name : ""; }
  void undo();  // these do nothing when there is nothing
  void redo();

  std::vector<std::string> unsavedFiles() const;           // sorted
  const std::string* text(const std::string& file) const;  // as edited; null for one that wasn't

  const std::string* unsavedText(const std::string& file) const;  // null for one that is as on the disk

  // All files or none. Throws KitError for one that somebody else has changed, and for one that can't be written.
  void save();
  // Gives up what hasn't been saved, and all that could be undone in those files.
  void revert();
  // To be called after a reload: what others have changed can no longer be undone, unless something waits to be saved.
  void lookAtDisk();

 private:
  struct File {
    std::string built;  // when the page was built: places count in it
    std::string saved;  // what is to be found on the disk
    std::string text;
  };
  struct Step {
    std::string name, file, before, after;
    uint32_t drag;
  };
  File fileOf(const WidgetSource& widget) const;
  bool isOurs(const std::string& file, const std::string& text) const;
  void change(const WidgetSource& widget, const std::vector<SourceValue>& values, const std::string& name,
              uint32_t drag);
  void addStep(Step step);
  void forget(const std::string& file);

  std::map<std::string, File> files;
  std::vector<Step> steps;
  size_t next = 0;  // the step to redo
};
