#include "kit/source/pagebuild.h"

#include <filesystem>

#include "kit/files.h"
#include "kit/source/pagesource.h"
#include "kit/source/pagewriter.h"

void buildPage(const std::string& source, const std::string& output, const KitWarn& warn) {
  const PageTree page = readPageSource(source, warn);
  std::vector<uint8_t> bytes;
  try {
    bytes = writePage(page);
  } catch (const std::length_error& e) {
    throw KitError(source, e.what());
  }
  writeFile(output, bytes.data(), bytes.size());
  const std::filesystem::path folder = std::filesystem::path(output).parent_path();
  for (const ScriptFile& script : page.scriptFiles)
    writeFile((folder / script.name).string(), script.bytes.data(), script.bytes.size());
}
