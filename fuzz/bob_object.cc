// Records of an object file: each is read, listed, looked through and run, and whatever it says stays inside its own
// code.
#include <memory>
#include <string>
#include <string_view>

#include "bob/tools/codeuses.h"
#include "bob/tools/disassemble.h"
#include "bob/tools/objectformat.h"
#include "bobinterp.h"

namespace {

// The input as a whole file; with the mark that files begin with, or, half of the time, with the version, too.
std::string_view fileBytes;
std::unique_ptr<BobStream> openInput(const char*, const char*) {
  constexpr char kVersion[] = {0, 0, 0, kBobObjectVersion};
  std::string file(kBobMagic, sizeof kBobMagic);
  if (fileBytes.size() % 2) file.append(kVersion, sizeof kVersion);
  return std::make_unique<BobStringCopyInput>(file.append(fileBytes));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  BobInterp* const interp = fuzzInterp();
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  bobTry(interp, [&] {
    BobStringInput input(bytes);
    BobValue value;
    if (!bobReadValue(bobRootScope(interp), &input, &value) || !bobIsA(interp, value, kBobCompiledCode)) return;
    bobDisassemble(interp, value, bobStdout(interp));
    bobCodeUses(interp, value);
  });
  fileBytes = bytes;
  bobSetOpenFile(interp, openInput);
  bobTry(interp, [&] { bobLoadObjectFile(bobRootScope(interp), "f"); });
  BobStringInput input(bytes);
  bobLoadObjectStream(bobRootScope(interp), &input);
  // Functions that the records have defined, called with too few, enough and too many arguments.
  for (const char* name : {"f", "g", "h"})
    for (int count = 0; count < 3; ++count)
      bobTry(interp, [&] {
        if (count == 0) bobCallByName(bobRootScope(interp), name, {});
        if (count == 1) bobCallByName(bobRootScope(interp), name, {bobSmall(3)});
        if (count == 2) bobCallByName(bobRootScope(interp), name, {bobSmall(3), kBobTrue});
      });
  return 0;
}
