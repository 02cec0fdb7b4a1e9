// Rows of the engine's frame buffer to the desktop's 0x00RRGGBB, pixel by pixel as yCrCbToRgb says.
#pragma once

#include <cstdint>

// 16-bit video pixels, height rows of width; either side's rows lie stride pixels apart.
void convertVideoRows(const uint16_t* source, uint32_t* destination, int stride, int width, int height);
// The same without the instructions that only some processors have.
void convertVideoRowsPlain(const uint16_t* source, uint32_t* destination, int stride, int width, int height);

// Indices into 256 desktop colours.
void convertIndexedRow(const uint8_t* source, uint32_t* destination, int count, const uint32_t* palette);
