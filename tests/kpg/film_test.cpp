// kpg film: the three kinds of film show the same pictures, pixel for pixel, for as long as they were there.
#include <gif_lib.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>

#include "kit/pictures/png.h"
#include "kit/readjson.h"
#include "kpgfixture.h"

namespace {

namespace fs = std::filesystem;

struct Shown {
  std::vector<uint32_t> pixels;  // 0x00RRGGBB
  uint64_t milliseconds;

  bool operator==(const Shown&) const = default;
};

std::vector<uint32_t> withoutAlpha(std::vector<uint32_t> pixels) {
  for (uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
  return pixels;
}

std::vector<Shown> readFolder(const std::string& folder) {
  const auto list = readFile(folder + "/frames.json");
  std::vector<Shown> all;
  uint64_t begin = 0;
  const JsonValue root = readJson(std::string(list.begin(), list.end()));
  for (const JsonValue& frame : root.find("frames")->array) {
    const std::string file = folder + "/" + frame.find("file")->text;
    EXPECT_EQ(frame.find("begin")->number, double(begin));
    all.push_back({withoutAlpha(decodePng(file, readFile(file)).pixels), uint64_t(frame.find("milliseconds")->number)});
    begin += all.back().milliseconds;
  }
  return all;
}

// Pictures that have no time of their own are put together with the next.
std::vector<Shown> readGif(const std::string& path) {
  int error = 0;
  GifFileType* gif = DGifOpenFileName(path.c_str(), &error);
  EXPECT_TRUE(gif && DGifSlurp(gif) == GIF_OK);
  std::vector<Shown> all;
  std::vector<uint32_t> canvas(size_t(gif->SWidth * gif->SHeight));
  for (int i = 0; i < gif->ImageCount; ++i) {
    const SavedImage& image = gif->SavedImages[i];
    const GifImageDesc& at = image.ImageDesc;
    for (int k = 0; k < at.Width * at.Height; ++k) {
      const GifColorType c = at.ColorMap->Colors[image.RasterBits[k]];
      canvas[size_t((at.Top + k / at.Width) * gif->SWidth + at.Left + k % at.Width)] =
          uint32_t(c.Red << 16 | c.Green << 8 | c.Blue);
    }
    GraphicsControlBlock control;
    EXPECT_EQ(DGifSavedExtensionToGCB(gif, i, &control), GIF_OK);
    if (control.DelayTime > 0) all.push_back({canvas, uint64_t(control.DelayTime) * 10});
  }
  DGifCloseFile(gif, &error);
  return all;
}

// Each frame is made a PNG of its own.
class AnimatedPngReader {
 public:
  std::vector<Shown> read(const std::string& path) {
    const auto bytes = readFile(path);
    const std::string file(bytes.begin(), bytes.end());
    head = file.substr(0, 8);
    for (size_t at = 8; at < file.size();) {
      const uint32_t length = number(file, at);
      const std::string type = file.substr(at + 4, 4), data = file.substr(at + 8, length);
      EXPECT_EQ(number(file, at + 8 + length),
                crc32(0, reinterpret_cast<const Bytef*>(file.data()) + at + 4, length + 4));
      take(type, data);
      at += length + 12;
    }
    EXPECT_EQ(frames, all.size());
    return all;
  }

 private:
  static uint32_t number(const std::string& s, size_t at, int bytes = 4) {
    uint32_t n = 0;
    for (int i = 0; i < bytes; ++i) n = n << 8 | uint8_t(s[at + size_t(i)]);
    return n;
  }
  static std::string word(uint32_t n) { return {char(n >> 24), char(n >> 16), char(n >> 8), char(n)}; }
  static std::string chunk(const std::string& body) {
    return word(uint32_t(body.size() - 4)) + body +
           word(uint32_t(crc32(0, reinterpret_cast<const Bytef*>(body.data()), uInt(body.size()))));
  }

  void take(const std::string& type, const std::string& data) {
    if (type == "IHDR") {
      header = data;
      width = number(data, 0);
      canvas.resize(size_t{width} * number(data, 4));
    } else if (type == "acTL") {
      frames = number(data, 0);
    } else if (type == "fcTL") {
      EXPECT_EQ(number(data, 0), sequence++);
      control = data;
    } else if (type == "IDAT") {
      draw(data);
    } else if (type == "fdAT") {
      EXPECT_EQ(number(data, 0), sequence++);
      draw(data.substr(4));
    }
  }

  void draw(const std::string& packed) {
    const std::string png =
        head + chunk("IHDR" + control.substr(4, 8) + header.substr(8)) + chunk("IDAT" + packed) + chunk("IEND");
    const Picture part = decodePng("frame", {png.begin(), png.end()});
    const uint32_t left = number(control, 12), top = number(control, 16);
    for (uint32_t y = 0; y < part.height; ++y)
      for (uint32_t x = 0; x < part.width; ++x)
        canvas[size_t{top + y} * width + left + x] = part.pixels[size_t{y} * part.width + x] & 0xFFFFFF;
    EXPECT_EQ(number(control, 22, 2), 1000u);
    all.push_back({canvas, number(control, 20, 2)});
  }

  std::string head, header, control;
  uint32_t width = 0, frames = 0, sequence = 0;
  std::vector<uint32_t> canvas;
  std::vector<Shown> all;
};

class FilmTest : public KpgTest {
 protected:
  // A page of many colours, on which a timer changes a box every 40 milliseconds, four times.
  FilmTest() {
    std::string page =
        "flags: 16bit\npage:\n  width: 720\n  height: 480\n  type: group\n  bgColor: '#102030'\n  start: go\n"
        "  onLoad: |\n    n = 0;\n    define tick() { if (n < 4) { n = n + 1; widgets.go.bgColor = n * 1000000000; } "
        "}\n"
        "    t = new Timer(tick);\n  children:\n"
        "    - {name: go, x: 300, y: 300, width: 40, height: 40, bgColor: '#FFFFFF', onClick: 't.Set(40, true);'}\n";
    for (int i = 0; i < 700; ++i)
      page += "    - {x: " + std::to_string(i) + ", y: 10, width: 1, height: 9, bgColor: '#" + hex(i * 37 % 256) +
              hex(i * 11 % 256) + hex(i / 3) + "'}\n";
    writeText("p.yaml", page);
  }
  static std::string hex(int n) {
    char text[8];
    std::snprintf(text, sizeof text, "%02X", n);
    return text;
  }
};

TEST_F(FilmTest, AllKindsShowWhatTheScreenShowed) {
  const std::string film = "film p.yaml --key Select --wait 500 -o ";
  ASSERT_EQ(kpg(film + "f"), 0) << err;
  const std::vector<Shown> frames = readFolder("f");
  // As it opened and after the key, then every 40 milliseconds; what is left of the wait, and a second at the end.
  std::vector<uint64_t> times;
  for (const Shown& frame : frames) times.push_back(frame.milliseconds);
  EXPECT_EQ(times, (std::vector<uint64_t>{1040, 40, 40, 40, 340 + 1000}));
  ASSERT_EQ(kpg("shot p.yaml -o first.png"), 0);
  EXPECT_EQ(frames.front().pixels, withoutAlpha(decodePng("first.png", readFile("first.png")).pixels));
  ASSERT_EQ(kpg("shot p.yaml --key Select --wait 500 -o last.png"), 0);
  EXPECT_EQ(frames.back().pixels, withoutAlpha(decodePng("last.png", readFile("last.png")).pixels));

  ASSERT_EQ(kpg(film + "f.png"), 0) << err;
  EXPECT_TRUE(AnimatedPngReader().read("f.png") == frames);
  ASSERT_EQ(kpg(film + "f.gif"), 0) << err;
  EXPECT_TRUE(readGif("f.gif") == frames);
  const std::string gif = text("f.gif");
  ASSERT_EQ(kpg(film + "f.gif"), 0);
  EXPECT_EQ(text("f.gif"), gif);
}

TEST_F(FilmTest, LongTimesAreKept) {
  const std::string film = "film p.yaml --wait 700000 --last 0 --pace 0 -o ";
  ASSERT_EQ(kpg(film + "f.png"), 0) << err;
  ASSERT_EQ(kpg(film + "f.gif"), 0) << err;
  for (const auto& shown : {AnimatedPngReader().read("f.png"), readGif("f.gif")}) {
    uint64_t whole = 0;
    for (const Shown& each : shown) whole += each.milliseconds;
    EXPECT_EQ(whole, 700000u);
  }
}

TEST_F(FilmTest, AGifShowsTheEndHoweverShort) {
  ASSERT_EQ(kpg("film p.yaml --last 0 --pace 0 -o f.gif"), 0) << err;
  ASSERT_EQ(kpg("film p.yaml -o f"), 0) << err;
  EXPECT_EQ(readGif("f.gif").back().pixels, readFolder("f").back().pixels);
  ASSERT_EQ(kpg("film p.yaml --key Select --wait 42 --last 0 -o f.gif"), 0) << err;
  ASSERT_EQ(kpg("film p.yaml --key Select --wait 42 -o f"), 0) << err;
  EXPECT_EQ(readGif("f.gif").back().pixels, readFolder("f").back().pixels);
}

TEST_F(FilmTest, AFolderIsOnlyTakenWhenItHasAFilm) {
  fs::create_directory("d");
  ASSERT_EQ(kpg("film p.yaml --key Select --wait 100 -o d"), 0) << err;
  EXPECT_TRUE(fs::exists("d/0002.png"));
  ASSERT_EQ(kpg("film p.yaml -o d"), 0) << err;
  EXPECT_FALSE(fs::exists("d/0002.png"));
  EXPECT_EQ(kpg("film none.yaml -o d"), 1);
  EXPECT_TRUE(fs::exists("d/0001.png"));
  EXPECT_EQ(std::distance(fs::directory_iterator("d"), {}), 2);
  writeText("d/0007.txt", "precious");
  EXPECT_EQ(kpg("film p.yaml -o d"), 1);
  EXPECT_EQ(err, "d: has something else than a film in it; name another folder\n");
  EXPECT_TRUE(fs::exists("d/0001.png"));
  EXPECT_EQ(kpg("film p.yaml -o film.mpg"), 1);
  EXPECT_EQ(kpg("film none.yaml -o x.png"), 1);
  EXPECT_EQ(err, "none.yaml: No such file or directory\n");
  EXPECT_EQ(kpg("film p.yaml --eval 'nosuch;' -o e.png"), 0);
  EXPECT_TRUE(err.starts_with("Error: Unbound variable - nosuch\n")) << err;
  EXPECT_EQ(kpg("film p.yaml --eval 'while (true) ;' --timeout 0.1 -o x.png"), 1);
  EXPECT_NE(err.find("stopped after 0.1 seconds of processor time"), std::string::npos) << err;
  EXPECT_FALSE(fs::exists("x.png"));
}

}  // namespace
