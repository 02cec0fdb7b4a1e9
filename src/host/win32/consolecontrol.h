// The text control of the message console: the desktop's own edit control, whose positions count bytes and whose lines
// end at CR LF, as the console has it.
#pragma once

#include <windows.h>

#include <functional>

#include "host/editcontrol.h"

class ConsoleControl : public EditControl {
 public:
  // Fills a client area of width x height pixels of `parent`. False when the desktop can't make it.
  bool create(HWND parent, int width, int height);
  void resize(int width, int height, int factor);  // pixels; the font grows by the factor

  // Called on Enter with what the control itself does with the key.
  std::function<void(const std::function<void()>& breakLine)> onEnter;

  HWND window() const { return edit; }

  int textLength() const override;
  std::string text() const override;
  int lineCount() const override;
  int lineIndex(int line) const override;
  int lineFromChar(int position) const override;
  int lineLength(int position) const override;
  EditSelection selection() const override;
  void select(EditSelection selection) override;
  void replaceSelection(std::string_view text) override;

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM word, LPARAM data);
  int ask(UINT message, WPARAM word = 0, LPARAM data = 0) const;

  HWND edit = nullptr;
  WNDPROC oldEditProc = nullptr;
  int fontFactor = 0;  // of the font that the control has
};
