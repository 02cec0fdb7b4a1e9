// Opening a font in one step and closing it in order, for tests and their tools.
#pragma once

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "t2k/fontbuilder.h"
#include "t2k/t2k.h"

inline std::vector<uint8_t> ReadFontFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A glyph's points as "x,y", with a "*" off the curve and a "/" between contours; after a bar the two phantoms.
inline std::string PointsOf(const GlyphClass* glyph, bool scaled = false) {
  std::string text;
  int contour = 0;
  for (int i = 0; i < glyph->pointCount + 2; ++i) {
    if (i == glyph->pointCount) text += "| ";
    const int x = scaled ? glyph->x[i] : glyph->oox[i], y = scaled ? glyph->y[i] : glyph->ooy[i];
    text += std::to_string(x) + "," + std::to_string(y);
    text += i < glyph->pointCount && !glyph->onCurve[i] ? "* " : " ";
    if (contour < glyph->contourCount && glyph->ep[contour] == i && ++contour < glyph->contourCount) text += "/ ";
  }
  text.pop_back();
  return text;
}

class OpenFont {
 public:
  explicit OpenFont(std::vector<uint8_t> fontBytes, int fontType = kFontTypeSfnt, bool throughCallback = false,
                    int fontNumber = 0, const T2KStyling* styling = nullptr)
      : bytes(std::move(fontBytes)) {
    mem = tsi_NewMemhandler(&err);
    const auto length = uint32_t(bytes.size());
    in = throughCallback ? New_NonRamInputStream(mem, ReadBytesBack, this, length, &err)
                         : New_InputStream3(mem, bytes.data(), length, &err);
    font = New_sfntClass(mem, fontType, fontNumber, in, styling, &err);
    if (font) t = NewT2K(mem, font, &err);
  }
  // At a size in pixels.
  OpenFont(const SfntBuilder& builder, double pixels) : OpenFont(builder.Build()) { SetSize(pixels); }
  ~OpenFont() { Close(); }
  OpenFont(const OpenFont&) = delete;
  OpenFont& operator=(const OpenFont&) = delete;

  // Returns the blocks that were left once everything was deleted.
  int Close() {
    if (!mem) return 0;
    int ignored;
    DeleteT2K(t, &ignored);
    Delete_sfntClass(font, &ignored);
    Delete_InputStream(in, &ignored);
    const int left = mem->numPointers;
    tsi_DeleteMemhandler(mem);
    mem = nullptr;
    t = nullptr;
    font = nullptr;
    in = nullptr;
    return left;
  }

  void SetSize(double pixels) {
    const auto size = hsFixed(pixels * 65536);
    SetMatrix({size, 0, 0, size});
  }
  void SetMatrix(const T2KMatrix& matrix) { T2K_NewTransformation(t, true, 72, 72, &matrix, &err); }

  // Throws tsiError.
  GlyphHolder Glyph(int index, bool withHints = false, uint16_t* advance = nullptr) {
    uint16_t ignored;
    return GlyphHolder(GetGlyphByIndex(font, index, withHints, advance ? advance : &ignored));
  }

  // What Glyph returns as text, or "error" and the code.
  std::string Outline(int index, uint16_t* advance = nullptr) {
    std::string text;
    if (font) tsi_Enter(mem, &err, [&] { text = PointsOf(Glyph(index, false, advance).get()); });
    return err ? "error " + std::to_string(err) : text;
  }

  // False on an error.
  bool Render(int32_t code, int greyLevel, int cmd) {
    T2K_RenderGlyph(t, code, 0, 0, greyLevel, cmd, &err);
    return err == 0;
  }

  std::vector<uint8_t> bytes;
  tsiMemObject* mem = nullptr;
  InputStream* in = nullptr;
  sfntClass* font = nullptr;
  T2K* t = nullptr;
  int err = 0;

 private:
  static bool ReadBytesBack(void* id, uint8_t* destination, uint32_t position, uint32_t count) {
    const auto& source = static_cast<OpenFont*>(id)->bytes;
    if (position > source.size() || count > source.size() - position) return false;
    std::copy_n(source.begin() + position, count, destination);
    return true;
  }
};
