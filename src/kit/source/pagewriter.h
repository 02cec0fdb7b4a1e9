// Compiled bytes of a page tree.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <vector>

#include "kit/source/pagetree.h"

// The layout depends on the tree alone: header, attribute names, records with their tables and scripts in the order in
// which they are met, then strings, each once. Throws std::length_error where a name would lie beyond 16 MB.
std::vector<uint8_t> writePage(const PageTree& page);
