// Rows of the engine's frame buffer to the desktop's 0x00RRGGBB, pixel by pixel as yCrCbToRgb says.
#pragma once

#include <cstdint>

// 16-bit video pixels.
void convertVideoRow(const uint16_t* source, uint32_t* destination, int count);
// The same without the instructions that only some processors have.
void convertVideoRowPlain(const uint16_t* source, uint32_t* destination, int count);

// Indices into 256 desktop colours.
void convertIndexedRow(const uint8_t* source, uint32_t* destination, int count, const uint32_t* palette);
