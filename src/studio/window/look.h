// The studio's colours and measures: one accent, light and dark.
#pragma once

#include <QColor>
#include <QFont>

class QApplication;

struct Look {
  QColor window;    // behind everything
  QColor panel;     // of lists and the console
  QColor surround;  // around the screen
  QColor edge;      // lines between parts
  QColor text, faint;
  QColor accent, onAccent;
  QColor error, errorPanel, warning;
  QColor chosen;  // outlines what is chosen, over any page
};

const Look& look();

// Sets the whole application's palette and style sheet. To be called before windows are made, or again to change them.
void applyLook(QApplication& application, bool dark);
bool lookIsDark();

// Whether the desktop's own colours are dark.
bool desktopIsDark();

QFont fixedFont();

inline constexpr int kGap = 8;  // pixels between things that belong together
