// What the player refuses about a page without saying so.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/page/frame.h"
#include "kit/errors.h"

inline constexpr char kPageHasTooManyWidgets[] = "holds more than 65,536 widgets; the player doesn't load it";

// Whether the player would make more widgets of it than it may, or than `most`. False for what is no page at all.
bool pageHasTooManyWidgets(std::vector<uint8_t> bytes, uint32_t most = kMaxPageWidgets);

// That, and whether parts of the page are missing.
std::vector<KitMessage> pageProblems(const std::string& path, const std::vector<uint8_t>& bytes);
