#include "kit/expand/files.h"

#include <algorithm>
#include <filesystem>

#include "kit/expand/csv.h"
#include "kit/source/sourcevalue.h"
#include "kit/utf8.h"
#include "kit/yaml/readyaml.h"

std::string SourceFiles::pathOf(const std::string& name, const YamlPlace& from) {
  return (std::filesystem::path(*from.file).parent_path() / name).lexically_normal().generic_string();
}

const YamlNode& SourceFiles::read(const std::string& name, const YamlPlace& from) {
  const std::string path = pathOf(name, from);
  const auto found = parsed.find(path);
  if (found != parsed.end()) return found->second;
  if (std::find(order.begin(), order.end(), path) == order.end()) order.push_back(path);
  std::vector<uint8_t> bytes;
  try {
    refuseEndless(path);
    bytes = readBytes(path);
  } catch (const KitError& e) {
    throw SourceFault{from, "can't read '" + name + "': " + e.messages.front().text};
  }
  const std::string text(bytes.begin(), bytes.end());
  requireUtf8(path, text);
  return parsed[path] = path.ends_with(".csv") ? parseCsv(path, text) : parseYaml(path, text);
}
