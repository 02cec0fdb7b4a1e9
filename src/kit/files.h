// Whole files, in and out. Errors are KitErrors.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

std::vector<uint8_t> readFile(const std::string& path);

// Writes beside the file and renames, so that whoever reads it finds the old bytes or the new ones, never half of them.
// What is no regular file, such as a pipe, is written into.
void writeFile(const std::string& path, const void* bytes, size_t size);
