// Files are bytes in test programs, as in kpg, and not lines that end in CR LF.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstdlib>

namespace {

[[maybe_unused]] const bool isBinary = [] {
  _fmode = _O_BINARY;
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  return true;
}();

}  // namespace
