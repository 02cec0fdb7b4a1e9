// Colours on the command line, #RRGGBB.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// 0x00RRGGBB, or nothing for what is no colour.
inline std::optional<uint32_t> colorFromWord(const std::string& text) {
  const bool good =
      text.size() == 7 && text[0] == '#' && text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
  return good ? std::optional(uint32_t(std::stoul(text.substr(1), nullptr, 16))) : std::nullopt;
}

// For KpgOption::check.
inline std::string problemOfColor(const std::string& text) {
  return colorFromWord(text) ? "" : "'" + text + "' is no colour #RRGGBB";
}
