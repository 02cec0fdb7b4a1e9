// The text of an edit control without a window: bytes, a selection, and lines that end at CR LF.
#pragma once

#include "host/editcontrol.h"

class EditText : public EditControl {
 public:
  int textLength() const override { return int(bytes.size()); }
  std::string text() const override { return bytes; }
  int lineCount() const override;
  int lineIndex(int line) const override;
  int lineFromChar(int position) const override;
  int lineLength(int position) const override;
  EditSelection selection() const override { return selected; }
  void select(EditSelection selection) override;
  void replaceSelection(std::string_view text) override;

 private:
  std::string bytes;
  EditSelection selected{0, 0};
};
