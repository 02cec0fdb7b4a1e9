// Makes std::filesystem::path take narrow names for UTF-8, as it gives them. The C++ library of MinGW asks the C
// library for each of their characters, which has no locale with UTF-8; the linker leads that question here (--wrap).
#include <windows.h>

#include <cwchar>

// As mbrtowc does it. Names come from pages, too, so there are no errors: a byte that is no UTF-8 is a character of
// Latin-1. Of a surrogate pair the first call takes a byte, and leaves the second half in the state for the next one.
extern "C" size_t __wrap_mbrtowc(wchar_t* to, const char* from, size_t size, std::mbstate_t* state) {
  if (*state != 0) {
    *to = wchar_t(*state);
    *state = 0;
    return 3;
  }
  if (size == 0) return size_t(-2);
  const auto first = static_cast<unsigned char>(*from);
  const size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  wchar_t units[2] = {first, 0};
  if (length > 1 && length <= size) {
    const int count = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, from, int(length), units, 2);
    if (count == 0 || (count == 2) != (length == 4)) {
      units[0] = first;
    } else if (count == 2) {
      *state = units[1];
    } else {
      *to = units[0];
      return length;
    }
  }
  *to = units[0];
  return first == 0 ? 0 : 1;
}
