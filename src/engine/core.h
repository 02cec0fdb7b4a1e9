// The page engine's start and its one step.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/target.h"

struct Frame;

// Gates most warnings about pictures, colour tables and scripts. Nothing changes it.
inline constexpr bool logVerbose = true;

// Starts everything, in order, over a block of memory for the image cache that must stay. Non-zero on success; a
// caller may go on without.
int engineInit(void* cacheMemory, size_t cacheSize);

// One turn: due timers, the redraw queue, a pending swap. To be called for ever.
void engineStep();

// Whether a step would do anything now beside firing timers.
bool engineBusy();

// The frame that fills the screen; it lives as long as the engine. Null before the start.
Frame* topFrame();

void requestSwap(int value);  // at the end of the next step

// Frees everything without a word, so that another engine can start in the same process.
void engineShutdown();
