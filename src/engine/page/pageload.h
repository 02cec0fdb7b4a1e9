// Loading and unloading a frame's page.
//
// Any step of a load that runs a script may find afterwards that the frame has been unloaded, loaded again or
// destroyed. The load then stops and leaves the frame to whoever took it.
#pragma once

#include "engine/page/frame.h"

// Makes a frame and loads the page that its record's `src` names; that load's result is ignored, so a nested frame
// whose page is missing still exists. Null on failure.
WidgetPtr<Frame> frameCreate(WidgetOwner* owner, Widget* parentWidget, PageObject record);

// Loads the page, over the present one if there is one. 1 on success; otherwise the log says why and the frame is
// empty. `path` must stay put while the page loads.
int frameLoad(Frame* frame, const char* path);

void frameUnload(Frame* frame);

// What scripts call: 0 when there is no page or it is being unloaded already; else unloads and has the area cleared.
int frameUnloadAndClear(Frame* frame);
