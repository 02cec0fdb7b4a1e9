// Colours on the command line, #RRGGBB, or RRGGBB since a shell takes a bare # for a comment.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// 0x00RRGGBB, or nothing for what is no colour.
inline std::optional<uint32_t> colorFromWord(const std::string& text) {
  const std::string digits = text.starts_with('#') ? text.substr(1) : text;
  const bool good = digits.size() == 6 && digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
  return good ? std::optional(uint32_t(std::stoul(digits, nullptr, 16))) : std::nullopt;
}

// For KpgOption::check.
inline std::string problemOfColor(const std::string& text) {
  return colorFromWord(text) ? "" : "'" + text + "' is no colour #RRGGBB";
}
