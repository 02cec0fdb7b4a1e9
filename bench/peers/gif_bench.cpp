// GIF pictures to indices, beside giflib: both decode the same bytes in memory into one buffer of rows.
#include <benchmark/benchmark.h>
#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "engine/images/gifdecoder.h"

namespace {

constexpr int kWidth = 720, kHeight = 480;

enum Kind { flat, photo, noise, interlacedPhoto };
const char* const kNames[] = {"flat", "photo", "noise", "interlaced photo"};

// Indices as pages, photographs, and nothing that compresses have them.
std::vector<uint8_t> Pixels(int kind, int height = kHeight) {
  std::mt19937 random(4);
  std::vector<uint8_t> pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      if (kind == flat)
        pixels.push_back(uint8_t(x / 90 + y / 60 * 8));
      else if (kind == noise)
        pixels.push_back(uint8_t(random()));
      else
        pixels.push_back(uint8_t((x + y) / 6 + int(random() % 5)));
    }
  }
  return pixels;
}

struct Bytes {
  std::vector<uint8_t> bytes;
  size_t at = 0;
};

int Append(GifFileType* gif, const GifByteType* bytes, int size) {
  auto& out = static_cast<Bytes*>(gif->UserData)->bytes;
  out.insert(out.end(), bytes, bytes + size);
  return size;
}

int Take(GifFileType* gif, GifByteType* bytes, int size) {
  auto* in = static_cast<Bytes*>(gif->UserData);
  const size_t count = std::min(size_t(size), in->bytes.size() - in->at);
  std::memcpy(bytes, in->bytes.data() + in->at, count);
  in->at += count;
  return int(count);
}

constexpr struct { int start, step; } kPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}}, kPlain[] = {{0, 1}};

template <class Line>
void EachRow(bool interlaced, int height, Line&& line) {
  const auto rows = [&](const auto& passes) {
    for (const auto& pass : passes)
      for (int y = pass.start; y < height; y += pass.step) line(y);
  };
  if (interlaced) return rows(kPasses);
  rows(kPlain);
}

std::vector<uint8_t> Gif(int kind, int height = kHeight) {
  const bool interlaced = kind == interlacedPhoto;
  std::vector<uint8_t> pixels = Pixels(kind, height);
  Bytes file;
  int error;
  GifFileType* gif = EGifOpen(&file, Append, &error);
  ColorMapObject* colors = GifMakeMapObject(256, nullptr);
  EGifPutScreenDesc(gif, kWidth, height, 8, 0, colors);
  EGifPutImageDesc(gif, 0, 0, kWidth, height, interlaced, nullptr);
  EachRow(interlaced, height, [&](int y) { EGifPutLine(gif, pixels.data() + y * kWidth, kWidth); });
  EGifCloseFile(gif, &error);
  GifFreeMapObject(colors);
  return file.bytes;
}

bool DecodeOurs(const std::vector<uint8_t>& file, std::vector<uint8_t>* out) {
  size_t at = 0;
  GifDecoder decoder([&](uint8_t* buffer, size_t size) {
    size = std::min(size, file.size() - at);
    std::memcpy(buffer, file.data() + at, size);
    at += size;
    return size;
  });
  return decoder.decode([](uint32_t, uint32_t, const auto*) { return true; },
                        [&](uint32_t y, const uint8_t* row, uint32_t count) {
                          std::copy_n(row, count, out->data() + size_t{y} * kWidth);
                        }) == GifError::none;
}

bool DecodePeers(Bytes* file, std::vector<uint8_t>* out) {
  int error;
  file->at = 0;
  GifFileType* gif = DGifOpen(file, Take, &error);
  GifRecordType type;
  bool good =
      DGifGetRecordType(gif, &type) == GIF_OK && type == IMAGE_DESC_RECORD_TYPE && DGifGetImageDesc(gif) == GIF_OK;
  EachRow(gif->Image.Interlace, kHeight,
          [&](int y) { good = good && DGifGetLine(gif, out->data() + y * kWidth, kWidth) == GIF_OK; });
  DGifCloseFile(gif, &error);
  return good;
}

void Ours(benchmark::State& state) {
  const int kind = int(state.range(0));
  const std::vector<uint8_t> file = Gif(kind);
  std::vector<uint8_t> out(kWidth * kHeight);
  for (auto _ : state)
    if (!DecodeOurs(file, &out)) return state.SkipWithError("did not decode");
  if (out != Pixels(kind)) state.SkipWithError("decoded something else");
  state.SetLabel(kNames[kind]);
}

void Giflib(benchmark::State& state) {
  const int kind = int(state.range(0));
  Bytes file{Gif(kind)};
  std::vector<uint8_t> out(kWidth * kHeight);
  for (auto _ : state)
    if (!DecodePeers(&file, &out)) return state.SkipWithError("did not decode");
  if (out != Pixels(kind)) state.SkipWithError("decoded something else");
  state.SetLabel(kNames[kind]);
}

// A photograph of so many rows.
void Rows(benchmark::State& state) {
  const std::vector<uint8_t> file = Gif(photo, int(state.range(0)));
  std::vector<uint8_t> out(size_t(kWidth) * size_t(state.range(0)));
  for (auto _ : state)
    if (!DecodeOurs(file, &out)) return state.SkipWithError("did not decode");
}
BENCHMARK(Rows)->Name("rows")->Arg(48)->Arg(480)->Arg(4800)->Unit(benchmark::kMicrosecond);

BENCHMARK(Ours)->Name("gif")->DenseRange(flat, interlacedPhoto)->Unit(benchmark::kMicrosecond);
BENCHMARK(Giflib)->Name("gif/giflib")->DenseRange(flat, interlacedPhoto)->Unit(benchmark::kMicrosecond);

}  // namespace
