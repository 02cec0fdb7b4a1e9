#include "gfx/foundation/hsrefcnt.h"

#include "gfx/foundation/hsdebug.h"

hsRefCnt::~hsRefCnt() {
  const bool last = fRefCnt == 1;
  fRefCnt = 0;
  hsAssert(last, "fRefCnt != 1");
}

void hsRefCnt::UnRef() const {
  hsThrowIfFalse(fRefCnt >= 1);
  if (fRefCnt == 1)
    delete this;
  else
    --fRefCnt;
}
