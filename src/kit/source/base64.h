// Base64 as in RFC 4648, with padding.
#pragma once

#include <optional>
#include <string>
#include <string_view>

std::string base64Encode(std::string_view bytes);
std::optional<std::string> base64Decode(std::string_view text);  // white space is skipped; nothing when malformed
