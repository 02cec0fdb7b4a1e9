// Path effects: a path becomes another before it is drawn.
#pragma once

#include "gfx/foundation/hsflattenable.h"

class hsPath;

class hsGPathEffect : public hsGSizedFlattenable {};
