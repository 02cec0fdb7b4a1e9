#include "kit/project/manifest.h"

#include <filesystem>

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

std::vector<FileRecord> readFiles(const YamlNode& node, const char* key) {
  std::vector<FileRecord> files;
  if (const YamlNode* list = node.find(key))
    for (const YamlNode& item : list->list) files.push_back({item.textOf("file"), item.textOf("hash")});
  return files;
}

}  // namespace

std::string Manifest::hashOf(const std::string& output) const {
  for (const auto& [name, step] : steps)
    for (const FileRecord& file : step.outputs)
      if (file.name == output) return file.hash;
  return "";
}

// JSON is YAML.
Manifest readManifest(const std::string& file) try {
  Manifest manifest;
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return manifest;
  const YamlNode root = readYaml(file);
  const YamlNode* steps = root.find("steps");
  if (!steps) return manifest;
  for (const YamlNode& step : steps->list) {
    StepRecord& record = manifest.steps[step.textOf("name")];
    record.options = step.textOf("options");
    record.inputs = readFiles(step, "inputs");
    record.outputs = readFiles(step, "outputs");
    const YamlNode* uses = step.find("uses");
    for (const YamlNode& use : uses ? uses->list : std::vector<YamlNode>())
      record.uses.push_back(
          {use.textOf("target"),
           use.textOf("name"),
           {use.textOf("file"), int(parseInteger(use.textOf("line")).value_or(0)), use.textOf("what")}});
  }
  return manifest;
} catch (const KitError&) {
  return {};
}

std::string manifestText(const Manifest& manifest) {
  JsonWriter json;
  json.beginObject();
  json.beginArray("steps");
  for (const auto& [name, step] : manifest.steps) {
    json.beginObject();
    json.string("name", name);
    json.string("options", step.options);
    writeFiles(&json, "inputs", step.inputs);
    writeFiles(&json, "outputs", step.outputs);
    json.beginArray("uses");
    for (const FileUse& use : step.uses) {
      json.beginObject();
      json.string("target", use.target);
      json.string("name", use.name);
      json.string("file", use.at.file);
      json.number("line", use.at.line);
      json.string("what", use.at.text);
      json.endObject();
    }
    json.endArray();
    json.endObject();
  }
  json.endArray();
  json.endObject();
  return json.text();
}
