// Whole files, in and out. Errors are CommandErrors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

std::vector<uint8_t> readFile(const std::string& path);
void writeFile(const std::string& path, const void* bytes, size_t size);
