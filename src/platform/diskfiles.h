// What the standard library doesn't tell of files on Windows, where it asks the C library.
#pragma once

#include <filesystem>
#include <system_error>

#ifdef _WIN32
// As std::filesystem::last_write_time, which knows whole seconds only there.
std::filesystem::file_time_type lastWriteTime(const std::filesystem::path& file, std::error_code& error);

// The name with each part as its folder spells it: the disk finds a file by any case. Parts that aren't there stay.
std::filesystem::path asSpelledOnDisk(const std::filesystem::path& file);
#else
inline std::filesystem::file_time_type lastWriteTime(const std::filesystem::path& file, std::error_code& error) {
  return std::filesystem::last_write_time(file, error);
}

inline std::filesystem::path asSpelledOnDisk(const std::filesystem::path& file) { return file; }
#endif
