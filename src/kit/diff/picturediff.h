// Where two pictures differ, how much, and what to show of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/base/bounds.h"
#include "kit/pictures/picture.h"

struct PictureDiffOptions {
  int tolerance = 0;           // how far each of red, green, blue and alpha may be off, of 255
  std::vector<Bounds> masked;  // these don't count
};

struct PictureDiff {
  uint64_t pixels = 0;  // that differ
  Bounds bounds;        // around them
  int most = 0;         // the largest difference of a channel among them
  bool sameSize = true;
};

// Pictures of different sizes are compared where both are; what only one has differs.
PictureDiff comparePictures(const Picture& a, const Picture& b, const PictureDiffOptions& options = {});

// The first picture, pale, with the pixels that differ in red and what is masked in blue; without alpha.
Picture pictureOfDifference(const Picture& a, const Picture& b, const PictureDiffOptions& options = {});

// "12 pixels differ, in 10x4 at 30,40, by 200 at most", for people; empty when nothing does.
std::string differenceText(const PictureDiff& diff, const Picture& a, const Picture& b);

// A part of the picture; what lies outside of it is black.
Picture cropPicture(const Picture& picture, const Bounds& area);
