#include "kit/project/project.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>

#include "gfx/foundation/hsascii.h"
#include "kit/check/finding.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"
#include "kit/wildcards.h"
#include "kit/yaml/readyaml.h"

namespace fs = std::filesystem;

namespace {

std::optional<uint32_t> colorOf(const std::string& text) {
  const bool good =
      text.size() == 7 && text[0] == '#' && text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
  return good ? std::optional(uint32_t(std::stoul(text.substr(1), nullptr, 16))) : std::nullopt;
}

// Reads on after a fault, so that all are reported.
class ProjectReader {
 public:
  explicit ProjectReader(const std::string& file) {
    project.file = file;
    project.folder = fs::path(file).parent_path().generic_string();
  }

  Project read() {
    const YamlNode root = readYaml(project.file);
    if (root.isNull())
      throw KitError(messageAt(root.place, "is empty; say what to build, pages: [PAGE.yaml] at least"));
    eachKey(root, "a project",
            {{"output", [&](const YamlNode& n) { readOutput(n); }},
             {"strip", [&](const YamlNode& n) { project.strip = boolean(n); }},
             {"pages", [&](const YamlNode& n) { project.pages = pages(n); }},
             {"tables", [&](const YamlNode& n) { readTables(n); }},
             {"pictures", [&](const YamlNode& n) { eachItem(n, [&](const YamlNode& i) { readPicture(i); }); }},
             {"fonts", [&](const YamlNode& n) { eachItem(n, [&](const YamlNode& i) { readFont(i); }); }},
             {"scripts", [&](const YamlNode& n) { project.scripts = files(n); }},
             {"files", [&](const YamlNode& n) { project.files = files(n); }},
             {"allow", [&](const YamlNode& n) { eachItem(n, [&](const YamlNode& i) { readAllowed(i); }); }},
             {"keep", [&](const YamlNode& n) {
                eachItem(n, [&](const YamlNode& i) { project.keep.push_back(name(i).text); });
              }}});
    if (!errors.empty()) throw KitError(std::move(errors));
    dropShots();
    return std::move(project);
  }

 private:
  using Readers = std::vector<std::pair<std::string, std::function<void(const YamlNode&)>>>;

  // The pictures that kpg shot makes of pages, by the names that it gives them, aren't meant by a pattern.
  void dropShots() {
    std::erase_if(project.pictures, [&](const ProjectPicture& picture) { return isShot(picture.file); });
    for (ProjectTable& table : project.tables)
      std::erase_if(table.pictures, [&](const ProjectName& picture) { return isShot(picture); });
  }

  bool isShot(const ProjectName& picture) const {
    const fs::path stem = fs::path(picture.text).stem();
    const auto isOfPage = [&](const ProjectName& page) { return fs::path(page.text).stem() == stem; };
    return picture.byPattern && std::any_of(project.pages.begin(), project.pages.end(), isOfPage) &&
           isKitPng(readFile(project.pathOf(picture.text)));
  }

  void fail(const YamlPlace& place, const std::string& text) { errors.push_back(messageAt(place, text)); }

  void eachKey(const YamlNode& node, const std::string& what, const Readers& readers) {
    if (!node.isMap()) return fail(node.place, what + " is a map of keys, not " + shownNode(node));
    std::vector<std::string> known, met;
    for (const auto& reader : readers) known.push_back(reader.first);
    for (const YamlPair& pair : node.map) {
      const auto reader =
          std::find_if(readers.begin(), readers.end(), [&](const auto& r) { return r.first == pair.key; });
      if (std::find(met.begin(), met.end(), pair.key) != met.end()) {
        fail(pair.place, "'" + pair.key + "' comes a second time");
      } else if (reader == readers.end()) {
        const std::string meant = suggestion(pair.key, known);
        fail(pair.place,
             what + " has no '" + pair.key + "'" + (meant.empty() ? "; it has " + listOfWords(known) : meant));
      } else {
        try {
          reader->second(pair.value);
        } catch (const SourceFault& fault) {
          fail(fault.at, pair.key + ": " + fault.text);
        }
      }
      met.push_back(pair.key);
    }
  }

  // A list, or its only item.
  void eachItem(const YamlNode& node, const std::function<void(const YamlNode&)>& read) {
    if (node.isNull()) return;
    if (!node.isList()) return read(node);
    for (const YamlNode& item : node.list) try {
        read(item);
      } catch (const SourceFault& fault) {
        fail(fault.at, fault.text);
      }
  }

  static ProjectName name(const YamlNode& node) {
    const std::string& text = scalarText(node, "a name");
    if (text.empty()) throw SourceFault{node.place, "a name is missing"};
    return {text, node.place};
  }

  static bool boolean(const YamlNode& node) { return booleanValue(node).number != 0; }

  static size_t colors(const YamlNode& node) {
    const auto n = parseInteger(scalarText(node, "a number of colours"));
    if (!n || *n < 3 || *n > int64_t(kMaxClutColors) - 1)
      throw SourceFault{node.place,
                        shownNode(node) + " is no number of colours from 3 to " + std::to_string(kMaxClutColors - 1)};
    return size_t(*n);
  }

  // Names of files, of which the last part may be a pattern.
  std::vector<ProjectName> files(const YamlNode& node) {
    std::vector<ProjectName> all;
    eachItem(node, [&](const YamlNode& item) {
      for (ProjectName& each : matching(name(item))) all.push_back(std::move(each));
    });
    return all;
  }

  // Of what a pattern finds, the sources that have a page; what isn't YAML is for the build to refuse.
  std::vector<ProjectName> pages(const YamlNode& node) {
    std::vector<ProjectName> all;
    eachItem(node, [&](const YamlNode& item) {
      const ProjectName pattern = name(item);
      const size_t before = all.size();
      for (ProjectName& each : matching(pattern))
        (each.text == pattern.text || hasPage(project.pathOf(each.text)) ? all : project.noPages)
            .push_back(std::move(each));
      if (all.size() == before) throw SourceFault{pattern.place, "no file called '" + pattern.text + "' has a 'page'"};
    });
    return all;
  }

  static bool hasPage(const std::string& path) try { return readYaml(path).find("page"); } catch (const KitError&) {
    return true;
  }

  std::vector<ProjectName> matching(const ProjectName& pattern) {
    if (pattern.text.find('*') == std::string::npos) return {pattern};
    const fs::path path = pattern.text;
    const std::string last = path.filename().string();
    std::vector<ProjectName> found;
    std::error_code error;
    const std::string folder = project.pathOf(path.parent_path().generic_string());
    for (fs::directory_iterator at(folder.empty() ? "." : folder, error), end; !error && at != end;
         at.increment(error)) {
      const std::string file = at->path().filename().string();
      if (file == kProjectFileName || file.ends_with(".test.yaml") || !at->is_regular_file(error)) continue;
      const bool isHidden = file.starts_with('.') && !last.starts_with('.');
      if (!isHidden && matchesWildcards(last, file))
        found.push_back({(path.parent_path() / file).generic_string(), pattern.place, true});
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.text < b.text; });
    if (found.empty()) throw SourceFault{pattern.place, "no file is called '" + pattern.text + "'"};
    return found;
  }

  void readOutput(const YamlNode& node) {
    const ProjectName output = name(node);
    const fs::path normal = fs::path(output.text).lexically_normal();
    if (normal == "." || normal == "./") throw SourceFault{node.place, "built files need a folder of their own"};
    project.output = output.text;
  }

  void readTables(const YamlNode& node) {
    if (node.isNull()) return;
    if (!node.isMap()) return fail(node.place, "tables are a map, NAME.clut: standard or NAME.clut: pictures");
    for (const YamlPair& pair : node.map) {
      ProjectTable table;
      table.name = {pair.key, pair.place};
      if (hasTable(pair.key)) fail(pair.place, "the table '" + pair.key + "' comes a second time");
      try {
        readTable(pair.value, &table);
      } catch (const SourceFault& fault) {
        fail(fault.at, pair.key + ": " + fault.text);
      }
      project.tables.push_back(std::move(table));
    }
  }

  bool hasTable(const std::string& name) const {
    return std::any_of(project.tables.begin(), project.tables.end(),
                       [&](const ProjectTable& t) { return t.name.text == name; });
  }

  void readTable(const YamlNode& node, ProjectTable* table) {
    if (node.isMap())
      return eachKey(node, "a table",
                     {{"pictures", [&](const YamlNode& n) { table->pictures = files(n); }},
                      {"colors", [&](const YamlNode& n) { table->most = colors(n); }}});
    if (node.isList()) {
      table->pictures = files(node);
      return;
    }
    const std::string& kind = scalarText(node, "standard, pictures, or a list of pictures");
    table->standard = kind == "standard";
    if (kind != "standard" && kind != "pictures")
      throw SourceFault{node.place, shownNode(node) + " is neither standard nor pictures nor a list of pictures" +
                                        suggestion(kind, {"standard", "pictures"})};
  }

  void readPicture(const YamlNode& node) {
    ProjectPicture options;
    std::vector<ProjectName> names;
    if (node.isMap()) {
      eachKey(node, "a picture",
              {{"files", [&](const YamlNode& n) { names = files(n); }},
               {"table", [&](const YamlNode& n) { options.table = name(n); }},
               {"to", [&](const YamlNode& n) { options.to = name(n).text; }},
               {"tableName", [&](const YamlNode& n) { options.tableName = n.isNull() ? "" : scalarText(n, "a name"); }},
               {"colors", [&](const YamlNode& n) { options.most = colors(n); }},
               {"background", [&](const YamlNode& n) { options.background = background(n); }},
               {"dither", [&](const YamlNode& n) { options.dither = boolean(n); }}});
      if (!node.find("files")) fail(node.place, "say which pictures: files: [PICTURE.png]");
      if (node.find("colors") && node.find("table"))
        fail(node.find("colors")->place, "colors is for a table of the picture's own; give it to the table");
    } else {
      names = files(node);
    }
    for (ProjectName& each : names) {
      ProjectPicture picture = options;
      picture.file = std::move(each);
      project.pictures.push_back(std::move(picture));
    }
  }

  static uint32_t background(const YamlNode& node) {
    if (const auto color = colorOf(scalarText(node, "a colour"))) return *color;
    throw SourceFault{node.place, shownNode(node) + " is no colour \"#RRGGBB\""};
  }

  void readAllowed(const YamlNode& node) {
    const ProjectName check = name(node);
    const std::vector<std::string> known = checkNames();
    if (std::find(known.begin(), known.end(), check.text) == known.end())
      throw SourceFault{node.place, "no check is called '" + check.text + "'" + suggestion(check.text, known)};
    project.allow.push_back(check.text);
  }

  void readFont(const YamlNode& node) {
    ProjectFont font;
    if (!node.isMap()) {
      font.font = name(node);
    } else {
      eachKey(node, "a font",
              {{"font", [&](const YamlNode& n) { font.font = name(n); }},
               {"as", [&](const YamlNode& n) { font.as = name(n).text; }}});
      if (!node.find("font")) return fail(node.place, "say which font: font: NAME");
    }
    project.fonts.push_back(std::move(font));
  }

  Project project;
  std::vector<KitMessage> errors;
};

}  // namespace

std::string Project::pathOf(const std::string& name) const { return (fs::path(folder) / name).generic_string(); }

Project readProject(const std::string& file) { return ProjectReader(file).read(); }

std::string findProject(const std::string& folder) {
  std::error_code error;
  fs::path at = folder;
  for (fs::path full = fs::canonical(folder.empty() ? "." : folder, error); !error; full = full.parent_path()) {
    const fs::path file = at / kProjectFileName;
    const fs::path plain = file.lexically_normal();
    if (fs::is_regular_file(file, error)) return (fs::equivalent(plain, file, error) ? plain : file).generic_string();
    if (full == full.root_path()) break;
    at /= "..";
    error.clear();
  }
  return "";
}

std::string pageOfProject(const Project& project, const std::string& source) {
  std::error_code error;
  for (const ProjectName& page : project.pages)
    if (fs::equivalent(project.pathOf(page.text), source, error)) return page.text;
  return "";
}

bool isFontFileName(const std::string& name) {
  const std::string extension = fs::path(name).extension().string();
  if (name.find('/') != std::string::npos) return true;
  for (const char* each : {".ttf", ".otf", ".ttc"})
    if (hsAsciiEqualIgnoringCase(extension.c_str(), each)) return true;
  return false;
}
