// Whether a page file has all of its parts.
//
// What a page refers to beyond its end is absent for the player, without a message; an author wants to hear of it.
#pragma once

#include <cstdint>
#include <vector>

inline constexpr char kPageIsCutShort[] = "is cut short or damaged: parts of it lie beyond its end";

// Whether anything that the page refers to lies beyond its end, as when a file has been copied in part. False for what
// is no page at all.
bool pageIsCutShort(std::vector<uint8_t> bytes);
