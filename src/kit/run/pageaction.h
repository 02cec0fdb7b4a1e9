// What a user can do with a page.
#pragma once

#include <cstdint>
#include <string>

struct PageAction {
  enum Kind {
    key,   // press the key of that name, until all is drawn
    wait,  // let so many milliseconds pass
    eval,  // type the text at the console and press Enter, until all is drawn
  } kind;
  std::string argument;

  bool operator==(const PageAction&) const = default;
};

inline constexpr int64_t kLongestWait = 1'000'000'000;  // milliseconds
