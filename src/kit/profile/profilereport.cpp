#include "kit/profile/profilereport.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "kit/json.h"

namespace {

std::string percent(uint64_t part, uint64_t whole) {
  char text[16];
  std::snprintf(text, sizeof text, "%.1f%%", whole == 0 ? 0.0 : 100.0 * double(part) / double(whole));
  return text;
}

// A profile by names. Name 0 is the host's, and node 0 the root; callers come before what they call.
struct NamedProfile {
  NamedProfile(const BobProfiler& profiler, const ProfileName& nameOf) {
    std::vector<uint32_t> numbers{0}, places{0};
    std::vector<bool> continues{false};
    std::map<std::string, uint32_t> known;
    for (size_t n = 1; n < profiler.functions().size(); ++n) {
      const ProfiledName named = nameOf(profiler.functions()[n]);
      const auto [found, isNew] = known.try_emplace(named.name, uint32_t(names.size()));
      if (isNew) names.push_back(named.name);
      numbers.push_back(found->second);
      continues.push_back(named.continuesLine);
    }
    std::map<std::pair<uint32_t, uint32_t>, uint32_t> children;
    for (size_t n = 1; n < profiler.nodes().size(); ++n) {
      BobProfileNode node = profiler.nodes()[n];
      if (continues[node.function]) node.own.calls = 0;
      node.caller = places[node.caller];
      node.function = numbers[node.function];
      const auto [found, isNew] = children.try_emplace({node.caller, node.function}, uint32_t(nodes.size()));
      if (isNew)
        nodes.push_back(node);
      else
        nodes[found->second].own += node.own;
      places.push_back(found->second);
    }
  }

  // What a node did with all that it called, by node.
  std::vector<uint64_t> wholeInstructions() const {
    std::vector<uint64_t> whole(nodes.size());
    for (size_t n = nodes.size(); n-- > 0;) {
      whole[n] += nodes[n].own.instructions;
      if (n > 0) whole[nodes[n].caller] += whole[n];
    }
    return whole;
  }

  // The nodes' names from the one called by the host down to this one.
  std::vector<uint32_t> stackOf(uint32_t node) const {
    std::vector<uint32_t> stack;
    for (; node != 0; node = nodes[node].caller) stack.push_back(nodes[node].function);
    std::reverse(stack.begin(), stack.end());
    return stack;
  }

  std::vector<std::string> names{1};
  std::vector<BobProfileNode> nodes{1};
};

struct ProfileRow {
  uint32_t name = 0;
  BobProfileCounts own;
  uint64_t whole = 0;  // instructions; a function that calls itself counts once
};

std::vector<ProfileRow> rowsByOwnInstructions(const NamedProfile& profile) {
  std::vector<ProfileRow> rows(profile.names.size());
  for (uint32_t node = 0; node < profile.nodes.size(); ++node) {
    const BobProfileCounts& own = profile.nodes[node].own;
    rows[profile.nodes[node].function].own += own;
    const std::vector<uint32_t> stack = profile.stackOf(node);
    for (const uint32_t name : std::set<uint32_t>(stack.begin(), stack.end())) rows[name].whole += own.instructions;
  }
  for (uint32_t name = 0; name < rows.size(); ++name) rows[name].name = name;
  std::erase_if(rows, [](const ProfileRow& row) { return row.name == 0 || row.own.instructions == 0; });
  std::stable_sort(rows.begin(), rows.end(),
                   [](const ProfileRow& a, const ProfileRow& b) { return a.own.instructions > b.own.instructions; });
  return rows;
}

std::string escapedXml(const std::string& text) {
  std::string out;
  for (const char c : text) switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += uint8_t(c) < 0x20 || uint8_t(c) >= 0x7F ? '?' : c;
    }
  return out;
}

constexpr double kWidth = 1200, kMargin = 10, kRow = 18, kTop = 40;  // of the picture, pixels

// A warm colour, the same for the same name in every graph.
std::string colorOf(const std::string& name) {
  uint32_t hash = 2166136261;
  for (const char c : name) hash = (hash ^ uint8_t(c)) * 16777619;
  char color[32];
  std::snprintf(color, sizeof color, "hsl(%u,80%%,%u%%)", 18 + hash % 34, 58 + (hash >> 8) % 14);
  return color;
}

class FlameGraph {
 public:
  explicit FlameGraph(const NamedProfile& p) : profile(p), whole(p.wholeInstructions()) {
    for (uint32_t node = 1; node < profile.nodes.size(); ++node) children[profile.nodes[node].caller].push_back(node);
  }

  std::string draw(const std::string& title) {
    if (whole[0] > 0) place(0, kMargin, 0);
    const double height = kTop + kRow * double(deepest) + kMargin;
    char head[512];
    std::snprintf(head, sizeof head,
                  "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %g %g\" width=\"%g\" height=\"%g\" "
                  "font-family=\"sans-serif\" font-size=\"11\">\n"
                  "<rect width=\"100%%\" height=\"100%%\" fill=\"#fff\"/>\n"
                  "<text x=\"%g\" y=\"24\" font-size=\"15\">%s: %llu instructions</text>\n",
                  kWidth, height, kWidth, height, kMargin, escapedXml(title).c_str(),
                  static_cast<unsigned long long>(whole[0]));
    std::string text = head;
    for (const Box& box : boxes) text += drawn(box, height);
    return text + "</svg>\n";
  }

 private:
  struct Box {
    uint32_t node;
    double x, width;
    size_t depth;  // from 1
  };

  // A function's callees side by side, the first that was called on the left. What is too thin to see is left out.
  void place(uint32_t node, double x, size_t depth) {
    constexpr double kThinnest = 0.3;
    const double width = (kWidth - 2 * kMargin) * double(whole[node]) / double(whole[0]);
    if (width < kThinnest) return;
    if (depth > 0) boxes.push_back({node, x, width, depth});
    deepest = std::max(deepest, depth);
    for (const uint32_t child : children[node]) {
      place(child, x, depth + 1);
      x += (kWidth - 2 * kMargin) * double(whole[child]) / double(whole[0]);
    }
  }

  std::string drawn(const Box& box, double height) const {
    constexpr double kLetter = 6.2, kPadding = 4;
    const std::string& name = profile.names[profile.nodes[box.node].function];
    const double y = height - kMargin - kRow * double(box.depth);
    char head[256];
    std::string text = "<g><title>" + escapedXml(name) + ": " + std::to_string(whole[box.node]) + " instructions, " +
                       percent(whole[box.node], whole[0]) + "</title>";
    std::snprintf(head, sizeof head,
                  "<rect x=\"%.2f\" y=\"%g\" width=\"%.2f\" height=\"%g\" rx=\"2\" fill=\"%s\" stroke=\"#fff\" "
                  "stroke-width=\"0.5\"/>",
                  box.x, y, box.width, kRow - 1, colorOf(name).c_str());
    text += head;
    const auto letters = size_t(std::max(0.0, (box.width - 2 * kPadding) / kLetter));
    if (letters >= 3) {
      std::snprintf(head, sizeof head, "<text x=\"%.2f\" y=\"%g\">", box.x + kPadding, y + 12.5);
      const std::string shown = name.size() <= letters ? name : name.substr(0, letters - 2) + "..";
      text += head + escapedXml(shown) + "</text>";
    }
    return text + "</g>\n";
  }

  const NamedProfile& profile;
  const std::vector<uint64_t> whole;
  std::map<uint32_t, std::vector<uint32_t>> children;
  std::vector<Box> boxes;
  size_t deepest = 0;
};

void writeSamples(JsonWriter& json, const NamedProfile& profile, const char* name, const char* unit,
                  uint64_t BobProfileCounts::*count) {
  json.beginObject();
  json.string("type", "sampled");
  json.string("name", name);
  json.string("unit", unit);
  json.number("startValue", 0);
  uint64_t all = 0;
  for (const BobProfileNode& node : profile.nodes) all += node.own.*count;
  json.number("endValue", int64_t(all));
  json.beginArray("samples");
  for (uint32_t node = 1; node < profile.nodes.size(); ++node) {
    if (profile.nodes[node].own.*count == 0) continue;
    json.beginArray();
    for (const uint32_t function : profile.stackOf(node)) json.number({}, int64_t(function) - 1);
    json.endArray();
  }
  json.endArray();
  json.beginArray("weights");
  for (uint32_t node = 1; node < profile.nodes.size(); ++node)
    if (profile.nodes[node].own.*count > 0) json.number({}, int64_t(profile.nodes[node].own.*count));
  json.endArray();
  json.endObject();
}

}  // namespace

std::string profileTable(const BobProfiler& profiler, const ProfileName& nameOf) {
  const NamedProfile profile(profiler, nameOf);
  const uint64_t all = profile.wholeInstructions().front();
  std::string text = "       own         %      whole         %     calls      bytes   gc  function\n";
  for (const auto& [name, own, whole] : rowsByOwnInstructions(profile)) {
    char line[160];
    std::snprintf(line, sizeof line, "%10llu %9s %10llu %9s %9llu %10llu %4llu  ",
                  static_cast<unsigned long long>(own.instructions), percent(own.instructions, all).c_str(),
                  static_cast<unsigned long long>(whole), percent(whole, all).c_str(),
                  static_cast<unsigned long long>(own.calls), static_cast<unsigned long long>(own.bytes),
                  static_cast<unsigned long long>(own.collections));
    text += line + profile.names[name] + "\n";
  }
  return text;
}

std::string profileFlameGraph(const BobProfiler& profiler, const ProfileName& nameOf, const std::string& title) {
  return FlameGraph(NamedProfile(profiler, nameOf)).draw(title);
}

std::string profileSpeedscope(const BobProfiler& profiler, const ProfileName& nameOf, const std::string& title) {
  const NamedProfile profile(profiler, nameOf);
  JsonWriter json;
  json.beginObject();
  json.string("$schema", "https://www.speedscope.app/file-format-schema.json");
  json.string("name", title);
  json.beginObject("shared");
  json.beginArray("frames");
  for (size_t n = 1; n < profile.names.size(); ++n) {
    json.beginObject();
    json.string("name", profile.names[n]);
    json.endObject();
  }
  json.endArray();
  json.endObject();
  json.beginArray("profiles");
  writeSamples(json, profile, "instructions", "none", &BobProfileCounts::instructions);
  writeSamples(json, profile, "bytes", "bytes", &BobProfileCounts::bytes);
  json.endArray();
  json.endObject();
  return json.text();
}
