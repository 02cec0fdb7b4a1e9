// When files were written, as exactly as the system keeps it.
#pragma once

#include <filesystem>
#include <system_error>

// As std::filesystem::last_write_time does it, which knows whole seconds only on Windows.
#ifdef _WIN32
std::filesystem::file_time_type lastWriteTime(const std::filesystem::path& file, std::error_code& error);
#else
inline std::filesystem::file_time_type lastWriteTime(const std::filesystem::path& file, std::error_code& error) {
  return std::filesystem::last_write_time(file, error);
}
#endif
