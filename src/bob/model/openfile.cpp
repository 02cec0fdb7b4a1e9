#include "bob/model/openfile.h"

#include <string_view>

#include "bob/heap/interp.h"

std::unique_ptr<BobStream> bobOpenFile(BobInterp* interp, const char* path, const char* mode) {
  const std::string_view letters(mode);
  const bool known = !letters.empty() && std::string_view("rwa").find(letters[0]) != std::string_view::npos &&
                     letters.find_first_not_of("b+t", 1) == std::string_view::npos;
  return known ? interp->openFile(path, mode) : nullptr;
}
