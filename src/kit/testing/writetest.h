// A test made of what somebody did with a page.
#pragma once

#include <string>

#include "kit/run/recording.h"

struct NewTest {
  std::string name;     // empty: named after its file
  std::string page;     // relative to the test file
  std::string picture;  // that the screen shows in the end, relative to the test file; empty for none
  std::string focus;    // the widget that has the focus in the end; empty: not asked for
};

// The text of a test file that does the steps of the recording and expects what the test says.
std::string testOf(const Recording& recording, const NewTest& test);
