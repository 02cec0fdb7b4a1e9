// The text control of the message console.
//
// A line break is one position in the document and two to the shell, so a byte position is the document's plus the
// number of lines above it.
#pragma once

#include <QPlainTextEdit>
#include <functional>

#include "host/editcontrol.h"

class ConsoleEdit : public QPlainTextEdit, public EditControl {
 public:
  explicit ConsoleEdit(QWidget* parent);

  // Called on Enter with what the control itself does with the key.
  std::function<void(const std::function<void()>& breakLine)> onEnter;

  int textLength() const override;
  std::string text() const override;
  int lineCount() const override;
  int lineIndex(int line) const override;
  int lineFromChar(int position) const override;
  int lineLength(int position) const override;
  EditSelection selection() const override;
  void select(EditSelection selection) override;
  void replaceSelection(std::string_view text) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int bytePosition(int documentPosition) const;
  int documentPosition(int bytePosition) const;

  bool heldReturn = false;  // a CR that waits for what follows it
};
