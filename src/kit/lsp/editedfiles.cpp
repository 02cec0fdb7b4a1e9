#include "kit/lsp/editedfiles.h"

#include <utility>

#include "kit/errors.h"
#include "kit/lsp/fileuri.h"

OpenFile& EditedFiles::open(const std::string& uri, int version, std::string text) {
  const std::string path = pathOfUri(uri);
  files.erase(path);
  const bool isSaved = textOf(path) == text;
  return files[path] = OpenFile{uri, path, version, std::make_shared<const EditedText>(std::move(text)), isSaved};
}

void EditedFiles::close(const std::string& uri) { files.erase(pathOfUri(uri)); }

OpenFile* EditedFiles::find(const std::string& uri) {
  const auto found = files.find(pathOfUri(uri));
  return found == files.end() ? nullptr : &found->second;
}

const OpenFile* EditedFiles::at(const std::string& path) const {
  const auto found = files.find(fullPath(path));
  return found == files.end() ? nullptr : &found->second;
}

std::optional<std::string> EditedFiles::textOf(const std::string& path) const {
  if (const OpenFile* file = at(path)) return file->text->text();
  try {
    const std::vector<uint8_t> bytes = readFile(path);
    return std::string(bytes.begin(), bytes.end());
  } catch (const KitError&) {
    return {};
  }
}

std::string EditedFiles::uriOf(const std::string& path) const {
  const OpenFile* file = at(path);
  return file ? file->uri : uriOfPath(fullPath(path));
}

ReadFile readerOf(FileSnapshot snapshot) {
  return [files = std::move(snapshot)](const std::string& path) -> std::vector<uint8_t> {
    const auto found = files.find(fullPath(path));
    if (found == files.end()) return readFile(path);
    const std::string& text = found->second.text->text();
    return {text.begin(), text.end()};
  };
}
