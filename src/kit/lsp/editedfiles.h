// The files that an editor works on: as it has them where they are open, else as the disk has them.
//
// A snapshot is what another thread reads while the editor goes on.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "kit/files.h"
#include "kit/lsp/editedtext.h"

struct OpenFile {
  std::string uri;  // as the editor writes it
  std::string path;
  int version = 0;
  std::shared_ptr<const EditedText> text;
  bool isSaved = true;  // the disk has the same

  void change(EditedText to) {
    text = std::make_shared<const EditedText>(std::move(to));
    isSaved = false;
  }
};

using FileSnapshot = std::map<std::string, OpenFile>;  // by path

class EditedFiles {
 public:
  OpenFile& open(const std::string& uri, int version, std::string text);
  void close(const std::string& uri);
  OpenFile* find(const std::string& uri);
  const OpenFile* at(const std::string& path) const;
  const FileSnapshot& all() const { return files; }

  // Of a file that is open or can be read; nothing for any other.
  std::optional<std::string> textOf(const std::string& path) const;
  std::string uriOf(const std::string& path) const;  // as the editor writes it, where it has the file open
  FileSnapshot snapshot() const { return files; }

 private:
  FileSnapshot files;
};

ReadFile readerOf(FileSnapshot snapshot);
