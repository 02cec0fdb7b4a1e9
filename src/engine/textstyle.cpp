#include "engine/textstyle.h"

// No widget draws text yet, so a page's styles are passed over.

int stylesLoad(Frame*, const PageTable&) { return 1; }

void stylesFree(Frame*) {}
