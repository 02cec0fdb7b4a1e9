#include "kit/run/scriptplaces.h"

#include <utility>

#include "bob/compile/statementreader.h"
#include "kit/files.h"
#include "kit/lines/bobmap.h"

namespace fs = std::filesystem;

namespace {

// As an author would say it from here.
std::string shownName(const fs::path& file) {
  std::error_code error;
  const fs::path near = file.lexically_proximate(fs::current_path(error));
  return (near.empty() || *near.begin() == ".." ? file : near).generic_string();
}

bool mayHaveTable(const fs::path& file) { return file.extension() == ".kpg" || file.extension() == ".bobo"; }

}  // namespace

void ScriptPlaces::listen(BobInterp* interp, std::function<std::string(const std::string& source)> nameOf) {
  if (!bobHasCompiler(interp)) return;
  bobSetCodeListener(interp,
                     [this, nameOf = std::move(nameOf)](BobInterp* i, BobValue code, const BobCodeNotes& notes) {
                       if (!notes.source.empty())
                         places.add(bobCodeLinesOf(i, code, notes, shownName(nameOf(notes.source))));
                     });
}

void ScriptPlaces::readTables(const std::set<fs::path>& read) {
  for (const fs::path& file : read) {
    if (!mayHaveTable(file) || !tried.insert(file).second) continue;
    try {
      const auto warn = [this](const KitMessage& warning) { warned.push_back(warning); };
      places.add(bobMapBeside(shownName(file), readFile(file.generic_string()), warn).codes);
    } catch (const KitError& e) {
      warned.push_back(e.messages.front());
    }
  }
}

const BobCodeLines* ScriptPlaces::linesOf(BobInterp* interp, BobValue code, const std::set<fs::path>& read) {
  const uint64_t hash = bobCodeHash(interp, code);
  if (!places.has(hash)) readTables(read);
  return places.linesOf(hash);
}

std::vector<std::string> ScriptPlaces::runningPlaces(BobInterp* interp, const std::set<fs::path>& read) {
  std::vector<std::string> all;
  for (const auto& [code, offset] : bobRunningCode(interp)) {
    const uint64_t hash = bobCodeHash(interp, code);
    if (!places.has(hash)) readTables(read);
    all.push_back(places.placeOf(hash, offset));
  }
  return all;
}
