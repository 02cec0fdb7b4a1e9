// A multi-line text control, as the message console uses one.
//
// Positions count bytes, and a line break is the two bytes CR LF. A line ends at CR LF only, however a control wraps
// what it shows.
#pragma once

#include <string>
#include <string_view>

struct EditSelection {
  int start;
  int end;  // the caret, when both are equal
  bool operator==(const EditSelection&) const = default;
};

class EditControl {
 public:
  virtual ~EditControl() = default;

  virtual int textLength() const = 0;
  virtual std::string text() const = 0;

  virtual int lineCount() const = 0;                 // at least 1
  virtual int lineIndex(int line) const = 0;         // position of the line's first byte; -1 when there is no such line
  virtual int lineFromChar(int position) const = 0;  // number of the line that holds the position
  virtual int lineLength(int position) const = 0;    // bytes of that line, without its CR LF

  virtual EditSelection selection() const = 0;
  // Cut to the text; {0, -1} selects everything.
  virtual void select(EditSelection selection) = 0;
  virtual void replaceSelection(std::string_view text) = 0;
};
