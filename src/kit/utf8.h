// Whether a text of an author is UTF-8, as what the player shows has to be.
#pragma once

#include <string>
#include <string_view>

// Where the first byte lies that is no part of a letter; npos if there is none.
size_t firstBadUtf8(std::string_view text);

inline constexpr char kIsNoUtf8[] = "this is no UTF-8; save the file in that encoding";

// Its line, from 1; of a text that has such a byte.
int lineOfBadUtf8(std::string_view text);

// Throws a KitError that names the line.
void requireUtf8(const std::string& file, std::string_view text);
