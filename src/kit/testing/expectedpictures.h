// Pictures that tests expect, read once and shared by threads. Those that were read first are dropped when there are
// too many, so memory doesn't grow with the number of pictures.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "kit/pictures/picture.h"

class ExpectedPictures {
 public:
  // Null if there is no such file. Throws KitError for one that is no picture.
  std::shared_ptr<const Picture> read(const std::string& path);

 private:
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<const Picture>> kept;
  std::deque<std::string> order;
  size_t pixels = 0;  // of those that are kept
};
