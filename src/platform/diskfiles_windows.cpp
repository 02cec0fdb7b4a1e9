#include "platform/diskfiles.h"

#include <windows.h>

#include <chrono>

namespace fs = std::filesystem;

fs::file_time_type lastWriteTime(const fs::path& file, std::error_code& error) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data)) {
    error.assign(int(GetLastError()), std::system_category());
    return fs::file_time_type::min();
  }
  error.clear();
  // Windows counts from 1601, the system's clock from 1970.
  using Ticks = std::chrono::duration<int64_t, std::ratio<1, 10'000'000>>;
  constexpr Ticks kTo1970{116'444'736'000'000'000};
  const Ticks written(int64_t(data.ftLastWriteTime.dwHighDateTime) << 32 | data.ftLastWriteTime.dwLowDateTime);
  const std::chrono::sys_time<std::chrono::nanoseconds> time(written - kTo1970);
  return std::chrono::time_point_cast<fs::file_time_type::duration>(std::chrono::file_clock::from_sys(time));
}

fs::path asSpelledOnDisk(const fs::path& file) {
  fs::path spelled = file.root_path();
  for (const fs::path& part : file.relative_path()) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((spelled / part).c_str(), &found);
    const bool isDots = part == "." || part == "..";
    spelled /= search == INVALID_HANDLE_VALUE || isDots ? part : fs::path(found.cFileName);
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
  }
  return spelled;
}
