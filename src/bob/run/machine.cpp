#include "bob/run/machine.h"

#include "bob/run/callsteps.h"
#include "bob/run/numbersteps.h"
#include "bob/run/objectsteps.h"
#include "bob/run/plainsteps.h"
#include "bob/run/registers.h"

namespace {

// False when the loop is to end.
template <BobQuickOp kQ>
BOB_STEP bool goOnAfter(BobRegisters& r) {
  if constexpr (kQ == kQReturn || kQ == kQReturnVar || kQ == kQReturnAny) {
    return step(r, BobOp<kQ>{});
  } else {
    step(r, BobOp<kQ>{});
    return true;
  }
}

}  // namespace

// Each instruction ends by jumping straight to the next one's code, by a table of addresses: the processor predicts
// such a jump by the instruction that it ends, which it couldn't if all of them came from one place.
void bobExecute(BobInterp* const interp) {
#define BOB_ADDRESS(name) &&do##name,
  static const void* const kAddresses[256] = {BOB_QUICK_OPS(BOB_ADDRESS)};
  BobRegisters r(interp);
#define BOB_NEXT() goto* kAddresses[r.take()]
#define BOB_INSTRUCTION(name)                      \
  do ##name : if (!goOnAfter<kQ##name>(r)) return; \
  BOB_NEXT();
  BOB_NEXT();
  BOB_QUICK_OPS(BOB_INSTRUCTION)
}
