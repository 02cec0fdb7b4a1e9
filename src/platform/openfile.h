// Opens files by names in UTF-8 on every system: Windows wants wide names, and reads narrow ones in an old encoding.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

// As fopen does it; the mode is ASCII. A path takes a narrow name for UTF-8 everywhere (utf8paths_windows.cpp).
inline std::FILE* openFile(const std::filesystem::path& name, const char* mode) {
#ifdef _WIN32
  return _wfopen(name.c_str(), std::filesystem::path(mode).c_str());
#else
  return std::fopen(name.c_str(), mode);
#endif
}

// As open does it, for bytes; the flags are O_WRONLY and its like. Negative with errno set when that fails. A new file
// gets the permissions that the user gives new ones, and no program that is started gets the descriptor.
inline int openDescriptor(const std::filesystem::path& name, int flags) {
#ifdef _WIN32
  return _wopen(name.c_str(), flags | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
#else
  return open(name.c_str(), flags | O_CLOEXEC, 0666);
#endif
}

// A file without a name that lasts as long as it is open; null when there is no space. Windows' own tmpfile makes it
// in the root of the drive, where users may not.
inline std::FILE* openTemporaryFile() {
#ifdef _WIN32
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  wchar_t* const name = _wtempnam(folder.c_str(), L"kpg");
  std::FILE* const file = name ? _wfopen(name, L"w+bTD") : nullptr;  // short-lived, and deleted when it is closed
  std::free(name);
  return file;
#else
  return std::tmpfile();
#endif
}
