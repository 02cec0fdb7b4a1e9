#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/film/filmfiles.h"
#include "kit/json.h"
#include "kit/pictures/png.h"

namespace fs = std::filesystem;

namespace {

constexpr char kList[] = "frames.json";

bool isFrame(const fs::path& path) {
  const std::string stem = path.stem().string();
  return path.extension() == ".png" && stem.size() >= 4 &&
         std::all_of(stem.begin(), stem.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

FilmFolder::FilmFolder(const std::string& f) : folder(f) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (!fs::is_directory(folder)) throw KitError(folder, "can't be made a folder");
  std::vector<fs::path> old;
  for (const auto& entry : fs::directory_iterator(folder)) old.push_back(entry.path());
  const bool isFilm = std::any_of(old.begin(), old.end(), [](const fs::path& p) { return p.filename() == kList; });
  const auto isOurs = [](const fs::path& p) { return isFrame(p) || p.filename() == kList; };
  if (!old.empty() && !(isFilm && std::all_of(old.begin(), old.end(), isOurs)))
    throw KitError(folder, "has something else than a film in it; name another folder");
  for (const fs::path& path : old) fs::remove(path, error);
}

void FilmFolder::show(const Picture& picture, uint64_t milliseconds) {
  char name[32];
  std::snprintf(name, sizeof name, "%04zu.png", frames.size() + 1);
  writePng((fs::path(folder) / name).string(), int(picture.width), int(picture.height), picture.pixels);
  const uint64_t begin = frames.empty() ? 0 : frames.back().begin + frames.back().milliseconds;
  frames.push_back({name, begin, milliseconds});
}

void FilmFolder::finish() {
  JsonWriter json;
  json.beginObject();
  json.beginArray("frames");
  for (const Frame& frame : frames) {
    json.beginObject();
    json.string("file", frame.file);
    json.number("begin", int64_t(frame.begin));
    json.number("milliseconds", int64_t(frame.milliseconds));
    json.endObject();
  }
  json.endArray();
  json.endObject();
  writeFile((fs::path(folder) / kList).string(), json.text().data(), json.text().size());
}
