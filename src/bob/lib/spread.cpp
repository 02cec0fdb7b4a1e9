#include "bob/lib/spread.h"

#include "bob/heap/stack.h"
#include "bob/model/vectors.h"

BobValue bobLastVectorArgument(BobInterp* interp, const uint32_t* argv, int argc) {
  const BobValue vector = argv[-argc];
  if (interp->recordOf(vector)->base != kBobVector) bobRaise(interp, kBobWrongType, vector);
  return vector;
}

int bobPushElements(BobInterp* interp, BobValue vector) {
  const uint32_t size = bobVectorSize(interp, vector);
  const uint32_t* elements = bobVectorElements(interp, vector);
  bobCheckStack(interp, size);
  for (uint32_t i = 0; i < size; ++i) bobPush(interp, elements[i]);
  return int(size);
}
