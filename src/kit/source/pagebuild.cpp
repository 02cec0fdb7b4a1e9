#include "kit/source/pagebuild.h"

#include <filesystem>
#include <string_view>
#include <utility>

#include "engine/format/pagefile.h"
#include "gfx/foundation/hsascii.h"
#include "kit/depfile.h"
#include "kit/files.h"
#include "kit/lines/bobmap.h"
#include "kit/run/bobruntime.h"
#include "kit/utf8.h"

namespace fs = std::filesystem;

namespace {

// A damaged page stays one, whatever it holds.
bool isTextFile(const std::string& path) try {
  std::error_code error;
  if (!fs::is_regular_file(path, error) ||
      hsAsciiEqualIgnoringCase(fs::path(path).extension().string().c_str(), ".kpg"))
    return false;
  const std::vector<uint8_t> bytes = readFile(path);
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  return !text.empty() && !text.starts_with(kPageMagic) && text.find('\0') == std::string_view::npos &&
         firstBadUtf8(text) == std::string_view::npos;
} catch (const KitError&) {
  return false;  // whoever opens it will say why
}

}  // namespace

bool isPageSource(const std::string& path) {
  const std::string extension = fs::path(path).extension().string();
  return hsAsciiEqualIgnoringCase(extension.c_str(), ".yaml") || hsAsciiEqualIgnoringCase(extension.c_str(), ".yml") ||
         isTextFile(path);
}

BuiltPage compilePage(const std::string& source, const KitWarn& warn, const PageSourceOptions& options) {
  PageTree page = readPageSource(source, warn, options);
  BuiltPage built;
  try {
    built.bytes = writePage(page, &built.places);
  } catch (const std::length_error& e) {
    throw BuildError({{source, 0, e.what()}}, std::move(page.sources));
  }
  built.scriptFiles = std::move(page.scriptFiles);
  built.sources = std::move(page.sources);
  built.loadedPages = std::move(page.loadedPages);
  built.lines = std::move(page.lines);
  return built;
}

namespace {

void addLines(OutputFiles& files, std::vector<std::string>& outputs, const std::string& built, std::string_view bytes,
              const std::vector<BobCodeLines>& lines) {
  const std::string path = outputs.emplace_back(bobMapName(built));
  refuseForeign(path, isBobMap, "move what is there");
  const std::string text = bobMapText(path, makeBobMap(bytes, lines));
  files.add(path, text.data(), text.size());
}

void writeBuilt(const BuiltPage& page, const std::string& source, const std::string& output, bool lines,
                const std::string& depfile) {
  if (isStandardOutput(output) && (lines || !page.scriptFiles.empty()))
    throw KitError(source, std::string("its ") + (lines ? "line tables" : "script files") +
                               " go beside the page, so the page needs a name; say -o PAGE.kpg");
  std::vector<std::string> outputs{output, depfile};
  OutputFiles files;
  files.add(output, page.bytes.data(), page.bytes.size());
  const std::string_view pageBytes(reinterpret_cast<const char*>(page.bytes.data()), page.bytes.size());
  if (lines) addLines(files, outputs, output, pageBytes, page.lines);
  for (const ScriptFile& script : page.scriptFiles) {
    const std::string path = outputs.emplace_back((fs::path(output).parent_path() / script.name).generic_string());
    refuseClashes(outputs, page.sources);
    refuseForeign(path, isObjectFile, "rename the script file, or move what is there");
    files.add(path, script.bytes.data(), script.bytes.size());
    if (lines) addLines(files, outputs, path, script.bytes, script.lines);
  }
  refuseClashes(outputs, page.sources);
  if (!depfile.empty()) {
    const std::string rule = depfileText(output, page.sources);
    files.add(depfile, rule.data(), rule.size());
  }
  files.finish();
}

}  // namespace

BuiltPage buildPage(const std::string& source, const std::string& output, const KitWarn& warn,
                    const PageSourceOptions& options, const std::string& depfile) {
  BuiltPage page = compilePage(source, warn, options);
  try {
    writeBuilt(page, source, output, options.lines, depfile);
  } catch (const KitError& e) {
    throw BuildError(e.messages, std::move(page.sources));
  }
  return page;
}
