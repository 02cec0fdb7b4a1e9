// Films as files: GIF, animated PNG, numbered pictures.
//
// Colours are exact in all three. GIF counts hundredths of a second; the others keep milliseconds.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kit/files.h"
#include "kit/film/film.h"

// A GIF has 256 colours a picture, so one with more is put together from several, each with a table of its own and
// shown at once; a viewer that holds each for a moment shows how it is put together.
class GifAnimation : public FilmSink {
 public:
  GifAnimation();
  ~GifAnimation() override;
  void show(const Picture& picture, uint64_t milliseconds) override;
  void finish() override;
  const std::string& bytes() const { return file; }

 private:
  struct Encoder;

  void emit(const Picture& picture, uint64_t hundredths);

  std::string file;
  std::unique_ptr<Encoder> encoder;
  Picture shown;         // as far as it has been emitted
  Picture skipped;       // a last picture whose time was too short; without a size when there is none
  uint64_t elapsed = 0;  // milliseconds
};

// A PNG whose first picture every viewer shows.
class AnimatedPng : public FilmSink {
 public:
  void show(const Picture& picture, uint64_t milliseconds) override;
  void finish() override;
  const std::string& bytes() const { return file; }

 private:
  void emit(const Picture& picture, const Bounds& area, uint16_t milliseconds);

  std::string file, frames;
  Picture shown;
  uint32_t count = 0, sequence = 0;
};

// 0001.png and so on in a folder, which is made, and frames.json with the time of each. A film that is there is
// replaced in the end; KitError for a folder with anything else in it.
class FilmFolder : public FilmSink {
 public:
  explicit FilmFolder(const std::string& folder);
  void show(const Picture& picture, uint64_t milliseconds) override;
  void finish() override;

 private:
  const std::string folder;
  struct Frame {
    std::string file;
    uint64_t begin, milliseconds;
  };
  std::vector<Frame> frames;
  std::vector<std::filesystem::path> old;  // files of the film that is there
  OutputFiles files;
};
