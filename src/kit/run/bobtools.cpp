#include "kit/run/bobtools.h"

#include <filesystem>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"

namespace {

std::unique_ptr<BobStream> open(BobInterp* interp, const std::string& path, const char* mode) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) throw KitError(path, "is a folder; name a file in it");
  std::unique_ptr<BobStream> stream = bobOpenFile(interp, path.c_str(), mode);
  if (!stream) throw KitError(path, "can't be opened");
  return stream;
}

bool listSource(BobInterp* interp, BobStream* stream) {
  return bobTry(interp, [&] {
    BobStatementReader statements(bobRootScope(interp), stream);
    while (const BobValue method = statements.next()) bobListCode(interp, bobMethodCode(interp, method));
  });
}

bool startsAsObjectFile(BobStream* stream) {
  for (char c : {'B', 'O', 'B', 'O', '\0', '\0', '\0', '\4'})
    if (stream->GetC() != c) return false;
  return true;
}

}  // namespace

bool runBobFile(BobRuntime& runtime, const std::string& path) {
  BobInterp* interp = runtime.interp;
  const std::unique_ptr<BobStream> source = open(interp, path, "r");
  return bobTry(interp, [&] { bobRunSource(bobRootScope(interp), source.get(), nullptr); });
}

bool compileBobFile(BobRuntime& runtime, const std::string& source, const std::string& object,
                    const BobCodeNames& names) {
  refuseClashes({object}, {source});
  BobInterp* interp = runtime.interp;
  const std::unique_ptr<BobStream> input = open(interp, source, "r");
  BobTextStream output;
  const bool compiled = bobTry(interp, [&] {
    bobWriteHeader(&output);
    BobStatementReader statements(bobRootScope(interp), input.get(), names);
    while (const BobValue method = statements.next())
      if (!bobWriteValue(interp, bobMethodCode(interp, method), &output)) bobRaise(interp, kBobWritingFile);
  });
  if (compiled) writeFile(object, output.text.data(), output.text.size());
  return compiled;
}

BobCodeNames codeNamesByLine(const std::string& path) {
  return
      [name = std::filesystem::path(path).filename().string()](int line) { return name + ":" + std::to_string(line); };
}

bool listBobFile(BobRuntime& runtime, const std::string& path) {
  BobInterp* interp = runtime.interp;
  const std::unique_ptr<BobStream> records = open(interp, path, "rb");
  if (startsAsObjectFile(records.get())) return bobListRecords(interp, records.get());
  return listSource(interp, open(interp, path, "r").get());
}
