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
  return path.extension() == ".png" && stem.size() >= 4 && stem.size() < 18 &&
         std::all_of(stem.begin(), stem.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

FilmFolder::FilmFolder(const std::string& f) : folder(f) {
  if (!fs::exists(folder)) return;
  if (!fs::is_directory(folder)) throw KitError(folder, "is no folder");
  for (const auto& entry : fs::directory_iterator(folder)) old.push_back(entry.path());
  const bool isFilm = std::any_of(old.begin(), old.end(), [](const fs::path& p) { return p.filename() == kList; });
  const auto isOurs = [](const fs::path& p) { return isFrame(p) || p.filename() == kList; };
  if (!old.empty() && !(isFilm && std::all_of(old.begin(), old.end(), isOurs)))
    throw KitError(folder, "has something else than a film in it; name another folder");
}

void FilmFolder::show(const Picture& picture, uint64_t milliseconds) {
  std::error_code error;
  if (frames.empty()) fs::create_directories(folder, error);
  if (error) throw KitError(folder, error.message());
  char name[32];
  std::snprintf(name, sizeof name, "%04zu.png", frames.size() + 1);
  const std::vector<uint8_t> png = encodePng(int(picture.width), int(picture.height), picture.pixels);
  files.add((fs::path(folder) / name).generic_string(), png.data(), png.size());
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
  files.add((fs::path(folder) / kList).generic_string(), json.text().data(), json.text().size());
  files.finish();
  std::error_code error;
  for (const fs::path& path : old)
    if (isFrame(path) && std::stoul(path.stem().string()) > frames.size()) fs::remove(path, error);
}
