#include "kit/source/pageschema.h"

#include <nlohmann/json.hpp>

#include "kit/source/sourcekeys.h"

using json = nlohmann::ordered_json;

namespace {

constexpr int kMostPixels = 65535;

json reference(const std::string& name) { return {{"$ref", "#/definitions/" + name}}; }

constexpr char kExpression[] = "\\$\\(";

// What is wrong inside of the one of several choices that was meant, editors don't say; so that a list or a number
// stays one schema.
json orExpression(json schema) {
  if (!schema.contains("type")) return {{"anyOf", {std::move(schema), reference("expression")}}};
  schema["type"] = {schema["type"], "string"};
  schema["pattern"] = kExpression;
  return schema;
}

json listOf(json entry) { return {{"type", "array"}, {"items", std::move(entry)}}; }

json oneOf(const std::vector<std::string>& words) {
  json all = words;
  for (const std::string& word : words)  // which YAML may take for booleans
    for (const bool truth : {true, false})
      if (word == (truth ? "true" : "false")) all.push_back(truth);
  return {{"enum", all}};
}

json integer(int least, int most) { return {{"type", "integer"}, {"minimum", least}, {"maximum", most}}; }

json integersOf(size_t count) {
  json list = listOf(orExpression(integer(0, kMostPixels)));
  list["minItems"] = list["maxItems"] = count;
  return list;
}

json attributeValue(AttributeKind kind) {
  switch (kind) {
    case AttributeKind::integer: return orExpression({{"type", "integer"}});
    case AttributeKind::boolean: return orExpression({{"enum", {true, false, "yes", "no"}}});
    case AttributeKind::color: return reference("color");
    case AttributeKind::string:
    case AttributeKind::script: return reference("text");
    case AttributeKind::widgets: return orExpression(listOf(reference("widget")));
    case AttributeKind::styles: return orExpression(listOf(reference("style")));
    case AttributeKind::lines: return orExpression(listOf(reference("line")));
    case AttributeKind::files: return orExpression(listOf(reference("text")));
  }
  return json::object();
}

// What the guide says in words of keys that are no attributes.
json otherValue(const std::string& name) {
  if (name == "x" || name == "y" || name == "width" || name == "height") return orExpression(integer(0, kMostPixels));
  if (name == "columns") return orExpression(integer(1, kMostPixels));
  if (name == "gap") return orExpression({{"anyOf", {integer(0, kMostPixels), integersOf(2)}}});
  if (name == "padding") return orExpression({{"anyOf", {integer(0, kMostPixels), integersOf(4)}}});
  if (name == "with") return {{"type", "object"}};
  if (name == "repeat") {
    json properties;
    for (const char* key : {"over", "as", "index", "count"}) properties[key] = json::object();
    json how = {
        {"type", "object"}, {"required", {"over"}}, {"properties", properties}, {"additionalProperties", false}};
    return {{"anyOf", {{{"type", {"array", "string", "integer"}}}, how}}};
  }
  return reference("text");
}

json describedKey(const SourceKey& key) {
  const std::vector<std::string> words = wordsOf(key);
  json value = !words.empty() ? orExpression(oneOf(words))
               : key.form     ? attributeValue(*key.form)
                              : otherValue(std::string(key.name));
  if (value.contains("$ref")) value = {{"allOf", {std::move(value)}}};  // nothing beside a reference is read
  value["description"] = keyHelp(key);
  return value;
}

json objectSchema(ObjectKind kind, const std::vector<std::string>& types) {
  json properties = json::object();
  for (const std::string& type : types)
    for (const SourceKey& key : objectKeys(kind, type)) {
      json value = describedKey(key);
      json& known = properties[std::string(key.name)];
      if (known.is_null())
        known = std::move(value);
      else if (known != value)
        known = json::object();  // means other things on other widgets
    }
  return {{"type", "object"}, {"properties", std::move(properties)}, {"additionalProperties", false}};
}

// A widget, or the root, by its type. What its type is when that comes from elsewhere isn't known.
json byType(const std::string& name, json& definitions, ObjectKind kind) {
  const std::vector<std::string> types = attributeWords(kind, "", "type");
  std::vector<std::string> all = types;
  all.emplace_back();
  definitions["any " + name] = objectSchema(kind, all);
  definitions["plain " + name] = objectSchema(kind, {""});
  json result = reference("plain " + name);
  result = {{"if", {{"required", {"type"}}}}, {"then", reference("any " + name)}, {"else", std::move(result)}};
  for (auto type = types.rbegin(); type != types.rend(); ++type) {
    definitions[*type + " " + name] = objectSchema(kind, {*type});
    json has = {{"required", {"type"}}, {"properties", {{"type", {{"const", *type}}}}}};
    result = {{"if", std::move(has)}, {"then", reference(*type + " " + name)}, {"else", std::move(result)}};
  }
  json fromElsewhere = {{"anyOf", {{{"required", {"template"}}}, {{"required", {"include"}}}}}};
  return {{"if", std::move(fromElsewhere)}, {"then", reference("any " + name)}, {"else", std::move(result)}};
}

// The body of a template may be anything that a list of objects can have.
json templateSchema(const json& definitions) {
  json properties = {
      {"parameters", {{"type", {"object", "null"}}, {"description", "what a use can set, with defaults"}}}};
  for (const char* name : {"any widget", "style", "line"})
    for (const auto& [key, value] : definitions[name]["properties"].items()) {
      if (!properties.contains(key))
        properties[key] = value;
      else if (properties[key] != value)
        properties[key] = json::object();
    }
  return {{"type", "object"}, {"properties", std::move(properties)}, {"additionalProperties", false}};
}

json topValue(std::string_view name) {
  if (name == "flags") return {{"anyOf", {oneOf({"8bit", "16bit"}), {{"type", "integer"}}}}};
  if (name == "page") return reference("page");
  if (name == "include") return {{"anyOf", {{{"type", "string"}}, listOf({{"type", "string"}})}}};
  if (name == "templates") return {{"type", "object"}, {"additionalProperties", reference("template")}};
  return {{"type", "object"}};
}

}  // namespace

std::string pageSchema() {
  json definitions;
  definitions["expression"] = {{"type", "string"}, {"pattern", kExpression}};
  definitions["text"] = {{"type", {"string", "number", "boolean", "null"}}};
  definitions["color"] = {{"anyOf",
                           {{{"type", "string"}, {"pattern", "^#[0-9A-Fa-f]{6}$"}},
                            {{"enum", {"black", "white", "transparent"}}},
                            {{"type", "integer"}},
                            reference("expression")}}};
  definitions["style"] = objectSchema(ObjectKind::style, {""});
  definitions["line"] = objectSchema(ObjectKind::line, {""});
  definitions["widget"] = byType("widget", definitions, ObjectKind::widget);
  definitions["page"] = byType("page", definitions, ObjectKind::root);
  definitions["template"] = templateSchema(definitions);

  json properties;
  for (const SourceKey& key : topKeys()) {
    json value = topValue(key.name);
    if (value.contains("$ref")) value = {{"allOf", {std::move(value)}}};
    value["description"] = keyHelp(key);
    properties[std::string(key.name)] = std::move(value);
  }
  const json schema = {{"$schema", "http://json-schema.org/draft-07/schema#"},
                       {"title", "Page source"},
                       {"type", "object"},
                       {"properties", std::move(properties)},
                       {"required", {"page"}},
                       {"additionalProperties", false},
                       {"definitions", std::move(definitions)}};
  return schema.dump(2) + "\n";
}
