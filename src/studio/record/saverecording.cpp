#include "studio/record/saverecording.h"

#include <filesystem>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/film/filmfiles.h"
#include "kit/pictures/png.h"
#include "kit/project/livefiles.h"
#include "kit/testing/writetest.h"
#include "studio/session/keptstate.h"

namespace fs = std::filesystem;

namespace {

constexpr char kTestEnd[] = ".test.yaml";

// The page as it is when somebody opens it, in a run of its own.
class FreshRun {
 public:
  explicit FreshRun(const std::string& page) : files(page), run(options()) {
    files.begin();
    if (!run.load(page)) throw KitError(page, "can't be opened: " + run.log());
  }

  LiveFiles files;
  PageRun run;

 private:
  PageRunOptions options() {
    PageRunOptions options;
    options.limitSeconds = 10;
    options.limitMemory = kUsualMemory;
    options.readOnly = true;
    options.files = &files;
    return options;
  }
};

std::string relativeTo(const std::string& file, const std::string& page) {
  std::error_code error;
  const fs::path folder = fs::absolute(file).parent_path();
  const fs::path relative = fs::relative(page, folder, error);
  return error || relative.empty() ? page : relative.generic_string();
}

// Through the pages inside: "list/go"; empty for widgets without names.
std::string focusOf(Engine& engine) {
  const KeptState state = readKeptState(engine);
  std::string path;
  for (auto at = state.focus.find(""); at != state.focus.end(); at = state.focus.find(path + "/"))
    path += (path.empty() ? "" : "/") + at->second;
  return path;
}

void saveTest(const Recording& done, const std::string& page, const std::string& file) {
  FreshRun fresh(page);
  for (const PageAction& action : done.actions) fresh.run.act(action);
  NewTest test;
  test.page = relativeTo(file, page);
  test.focus = focusOf(fresh.run.engine());
  const std::string picture = file.substr(0, file.size() - sizeof kTestEnd + 1) + ".png";
  test.picture = fs::path(picture).filename().string();
  const std::string text = testOf(done, test);
  std::error_code error;
  if (fs::exists(picture, error)) throw KitError(picture, "is there; move it, or give the test another name");
  const PagePicture shown = fresh.run.take();
  writePng(picture, shown.width, shown.height, shown.pixels);
  writeFile(file, text.data(), text.size());
}

template <class Sink>
void saveFilm(const Recording& done, const std::string& page, const std::string& file) {
  Sink sink;
  FreshRun fresh(page);
  Film film(fresh.run, sink, {});
  for (const PageAction& action : done.actions) film.act(action);
  film.finish();
  writeFile(file, sink.bytes().data(), sink.bytes().size());
}

}  // namespace

void saveRecording(const Recording& done, const std::string& page, const std::string& file) {
  refuseClashes({file}, {page});
  if (file.ends_with(kTestEnd)) return saveTest(done, page, file);
  if (file.ends_with(".gif")) return saveFilm<GifAnimation>(done, page, file);
  if (file.ends_with(".png")) return saveFilm<AnimatedPng>(done, page, file);
  Recording recording = done;
  recording.page = relativeTo(file, page);
  const std::string text = recordingText(recording);
  writeFile(file, text.data(), text.size());
}
