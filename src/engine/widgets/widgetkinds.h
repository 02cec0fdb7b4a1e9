// All widget kinds that pages can name.
#pragma once

#include "engine/page/widgettypes.h"

void addWidgetKinds(WidgetTypes& types);
