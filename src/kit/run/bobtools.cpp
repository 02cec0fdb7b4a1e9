#include "kit/run/bobtools.h"

#include <filesystem>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/lines/bobmap.h"
#include "kit/run/sourcelisting.h"
#include "kit/source/scripts.h"

namespace {

std::unique_ptr<BobStream> open(BobInterp* interp, const std::string& path, const char* mode) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) throw KitError(path, "is a folder; name a file in it");
  std::unique_ptr<BobStream> stream = bobOpenFile(interp, path.c_str(), mode);
  if (!stream) throw KitError(path, "can't be opened");
  return stream;
}

// Statement by statement, since later code may well be equal to earlier code.
bool listSource(BobInterp* interp, BobStream* stream, const std::string& path) {
  SourceListing source;
  std::vector<BobCodeLines> compiled;
  bobSetCodeListener(interp, [&](BobInterp* i, BobValue code, const BobCodeNotes& notes) {
    compiled.push_back(bobCodeLinesOf(i, code, notes, path));
  });
  const bool listed = bobTry(interp, [&] {
    BobStatementReader statements(bobRootScope(interp), stream);
    while (const BobValue method = statements.next()) {
      source.begin(std::move(compiled));
      compiled.clear();
      bobListCode(interp, bobMethodCode(interp, method),
                  [&](BobValue code, uint32_t offset) { source.instruction(interp, code, offset); });
    }
  });
  bobSetCodeListener(interp, {});
  return listed;
}

bool listObjectFile(BobInterp* interp, BobStream* records, const std::string& path, const KitWarn& warn) {
  BobMap map = bobMapBeside(path, readFile(path), warn);
  for (const BobMap::Source& source : map.sources) {
    if (map.isCurrent(source.file)) continue;
    if (warn) warn({source.file, 0, "warning: was changed after " + path + " was made of it, so no lines are shown"});
    map.codes.clear();
  }
  SourceListing source;
  source.begin(std::move(map.codes));
  return bobListRecords(interp, records,
                        [&](BobValue code, uint32_t offset) { source.instruction(interp, code, offset); });
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
  return bobTry(interp, [&] { bobRunSource(bobRootScope(interp), source.get(), nullptr, path); });
}

std::string errorPlaces(BobInterp* interp, int code, ScriptPlaces& places) {
  std::string text;
  if (code == kBobSyntaxError && !bobCurrentSource(interp).empty())
    text = bobCurrentSource(interp) + ":" + std::to_string(bobCurrentLine(interp)) + ": is read here\n";
  std::vector<std::string> names;
  for (const auto& [running, offset] : bobRunningCode(interp)) names.push_back(bobCodeText(interp, running));
  const std::vector<std::string> all = places.runningPlaces(interp, {});
  for (size_t i = 0; i < all.size(); ++i)
    if (!all[i].empty()) text += all[i] + ": in " + (names[i].empty() ? "a statement" : names[i]) + "\n";
  return text;
}

void compileBobFile(const std::string& source, const std::string& object, const BobCompileOptions& options) {
  refuseClashes({object, options.lines ? bobMapName(object) : ""}, {source});
  ScriptFile compiled = compileScriptFile(source, options.names);
  OutputFiles files;
  files.add(object, compiled.bytes.data(), compiled.bytes.size());
  if (options.lines) {
    const std::string path = bobMapName(object);
    const std::string text = bobMapText(path, makeBobMap(compiled.bytes, std::move(compiled.lines)));
    refuseForeign(path, isBobMap, "move what is there");
    files.add(path, text.data(), text.size());
  }
  files.finish();
}

BobCodeNames codeNamesByLine(const std::string& path) {
  return [name = std::filesystem::path(path).filename().string()](const BobSourcePlace& begin) {
    return name + ":" + std::to_string(begin.line);
  };
}

bool listBobFile(BobRuntime& runtime, const std::string& path, const KitWarn& warn) {
  BobInterp* interp = runtime.interp;
  const std::unique_ptr<BobStream> records = open(interp, path, "rb");
  if (startsAsObjectFile(records.get())) return listObjectFile(interp, records.get(), path, warn);
  return listSource(interp, open(interp, path, "r").get(), path);
}
