// Readers of picture files. Each gives the handle of a new picture in the cache, or 0; what went wrong is logged.
#pragma once

#include <cstdint>

uint32_t kpxRead(const char* name);
uint32_t gifRead(const char* name);
