// Text styles of a page.
#pragma once

#include "engine/pagefile.h"

struct Frame;

// Builds the frame's styles from the table. 0 when memory runs out.
int stylesLoad(Frame* frame, const PageTable& table);
void stylesFree(Frame* frame);
