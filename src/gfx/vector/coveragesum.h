// A row of coverage from where it changes.
#pragma once

#include <cstdint>

constexpr int32_t hsCoverageLanes = 16;  // pixels that are summed up together

// Each of count pixels' coverage is the sum of the changes up to it; no changes are left. count is a multiple of
// hsCoverageLanes. A sum that isn't a byte is cut and reported. Mostly nothing changes, so that is fast.
void hsSumUpCoverage(int16_t* changes, uint8_t* coverage, int32_t count);
// The same without the instructions that only some processors have.
void hsSumUpCoveragePlain(int16_t* changes, uint8_t* coverage, int32_t count);
