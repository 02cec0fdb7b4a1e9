// All texts that a page shows, each in every style that its widget gives it, with the place where the player draws it.
//
// A text is there twice when a script has set another one as the page opened: as the page says it, and as it is.
#pragma once

#include <string>
#include <vector>

#include "engine/base/bounds.h"
#include "engine/text/textstyle.h"
#include "kit/check/checkedpage.h"
#include "kit/check/openedpage.h"

struct PageText {
  const CheckedWidget* widget;
  const Widget* made;
  YamlPlace place;
  std::string text;
  TextStyle style;
  Bounds box;              // the widget's, on the screen
  Bounds drawn;            // the text's; of a wrapped one its lines
  bool multiline = false;  // wrapped to the box
};

std::vector<PageText> pageTexts(const CheckedPage& page, OpenedPage& opened);
