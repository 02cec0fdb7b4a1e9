// Opens files by names in UTF-8 on every system: Windows wants wide names, and reads narrow ones in an old encoding.
#pragma once

#include <cstdio>
#include <filesystem>

// As fopen does it; the mode is ASCII. A path is made of a narrow name as UTF-8 everywhere.
inline std::FILE* openFile(const std::filesystem::path& name, const char* mode) {
#ifdef _WIN32
  return _wfopen(name.c_str(), std::filesystem::path(mode).c_str());
#else
  return std::fopen(name.c_str(), mode);
#endif
}
