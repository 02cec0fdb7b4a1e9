#include "kit/film/film.h"

#include <algorithm>

// Whether anything was drawn; to compare pictures after each millisecond takes longer than the page does.
class Film::Watch : public EngineObserver {
 public:
  void drawn(const Drawing&) override { hasDrawn = true; }
  void swapped() override { hasDrawn = true; }

  bool hasDrawn = false;
};

namespace {

const ScreenSurface& screenOf(PageRun& run) { return run.player().shell.screen; }

Picture pictureOf(PageRun& run) {
  const ScreenSurface& screen = screenOf(run);
  return {uint32_t(screen.screenWidth), uint32_t(screen.screenHeight), screen.dibBits};
}

}  // namespace

Bounds changedArea(const Picture& before, const Picture& now) {
  if (before.width != now.width || before.height != now.height) return {0, 0, int32_t(now.width), int32_t(now.height)};
  uint32_t left = now.width, right = 0, top = now.height, bottom = 0;
  for (uint32_t y = 0; y < now.height; ++y) {
    const uint32_t *a = &before.pixels[size_t{y} * now.width], *b = &now.pixels[size_t{y} * now.width];
    const auto first = uint32_t(std::mismatch(a, a + now.width, b).first - a);
    if (first == now.width) continue;
    uint32_t last = now.width;
    while (a[last - 1] == b[last - 1]) --last;
    left = std::min(left, first), right = std::max(right, last);
    top = std::min(top, y), bottom = y + 1;
  }
  if (right == 0) return {};
  return {int32_t(left), int32_t(top), int32_t(right - left), int32_t(bottom - top)};
}

Film::Film(PageRun& r, FilmSink& s, const FilmOptions& o)
    : run(r), sink(s), options(o), shown(pictureOf(r)), shownFor(o.pace) {
  auto observer = std::make_unique<Watch>();
  watch = observer.get();
  run.watch(std::move(observer));
}

Film::~Film() { run.watch(nullptr); }

void Film::act(const PageAction& action) {
  if (action.kind != PageAction::wait) {
    run.act(action);
    look();
    shownFor += options.pace;
    return;
  }
  for (unsigned long left = std::stoul(action.argument); left > 0 && run.stopped().empty(); --left) {
    run.act({PageAction::wait, "1"});
    ++shownFor;
    if (watch->hasDrawn) look();
  }
}

// What nobody had the time to see isn't shown.
void Film::look() {
  watch->hasDrawn = false;
  if (screenOf(run).dibBits == shown.pixels) return;
  if (shownFor > 0) sink.show(shown, shownFor);
  shown = pictureOf(run);
  shownFor = 0;
}

void Film::finish() {
  sink.show(shown, std::max<uint64_t>(shownFor + options.last, 1));
  sink.finish();
}
