// Reads maps and plain values of test files, and collects what is wrong with them.
//
// Each key of a map has a function that reads it; a key that has none is an error, and so is one that comes twice.
// After an error there is some value, so that reading goes on and finds the others.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/base/bounds.h"
#include "kit/errors.h"
#include "kit/yaml/yamlnode.h"

using KeyReader = std::function<void(const YamlPair&)>;
using KeyReaders = std::vector<std::pair<std::string, KeyReader>>;

class MapReader {
 public:
  // Names of files are relative to the folder.
  explicit MapReader(std::filesystem::path f) : folder(std::move(f)) {}

  void fail(const YamlPlace& place, const std::string& what) { errors.push_back(messageAt(place, what)); }

  // `what` is what messages call the map, "a test".
  void readMap(const YamlNode& map, const std::string& what, const KeyReaders& readers);

  std::string text(const YamlNode& node, const char* what);
  std::vector<std::string> texts(const YamlNode& node, const char* what);  // a list of them, or one
  std::string path(const YamlNode& node);                                  // as it can be opened
  int64_t number(const YamlNode& node, int64_t least, int64_t most);
  bool yes(const YamlNode& node);
  Bounds bounds(const YamlNode& node);    // [x, y, width, height]
  std::string key(const YamlNode& node);  // of the remote control

  std::vector<KitMessage> errors;

 private:
  const std::filesystem::path folder;
};
