// What somebody did with a page, as a file that can be played again: keys, pauses and lines of the console.
//
//   page: guide.yaml
//   steps:
//     - key: Right
//       repeat: 3
//     - wait: 1200
//     - eval: x = 3;
//
// Each step is one action of `kpg shot`; with `repeat` it is done so many times.
#pragma once

#include <string>
#include <vector>

#include "kit/run/pageaction.h"

struct Recording {
  std::string page;  // relative to the recording's file; may be empty
  std::vector<PageAction> actions;

  // Appends; pauses that follow each other become one, and none of 0 milliseconds is kept.
  void add(const PageAction& action);
};

// Throws KitError with every fault.
Recording readRecording(const std::string& file);

// Equal keys that follow each other become one step with `repeat`.
std::string recordingText(const Recording& recording);
