// What a file holds, as a short text: equal for equal contents. It finds changes, and is no proof against forgery.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

std::string contentHash(const std::vector<uint8_t>& bytes);

// Of a file; empty when it can't be read.
std::string fileHash(const std::string& path);

// Empty only when there is no such file; throws KitError when it can't be read.
std::string hashIfThere(const std::string& path);
