// Makes every allocation of the test program fail for the length of a scope. Nothing in that scope may build a string.
#pragma once

class NoMemory {
 public:
  NoMemory() { now = true; }
  ~NoMemory() { now = false; }

  static bool now;
};
