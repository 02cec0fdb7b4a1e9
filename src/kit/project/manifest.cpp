#include "kit/project/manifest.h"

#include <filesystem>

#include "kit/files.h"
#include "kit/json.h"
#include "kit/source/sourcevalue.h"
#include "kit/yaml/readyaml.h"

namespace {

void writeFiles(JsonWriter* json, const char* key, const std::vector<FileRecord>& files) {
  json->beginArray(key);
  for (const FileRecord& file : files) {
    json->beginObject();
    json->string("file", file.name);
    json->string("hash", file.hash);
    json->endObject();
  }
  json->endArray();
}

void writePlace(JsonWriter* json, const KitMessage& at) {
  json->string("file", at.file);
  json->number("line", at.line);
  json->string("what", at.text);
}

void writeUse(JsonWriter* json, const FileUse& use) {
  json->beginObject();
  json->string("target", use.target);
  json->string("name", use.name);
  if (use.isLoaded) json->string("loaded", "true");
  writePlace(json, use.at);
  json->beginArray("usedBy");
  for (const KitMessage& user : use.at.uses) {
    json->beginObject();
    writePlace(json, user);
    json->endObject();
  }
  json->endArray();
  json->endObject();
}

KitMessage readPlace(const YamlNode& node) {
  return {node.textOf("file"), int(parseInteger(node.textOf("line")).value_or(0)), node.textOf("what")};
}

FileUse readUse(const YamlNode& node) {
  FileUse use{node.textOf("target"), node.textOf("name"), readPlace(node), node.textOf("loaded") == "true"};
  if (const YamlNode* users = node.find("usedBy"))
    for (const YamlNode& user : users->list) use.at.uses.push_back(readPlace(user));
  return use;
}

std::vector<FileRecord> readFiles(const YamlNode& node, const char* key) {
  std::vector<FileRecord> files;
  if (const YamlNode* list = node.find(key))
    for (const YamlNode& item : list->list) files.push_back({item.textOf("file"), item.textOf("hash")});
  return files;
}

// JSON is YAML.
Manifest parseManifest(const std::string& file, const std::string& text) try {
  Manifest manifest;
  const YamlNode root = parseYaml(file, text);
  const YamlNode* steps = root.find("steps");
  if (!steps) return manifest;
  for (const YamlNode& step : steps->list) {
    StepRecord& record = manifest.steps[step.textOf("name")];
    record.kit = step.textOf("kit");
    record.options = step.textOf("options");
    record.inputs = readFiles(step, "inputs");
    record.outputs = readFiles(step, "outputs");
    const YamlNode* uses = step.find("uses");
    for (const YamlNode& use : uses ? uses->list : std::vector<YamlNode>()) record.uses.push_back(readUse(use));
  }
  return manifest;
} catch (const KitError&) {
  return {};
}

}  // namespace

std::string Manifest::hashOf(const std::string& output) const {
  for (const auto& [name, step] : steps)
    for (const FileRecord& file : step.outputs)
      if (file.name == output) return file.hash;
  return "";
}

Manifest readManifest(const std::string& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return {};
  const std::vector<uint8_t> bytes = readFile(file);
  return parseManifest(file, {bytes.begin(), bytes.end()});
}

std::string manifestText(const Manifest& manifest) {
  JsonWriter json;
  json.beginObject();
  json.beginArray("steps");
  for (const auto& [name, step] : manifest.steps) {
    json.beginObject();
    json.string("name", name);
    json.string("kit", step.kit);
    json.string("options", step.options);
    writeFiles(&json, "inputs", step.inputs);
    writeFiles(&json, "outputs", step.outputs);
    json.beginArray("uses");
    for (const FileUse& use : step.uses) writeUse(&json, use);
    json.endArray();
    json.endObject();
  }
  json.endArray();
  json.endObject();
  return json.text();
}
