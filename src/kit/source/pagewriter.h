// Compiled bytes of a page tree.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <vector>

#include "kit/source/pagetree.h"

// Where the objects of a page were written, by the offsets of their records.
using PagePlaces = std::map<uint32_t, ObjectPlaces>;

// The layout depends on the tree alone: header, attribute names, records with their tables and scripts in the order in
// which they are met, then strings, each once. Throws std::length_error where a name would lie beyond 16 MB.
// `places`, if it isn't null, gets those of the records.
std::vector<uint8_t> writePage(const PageTree& page, PagePlaces* places = nullptr);
