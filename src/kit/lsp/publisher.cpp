#include "kit/lsp/publisher.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "kit/lsp/fileuri.h"
#include "kit/lsp/lspjson.h"
#include "kit/yaml/looseyaml.h"

using nlohmann::json;

namespace {

constexpr int kError = 1, kWarning = 2;  // severities

// The first pair of that key which begins between two bytes.
const LoosePair* pairIn(const LooseNode& node, std::string_view key, size_t begin, size_t end) {
  for (const LoosePair& pair : node.map) {
    if (pair.key == key && begin <= pair.begin && pair.begin < end) return &pair;
    if (pair.value.begin >= end || pair.value.end <= begin) continue;
    if (const LoosePair* inside = pairIn(pair.value, key, begin, end)) return inside;
  }
  for (const LooseNode& item : node.list) {
    if (item.begin >= end || item.end <= begin) continue;
    if (const LoosePair* inside = pairIn(item, key, begin, end)) return inside;
  }
  return nullptr;
}

// The text of a file that may be open, read once.
class Texts {
 public:
  explicit Texts(const FileSnapshot& f) : files(f), read(readerOf(f)) {}

  const EditedText& at(const std::string& path) {
    const auto open = files.find(path);
    if (open != files.end()) return *open->second.text;
    const auto [place, isNew] = fromDisk.try_emplace(path);
    if (isNew) try {
        const std::vector<uint8_t> bytes = read(path);
        place->second = EditedText(std::string(bytes.begin(), bytes.end()));
      } catch (const KitError&) {  // which is what the message is about; it has no lines then
      }
    return place->second;
  }

  std::string uriOf(const std::string& path) const {
    const auto open = files.find(path);
    return open != files.end() ? open->second.uri : uriOfPath(path);
  }

  // The line, or the pair in it that the message names: "align of title: ...".
  json range(const KitMessage& message) {
    const std::string path = fullPath(message.file);
    const EditedText& text = at(path);
    const auto line = size_t(std::max(message.line, 1) - 1);
    const size_t of = message.text.find(" of ");
    if (of < message.text.find(": ") && line < text.lineCount()) {
      const auto [tree, isNew] = trees.try_emplace(path);
      if (isNew) tree->second = parseLooseYaml(text.text());
      const size_t begin = text.lineBegin(line), end = begin + text.line(line).size();
      if (const LoosePair* pair = pairIn(tree->second, message.text.substr(0, of), begin, end))
        return rangeJson(text.rangeOf(pair->begin, pair->value.end <= end ? pair->value.end : pair->end));
    }
    return rangeJson(text.rangeOfLine(line));
  }

 private:
  const FileSnapshot& files;
  const ReadFile read;
  std::map<std::string, EditedText> fromDisk;
  std::map<std::string, LooseNode> trees;
};

json diagnosticJson(const KitMessage& message, int severity, Texts& texts) {
  json result = {{"range", texts.range(message)}, {"severity", severity}, {"source", "kpg"}, {"message", message.text}};
  if (!message.check.empty()) result["code"] = message.check;
  for (const KitMessage& use : message.uses) {
    if (use.file.empty()) continue;
    result["relatedInformation"].push_back(
        {{"location", {{"uri", texts.uriOf(fullPath(use.file))}, {"range", texts.range(use)}}},
         {"message", "used here: " + use.text}});
  }
  return result;
}

}  // namespace

void Publisher::expect(const std::string& path) {
  const std::lock_guard lock(mutex);
  expected.insert(path);
}

void Publisher::publish(const std::string& path, const DiagnosisTask& task, const Diagnosis& diagnosis) {
  Texts texts(task.files);
  ByFile now;
  const auto add = [&](const KitMessage& message, int severity) {
    KitMessage placed = message;
    if (placed.file.empty()) placed.file = path;
    now[fullPath(placed.file)].push_back(diagnosticJson(placed, severity, texts));
  };
  for (const KitMessage& error : diagnosis.errors) add(error, kError);
  for (const KitMessage& warning : diagnosis.warnings) add(warning, kWarning);

  const std::lock_guard lock(mutex);
  if (!expected.contains(path)) return;
  std::set<std::string> changed{path};
  for (const auto& [file, diagnostics] : found[path]) changed.insert(file);
  for (const auto& [file, diagnostics] : now) changed.insert(file);
  found[path] = std::move(now);
  sources[path].clear();
  for (const std::string& source : diagnosis.sources) sources[path].insert(fullPath(source));
  send(changed, task.files);
}

void Publisher::forget(const std::string& path, const FileSnapshot& files) {
  const std::lock_guard lock(mutex);
  std::set<std::string> changed{path};
  for (const auto& [file, diagnostics] : found[path]) changed.insert(file);
  expected.erase(path);
  found.erase(path);
  sources.erase(path);
  send(changed, files);
}

std::vector<std::string> Publisher::madeOf(const std::string& path) {
  const std::lock_guard lock(mutex);
  std::vector<std::string> result;
  for (const auto& [file, all] : sources)
    if (file != path && all.contains(path)) result.push_back(file);
  return result;
}

std::set<std::string> Publisher::sourcesOf(const std::string& path) {
  const std::lock_guard lock(mutex);
  const auto known = sources.find(path);
  return known == sources.end() ? std::set<std::string>() : known->second;
}

void Publisher::send(const std::set<std::string>& paths, const FileSnapshot& files) {
  for (const std::string& path : paths) {
    json all = json::array();
    for (const auto& [root, byFile] : found) {
      const auto own = byFile.find(path);
      if (own == byFile.end()) continue;
      for (const json& diagnostic : own->second)
        if (std::find(all.begin(), all.end(), diagnostic) == all.end()) all.push_back(diagnostic);
    }
    const auto open = files.find(path);
    json params = {{"uri", open != files.end() ? open->second.uri : uriOfPath(path)}, {"diagnostics", std::move(all)}};
    if (open != files.end()) params["version"] = open->second.version;
    client.send({{"jsonrpc", "2.0"}, {"method", "textDocument/publishDiagnostics"}, {"params", std::move(params)}});
  }
}
