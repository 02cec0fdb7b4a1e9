// Films of pages: all that the screen showed, picture by picture, in the time of the page's own clock.
//
// That clock stands still while a key or a line of the console is worked on, so nobody would see what each of them did
// before the next. A film stays on it for a while that isn't the page's.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/bounds.h"
#include "kit/pictures/picture.h"
#include "kit/run/pagerun.h"

// Takes the pictures of a film, all of one size, 0x00RRGGBB.
class FilmSink {
 public:
  virtual ~FilmSink() = default;

  // Each differs from the one before. A duration is 1 millisecond at least.
  virtual void show(const Picture& picture, uint64_t milliseconds) = 0;

  // After the last.
  virtual void finish() = 0;
};

// What differs, as a rectangle; the whole picture for the first, whose `before` has no size.
Bounds changedArea(const Picture& before, const Picture& now);

struct FilmOptions {
  uint32_t pace =
      500;  // milliseconds that the film stays on the page as it opens, and on what a key or a line has done
  uint32_t last = 1000;  // milliseconds for the last picture, beyond its own time
};

// Films a run: hangs an observer on it, and sees what act() does.
class Film {
 public:
  // The page is loaded. Both live longer.
  Film(PageRun& r, FilmSink& s, const FilmOptions& o);
  ~Film();

  void act(const PageAction& action);
  void finish();

 private:
  class Watch;

  void look();

  PageRun& run;
  FilmSink& sink;
  const FilmOptions options;
  Watch* watch;  // the run owns it
  Picture shown;
  uint64_t shownFor;  // milliseconds so far
};
