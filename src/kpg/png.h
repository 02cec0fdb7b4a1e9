// PNG pictures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Writes width x height pixels 0x00RRGGBB, rows from the top. Throws CommandError.
void writePng(const std::string& path, int width, int height, const std::vector<uint32_t>& pixels);
