// Curves cut where their direction in Y changes, so that each piece only falls or only rises.
#pragma once

#include "gfx/foundation/hspoint.h"

// How many pieces there are, 1 or 2; neighbours share a point.
int32_t hsChopQuadMonotone(const hsPoint quad[3], hsPoint pieces[5]);
// 1 to 3.
int32_t hsChopCubicMonotone(const hsPoint cubic[4], hsPoint pieces[10]);
