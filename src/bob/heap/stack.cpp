#include "bob/heap/stack.h"

using namespace BobLayout;

namespace {

// Copies what the frame refers to and returns the address after it.
uint32_t* scanFrame(BobInterp* interp, uint32_t* frame) {
  const auto copy = [interp](uint32_t& word) { word = interp->moved(word); };
  const bool isBlock = bobFrameRecord(frame) == kBlockFrame;
  uint32_t* environment = frame + (isBlock ? int(kBlockFrameEnvironment) : int(kFrameEnvironment));
  if (isBlock) {
    copy(frame[kBlockFrameEnv]);
  } else {
    copy(frame[kFrameEnv]);
    copy(frame[kFrameScope]);
    if (frame[kFrameCode]) copy(frame[kFrameCode]);
  }
  const uint32_t count = environment[kEnvCount];
  // Once moved its words are dead. Whatever still points here is led on to the heap by this collection, by the link in
  // its first slot, which must stay as it is for that.
  if (environment[0] == kBobStackEnvironment)
    for (uint32_t i = 0; i < count; ++i) copy(environment[kEnvNext + i]);
  return environment + kEnvNext + count;
}

}  // namespace

void bobCopyStack(BobInterp* interp) {
  uint32_t* frame = interp->fp;
  for (uint32_t* p = interp->sp; p < interp->stackTop;) {
    if (p == frame) {
      frame = interp->words(p[kFramePrevious]);
      p = scanFrame(interp, p);
    } else {
      *p = interp->moved(*p);
      ++p;
    }
  }
}
