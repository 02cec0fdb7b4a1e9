// The redraw queue: widgets that want to be drawn, in the order in which they first asked.
#pragma once

#include <cstdint>

struct Widget;

// Queues the widget, if it isn't, and sets `bits` (kWidgetFullRedraw, kWidgetContentRedraw) in its flags.
void widgetMarkDirty(Widget* widget, uint32_t bits);

void redrawRemove(Widget* widget);  // if it is queued
bool redrawPending();

// Sends every queued widget its draw events, those that are queued meanwhile included.
void redrawDrain();

void redrawReset();  // forgets the queue, at the end of the engine
