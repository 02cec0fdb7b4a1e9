#include "gfx/foundation/hsflattenable.h"

int32_t hsFlattenable::Flatten(void*) const { return 0; }
