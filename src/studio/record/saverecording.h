// Saves what was done with a page, as the name of the file asks for: a test of the page (.test.yaml), a film (.gif or
// .png), or else a recording.
#pragma once

#include <string>

#include "kit/run/recording.h"

// `page` is the page or page source that it was done with. A test expects what the screen shows in the end, in a
// picture beside it, and the focus. Throws KitError; then nothing is written. A picture that is there is not written
// over.
void saveRecording(const Recording& done, const std::string& page, const std::string& file);
