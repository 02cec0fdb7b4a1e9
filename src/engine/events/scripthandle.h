// The number by which scripts' wrappers know something native.
//
// A wrapper holds the number and never a pointer. When the native thing goes, the number is released, and every
// wrapper that has it is inactive.
#pragma once

#include <cstdint>

struct BobInterp;

class ScriptHandle {
 public:
  void make(BobInterp* owner, void* pointer);  // a number for the pointer, unless there is one already
  void release();
  uint32_t number() const { return handle; }  // 0 while there is none

 private:
  BobInterp* interp = nullptr;
  uint32_t handle = 0;
};
