// An outline as text and as JSON.
#include <algorithm>
#include <sstream>

#include "kit/json.h"
#include "kit/source/pageoutline.h"

namespace {

// A table whose columns are as wide as what is in them; the last one runs free.
class Columns {
 public:
  void add(std::vector<std::string> row) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    rows.push_back(std::move(row));
  }

  void print(std::ostream& out) const {
    for (const std::vector<std::string>& row : rows) {
      std::string line;
      for (size_t i = 0; i < row.size(); ++i) {
        line += row[i];
        if (i + 1 < row.size()) line += std::string(widths[i] - row[i].size() + 2, ' ');
      }
      line.erase(line.find_last_not_of(' ') + 1);
      out << line << "\n";
    }
  }

 private:
  std::vector<std::vector<std::string>> rows;
  std::vector<size_t> widths;
};

std::string shown(const YamlPlace& place) {
  return place.line > 0 ? *place.file + ":" + std::to_string(place.line) : "";
}

// Names can be any text, also one that would end the line.
std::string shown(const std::string& text) {
  std::string out = text;
  for (char& c : out)
    if (uint8_t(c) < ' ' || c == 0x7F) c = '?';
  return out;
}

void addRows(const OutlineWidget& w, size_t indent, Columns* columns) {
  std::string details;
  for (const auto* list : {&w.links, &w.styles, &w.files})
    for (const OutlineAttribute& a : *list) details += a.key + "=" + shown(a.value) + " ";
  for (const std::string& hook : w.hooks) details += hook + " ";
  columns->add({std::string(indent, ' ') + w.label, w.type, std::to_string(w.x), std::to_string(w.y),
                std::to_string(w.width) + "x" + std::to_string(w.height), shown(w.place), details});
  for (const OutlineWidget& child : w.children) addRows(child, indent + 2, columns);
}

void writePlace(const YamlPlace& place, JsonWriter* json) {
  if (place.line == 0) return;
  json->beginObject("source");
  json->string("file", *place.file);
  json->number("line", place.line);
  json->endObject();
}

void writeAttributes(std::string_view key, const std::vector<OutlineAttribute>& attributes, JsonWriter* json) {
  json->beginObject(key);
  for (const OutlineAttribute& a : attributes) json->string(a.key, a.value);
  json->endObject();
}

void writeTexts(std::string_view key, const std::vector<std::string>& texts, JsonWriter* json) {
  json->beginArray(key);
  for (const std::string& text : texts) json->string({}, text);
  json->endArray();
}

void writeWidget(std::string_view key, const OutlineWidget& w, JsonWriter* json) {
  json->beginObject(key);
  json->string("label", w.label);
  json->string("type", w.type);
  json->string("name", w.name);
  json->number("x", w.x);
  json->number("y", w.y);
  json->number("width", w.width);
  json->number("height", w.height);
  writeAttributes("links", w.links, json);
  writeAttributes("styles", w.styles, json);
  writeAttributes("files", w.files, json);
  writeTexts("hooks", w.hooks, json);
  writePlace(w.place, json);
  json->beginArray("children");
  for (const OutlineWidget& child : w.children) writeWidget({}, child, json);
  json->endArray();
  json->endObject();
}

}  // namespace

std::string outlineText(const PageOutline& outline) {
  std::ostringstream out;
  out << outline.depth << "-bit page, widgets: " << outline.widgets << "\n";
  Columns widgets, styles;
  addRows(outline.root, 0, &widgets);
  widgets.print(out);
  for (const std::string& script : outline.scripts) out << "script   " << shown(script) << "\n";
  for (const OutlineStyle& style : outline.styles)
    styles.add({"style", shown(style.name), std::to_string(style.size), shown(style.place), shown(style.font)});
  styles.print(out);
  return out.str();
}

std::string outlineJson(const PageOutline& outline) {
  JsonWriter json;
  json.beginObject();
  json.number("depth", outline.depth);
  json.number("widgets", int64_t(outline.widgets));
  writeTexts("scripts", outline.scripts, &json);
  json.beginArray("styles");
  for (const OutlineStyle& style : outline.styles) {
    json.beginObject();
    json.string("name", style.name);
    json.string("font", style.font);
    json.number("size", style.size);
    writePlace(style.place, &json);
    json.endObject();
  }
  json.endArray();
  writeWidget("root", outline.root, &json);
  json.endObject();
  return json.text();
}
