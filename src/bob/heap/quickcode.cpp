#include "bob/heap/quickcode.h"

#include "bob/heap/raise.h"

namespace {

constexpr uint32_t kMaxQuickCodes = 0xFFFF;  // the number has 16 bits

uint32_t freeNumber(BobInterp* interp) {
  for (size_t i = 0; i < interp->quickCodes.size(); ++i)
    if (!interp->quickCodes[i]) return uint32_t(i + 1);
  interp->quickCodes.emplace_back();
  return uint32_t(interp->quickCodes.size());
}

}  // namespace

BobQuickCode& bobKeepQuickCode(BobInterp* interp, BobValue code, std::unique_ptr<BobQuickCode> quick) {
  const uint32_t number = freeNumber(interp);
  if (number > kMaxQuickCodes) bobRaise(interp, kBobInsufficientMemory);
  interp->quickCodes[number - 1] = std::move(quick);
  interp->words(code)[BobLayout::kCodeCount] |= number << 16;
  return *interp->quickCodes[number - 1];
}

void bobMarkQuickCode(BobInterp* interp, uint32_t number) {
  if (number) interp->quickCodes[number - 1]->marked = true;
}

void bobSweepQuickCode(BobInterp* interp) {
  for (auto& quick : interp->quickCodes) {
    if (!quick) continue;
    if (!quick->marked)
      quick.reset();
    else
      quick->marked = false;
  }
}
