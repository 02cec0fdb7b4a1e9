// A contact sheet of all that the graphics library draws, to be looked at: gfx_sheet OUT.png
//
// Each cell is a 16-bit device of its own; a row shows one subject, every column a case of it. The pixels are taken as
// red, green and blue.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmapshader.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "gfx/pixel/hsgshader.h"
#include "gfx/pixel/hsgxfermode.h"
#include "gfx/vector/hsgpatheffect.h"
#include "gfx/vector/hspathiter.h"
#include "kit/pictures/png.h"

namespace {

constexpr int kCellWidth = 144, kCellHeight = 96, kColumns = 8;

constexpr hsScalar Px(double v) { return hsScalar(v * 65536); }
constexpr hsPoint At(double x, double y) { return {Px(x), Px(y)}; }
constexpr hsRect Box(double l, double t, double r, double b) { return {Px(l), Px(t), Px(r), Px(b)}; }

struct Pen : hsGAttribute {
  explicit Pen(uint32_t rgb, uint32_t flags = 0, double width = 0) : hsGAttribute(flags) {
    SetRGB(0xFF, rgb);
    SetFrameSize(Px(width));
  }
  void SetRGB(uint32_t a, uint32_t rgb) {
    SetColor(hsWiden8(a), hsWiden8(rgb >> 16), hsWiden8(rgb >> 8 & 255), hsWiden8(rgb & 255));
  }
};

constexpr uint32_t kSmooth = hsGAttribute::kAntiAlias, kFrame = hsGAttribute::kFrame,
                   kFilter = hsGAttribute::kFilterBitmaps;
constexpr uint32_t kInk = 0x203050, kRed = 0xD04020, kGreen = 0x30A060, kBlue = 0x3070D0, kGold = 0xE0B030;

hsPath Star(int points, double x, double y, double radius, double inner) {
  hsPath path;
  for (int i = 0; i < 2 * points; ++i) {
    hsMatrix rotation;
    rotation.SetRotate(Px(180.0 * i / points), Px(x), Px(y));
    hsPoint p = At(x, y - (i % 2 ? inner : radius));
    rotation.MapPoints(1, &p, &p);
    i == 0 ? path.MoveTo(p) : path.LineTo(p);
  }
  path.Close();
  return path;
}

hsPath Zigzag(double tip) {
  hsPath path;
  path.MoveTo(At(22, 74));
  path.LineTo(At(40, 24));
  path.LineTo(At(40 + tip, 74));
  path.LineTo(At(118, 34));
  return path;
}

hsPath Curves(bool cubic) {
  hsPath path;
  path.MoveTo(At(16, 76));
  if (cubic) {
    path.CurveTo(At(30, -30), At(80, 150), At(128, 20));
  } else {
    path.QuadTo(At(50, -20), At(80, 60));
    path.QuadTo(At(100, 110), At(128, 20));
  }
  return path;
}

// Cuts a path into pieces of some length, measured along its points.
class Dashes : public hsGPathEffect {
 public:
  bool FilterPath(const hsMatrix*, hsScalar*, const hsPath* src, hsPath* dst) const override {
    hsPathIter iter(*src, true);
    hsPoint p[4];
    double along = 0;
    for (hsPath::Verb verb; (verb = iter.Next(p)) != hsPath::kDoneVerb;) {
      if (verb != hsPath::kLineVerb) continue;
      const double dx = p[1].fX - p[0].fX, dy = p[1].fY - p[0].fY;
      const double length = hsMagnitude(p[1].fX - p[0].fX, p[1].fY - p[0].fY);
      for (double at = 0; at < length;) {
        const double step = std::min(length - at, kDash - along);
        const auto point = [&](double t) {
          return hsPoint{hsScalar(p[0].fX + dx * t / length), hsScalar(p[0].fY + dy * t / length)};
        };
        if (fOn) {
          dst->MoveTo(point(at));
          dst->LineTo(point(at + step));
        }
        at += step;
        along += step;
        if (along < kDash) break;
        along = 0;
        fOn = !fOn;
      }
    }
    return true;
  }

 private:
  static constexpr double kDash = 7 * 65536.0;
  mutable bool fOn = true;
};

// From one colour to another, left to right.
class Ramp : public hsGShader {
 public:
  explicit Ramp(bool fades) : fFades(fades) {}
  void SetContext(const hsGBitmap&, const hsGAttribute&, const hsMatrix& matrix) override {
    hsPoint corners[2] = {At(0, 0), At(kCellWidth, 0)};
    matrix.MapPoints(2, corners, corners);
    fLeft = corners[0].fX >> 16;
    fWidth = (corners[1].fX >> 16) - fLeft;
  }
  void ShadeRow(int32_t, int32_t x, int32_t count, hsGColor32 colors[]) override {
    for (int32_t i = 0; i < count; ++i) {
      const uint32_t t = uint32_t(std::clamp((x + i - fLeft) * 255 / fWidth, 0, 255));
      const uint32_t a = fFades ? t : 255;
      colors[i] = hsScaleColor32(hsMakeColor32(255, t, 90, 255 - t), a + 1);
    }
  }
  bool IsOpaque() const override { return !fFades; }

 private:
  bool fFades;
  int32_t fLeft = 0, fWidth = 1;
};

// Averages over a square.
class Blur : public hsGMaskFilter {
 public:
  static constexpr int32_t kReach = 4;
  bool FilterMask(const hsGMask& src, const hsMatrix& matrix, hsGMask* dst) override {
    dst->fBounds = src.fBounds;
    ComputeBounds(matrix, &dst->fBounds);
    dst->fMaskType = kMask_Alpha;
    dst->fRowBytes = hsGMask::RowBytes(kMask_Alpha, dst->fBounds.Width());
    dst->AllocImage();
    const hsIntRect& from = src.fBounds;
    for (int32_t y = dst->fBounds.fTop; y < dst->fBounds.fBottom; ++y)
      for (int32_t x = dst->fBounds.fLeft; x < dst->fBounds.fRight; ++x) {
        int32_t sum = 0;
        for (int32_t sy = std::max(y - kReach, from.fTop); sy <= std::min(y + kReach, from.fBottom - 1); ++sy)
          for (int32_t sx = std::max(x - kReach, from.fLeft); sx <= std::min(x + kReach, from.fRight - 1); ++sx)
            sum += src.Row(sy)[sx - from.fLeft];
        dst->fImage[(y - dst->fBounds.fTop) * dst->fRowBytes + x - dst->fBounds.fLeft] =
            uint8_t(sum / ((2 * kReach + 1) * (2 * kReach + 1)));
      }
    return true;
  }
  void ComputeBounds(const hsMatrix&, hsIntRect* r) override {
    *r = {r->fLeft - kReach, r->fTop - kReach, r->fRight + kReach, r->fBottom + kReach};
  }
};

// A picture of 24 x 16 with a frame, a diagonal and a corner that is clear.
struct Picture {
  explicit Picture(uint8_t config) : bitmap(config), words(24 * 16) {
    bitmap.fImage = words.data();
    bitmap.fWidth = 24;
    bitmap.fHeight = 16;
    bitmap.fRowBytes = 24u * bitmap.fPixelSize / 8;
    if (config == hsGBitmap::kConfig_Index8) {
      auto* table = new hsGColorTable;
      table->SetDefaultCube();
      bitmap.SetColorTable(table);
      table->UnRef();
      bitmap.SetFlags(hsGBitmap::kHasTransparent);
      bitmap.fTransparentIndex = 0;
    }
    for (uint32_t y = 0; y < 16; ++y)
      for (uint32_t x = 0; x < 24; ++x) Put(x, y, ColorAt(x, y));
  }

  static uint32_t ColorAt(uint32_t x, uint32_t y) {
    if (x + y < 7) return 0;
    if (x == 0 || y == 0 || x == 23 || y == 15) return 0xFF000000 | kInk;
    if (x == y + 4 || x == y + 5) return 0xFFFFFFFF;
    return hsMakeColor32(255, x * 10, 220 - y * 10, 60 + y * 8);
  }
  void Put(uint32_t x, uint32_t y, uint32_t color) {
    if (bitmap.fConfig == hsGBitmap::kConfig_RGB16) {
      *bitmap.GetAddr16(x, y) = hsPack16(hsColor32R(color) >> 2, hsColor32G(color) >> 3, hsColor32B(color) >> 3);
    } else if (bitmap.fConfig == hsGBitmap::kConfig_Index8) {
      *bitmap.GetAddr8(x, y) = color == 0 ? 0 : bitmap.fColorTable->ColorToIndex(hsWidenColor32(color));
    } else {
      *bitmap.GetAddr32(x, y) = color;
    }
  }

  hsGBitmap bitmap;
  std::vector<uint32_t> words;
};

using Cell = std::function<void(hsGRasterDevice&)>;

template <class Effect, class Set>
void With(Pen& pen, Effect* effect, Set set) {
  (pen.*set)(effect);
  effect->UnRef();
}

// Strips of one colour with a thing drawn over them, for whatever shows what lies below.
void Strips(hsGRasterDevice& device) {
  for (int i = 0; i < 6; ++i) {
    Pen pen(i % 2 ? 0xFFFFFF : 0x9098A0);
    const hsRect strip = Box(0, i * 16, kCellWidth, i * 16 + 16);
    device.DrawRect(&strip, &pen);
  }
}

void AddFilled(std::vector<Cell>& cells) {
  for (const uint32_t smooth : {0u, kSmooth}) {
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kRed, smooth);
      const hsPath star = Star(5, 72, 50, 44, 18);
      d.DrawPath(&star, &pen);
    });
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kGreen, smooth);
      const hsRect oval = Box(10.5, 8.5, 133.5, 87.5);
      d.DrawOval(&oval, &pen);
    });
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kBlue, smooth);
      const hsRect rect = Box(14, 14, 130, 82);
      d.DrawRoundRect(&rect, Px(24), Px(16), &pen);
    });
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kGold, smooth);
      d.Rotate(Px(15), Px(72), Px(48));
      const hsRect rect = Box(30, 22, 114, 74);
      d.DrawRect(&rect, &pen);
    });
  }
}

void AddRectsAndFills(std::vector<Cell>& cells) {
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kRed);
    for (int i = 0; i < 6; ++i) {
      const hsRect rect = Box(10 + i * 20, 10 + i * 10, 24 + i * 20, 30 + i * 10);
      d.DrawRect(&rect, &pen);
    }
  });
  for (const double width : {0.0, 1.0, 7.0})
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kBlue, kFrame, width);
      const hsRect rect = Box(20, 16, 124, 80);
      d.DrawRect(&rect, &pen);
    });
  for (const uint32_t type : {hsPath::kWindingFill, hsPath::kEvenOddFill})
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kInk, kSmooth);
      hsPath path(type);
      for (int i = 0; i < 5; ++i) {
        hsMatrix rotation;
        rotation.SetRotate(Px(144.0 * i), Px(72), Px(50));
        hsPoint p = At(72, 6);
        rotation.MapPoints(1, &p, &p);
        i == 0 ? path.MoveTo(p) : path.LineTo(p);
      }
      path.Close();
      d.DrawPath(&path, &pen);
    });
  cells.push_back([](hsGRasterDevice& d) {
    Strips(d);
    for (int i = 0; i < 8; ++i) {
      Pen pen(kRed);
      pen.SetRGB(uint32_t(i * 36), kRed);
      const hsRect rect = Box(4 + i * 17, 8, 20 + i * 17, 88);
      d.DrawRect(&rect, &pen);
    }
  });
  cells.push_back([](hsGRasterDevice& d) {
    Strips(d);
    Pen pen(kBlue, kSmooth);
    pen.SetRGB(0x90, kBlue);
    const hsRect one = Box(12, 10, 92, 86), other = Box(52, 10, 132, 86);
    d.DrawOval(&one, &pen);
    pen.SetRGB(0x90, kRed);
    d.DrawOval(&other, &pen);
  });
}

void AddStrokes(std::vector<Cell>& cells) {
  // Joins by columns, each with the cap of the same name.
  for (const uint32_t style : {0u, 5u, 10u})
    for (const double tip : {44.0, 8.0})
      cells.push_back([=](hsGRasterDevice& d) {
        Pen pen(kInk, kSmooth | kFrame, 11);
        pen.SetCapJoin(style);
        const hsPath path = Zigzag(tip);
        d.DrawPath(&path, &pen);
        Pen hair(kGold, kFrame);
        d.DrawPath(&path, &hair);
      });
  for (const bool cubic : {false, true})
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kGreen, kSmooth | kFrame, 9);
      pen.SetCapJoin(5);
      const hsPath path = Curves(cubic);
      d.DrawPath(&path, &pen);
      Pen hair(kInk, kFrame);
      d.DrawPath(&path, &hair);
    });
  for (const uint32_t smooth : {0u, kSmooth})
    cells.push_back([=](hsGRasterDevice& d) {
      Pen pen(kRed, smooth | kFrame, 5);
      const hsPath star = Star(6, 72, 48, 42, 22);
      d.DrawPath(&star, &pen);
    });
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kBlue, kSmooth | kFrame, 6);
    const hsRect oval = Box(16, 12, 128, 84), inner = Box(44, 30, 100, 66);
    d.DrawOval(&oval, &pen);
    pen.SetFrameSize(Px(2));
    d.DrawOval(&inner, &pen);
  });
  for (const uint32_t cap : {0u, 1u, 2u})
    cells.push_back([=](hsGRasterDevice& d) {
      for (int i = 0; i < 7; ++i) {
        Pen pen(kInk, kSmooth | kFrame, 1 + i);
        pen.SetCapType(cap);
        const hsPoint a = At(14, 10 + i * 12), b = At(60, 14 + i * 12), c = At(84, 14 + i * 12),
                      e = At(128, 14 + i * 12);
        d.DrawLine(&a, &b, &pen);
        d.DrawLine(&c, &e, &pen);
      }
    });
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kRed, kSmooth | kFrame, 3);
    With(pen, new Dashes, &hsGAttribute::SetPathEffect);
    const hsPath star = Star(5, 72, 50, 44, 18);
    d.DrawPath(&star, &pen);
  });
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kBlue, kFrame);
    With(pen, new Dashes, &hsGAttribute::SetPathEffect);
    const hsRect rect = Box(14, 12, 130, 84);
    d.DrawRect(&rect, &pen);
    d.Rotate(Px(12), Px(72), Px(48));
    const hsRect inner = Box(40, 32, 104, 64);
    d.DrawRect(&inner, &pen);
  });
}

void AddHairlinesAndClips(std::vector<Cell>& cells) {
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kInk, kFrame);
    for (int i = 0; i < 24; ++i) {
      hsMatrix rotation;
      rotation.SetRotate(Px(15.0 * i), Px(72), Px(48));
      hsPoint ends[2] = {At(72, 38), At(72, 4)};
      rotation.MapPoints(2, ends, ends);
      d.DrawLine(&ends[0], &ends[1], &pen);
    }
  });
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kRed, kFrame);
    const hsRect oval = Box(16, 10, 128, 86);
    for (int i = 0; i < 9; ++i) {
      const hsRect ring = Box(16 + i * 6, 10 + i * 4, 128 - i * 6, 86 - i * 4);
      d.DrawOval(&ring, &pen);
    }
    d.DrawRoundRect(&oval, Px(10), Px(10), &pen);
  });
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kBlue, kFrame);
    pen.SetRGB(0x60, kBlue);
    for (int i = 0; i < 14; ++i) {
      const hsPoint a = At(10 + i * 9, 8), b = At(134 - i * 9, 88);
      d.DrawLine(&a, &b, &pen);
    }
  });
  for (const uint32_t smooth : {0u, kSmooth})
    cells.push_back([=](hsGRasterDevice& d) {
      const hsPath star = Star(7, 72, 48, 46, 26);
      d.ClipPath(star);
      for (int i = 0; i < 12; ++i) {
        Pen pen(i % 2 ? kRed : kGold, smooth);
        const hsRect oval = Box(72 - 84 + i * 7, 48 - 60 + i * 5, 72 + 84 - i * 7, 48 + 60 - i * 5);
        d.DrawOval(&oval, &pen);
      }
    });
  cells.push_back([](hsGRasterDevice& d) {
    const hsPath star = Star(7, 72, 48, 46, 26);
    d.ClipPath(star);
    Pen pen(kInk, kFrame);
    for (int i = 0; i < 30; ++i) {
      const hsPoint a = At(i * 6 - 20, 0), b = At(i * 6 + 20, 96), c = At(0, i * 6 - 30), e = At(144, i * 6 - 50);
      d.DrawLine(&a, &b, &pen);
      d.DrawLine(&c, &e, &pen);
    }
  });
  cells.push_back([](hsGRasterDevice& d) {
    d.ClipRect(Box(20, 14, 124, 82));
    d.Rotate(Px(30), Px(72), Px(48));
    d.ClipRect(Box(20, 14, 124, 82));
    Pen pen(kGreen);
    d.DrawFull(&pen);
  });
  cells.push_back([](hsGRasterDevice& d) {
    Pen pen(kInk, kSmooth);
    With(pen, new Blur, &hsGAttribute::SetMaskFilter);
    const hsPath star = Star(5, 72, 50, 40, 18);
    d.DrawPath(&star, &pen);
  });
}

void AddBitmaps(std::vector<Cell>& cells) {
  for (const uint8_t config : {uint8_t(hsGBitmap::kConfig_Index8), uint8_t(hsGBitmap::kConfig_ARGB32)})
    for (int kind = 0; kind < 8; ++kind)
      cells.push_back([=](hsGRasterDevice& d) {
        Strips(d);
        const Picture picture(config);
        Pen pen(kInk, kind == 2 || kind == 4 || kind == 6 ? kFilter : 0u);
        if (kind == 7) pen.SetRGB(0x80, kInk);
        hsMatrix matrix;
        if (kind == 1 || kind == 2) matrix.SetScale(Px(4.5), Px(4.5), 0, 0);
        if (kind == 3 || kind == 4) {
          matrix.SetScale(Px(4), Px(4), 0, 0);
          matrix.PreRotate(Px(20), Px(12), Px(8));
        }
        if (kind >= 5) {
          const hsPoint from[4] = {At(0, 0), At(24, 0), At(24, 16), At(0, 16)};
          const hsPoint to[4] = {At(36, 4), At(104, 14), At(112, 74), At(4, 60)};
          matrix.SetPolyToPoly(from, to, 4);
        }
        matrix.PostTranslate(Px(kind == 0 ? 60 : 18), Px(kind == 0 ? 40 : 12));
        d.ConcatMatrix(matrix);
        d.DrawBitmap(&picture.bitmap, 0, 0, &pen);
      });
}

void AddPaints(std::vector<Cell>& cells) {
  for (const bool fades : {false, true})
    cells.push_back([=](hsGRasterDevice& d) {
      Strips(d);
      Pen pen(kInk, kSmooth);
      With(pen, new Ramp(fades), &hsGAttribute::SetShader);
      const hsPath star = Star(8, 72, 48, 46, 30);
      d.DrawPath(&star, &pen);
    });
  for (int mode = 0; mode < 4; ++mode)
    cells.push_back([=](hsGRasterDevice& d) {
      Strips(d);
      const Picture picture(hsGBitmap::kConfig_ARGB32);
      Pen pen(kInk, mode == 3 ? kFilter : 0u);
      hsMatrix place;
      d.GetMatrix(&place);
      hsMatrix half;
      half.SetScale(Px(1.5), Px(1.5), 0, 0);
      auto* shader = hsGBitmapShader::Create(picture.bitmap, pen, place, hsGBitmapShader::TileMode(mode));
      shader->SetLocalMatrix(&half);
      With(pen, shader, &hsGAttribute::SetShader);
      const hsRect oval = Box(8, 6, 136, 90);
      d.DrawOval(&oval, &pen);
    });
  for (const bool over : {false, true})
    cells.push_back([=](hsGRasterDevice& d) {
      Strips(d);
      Pen pen(kRed, kSmooth);
      pen.SetRGB(0x80, kRed);
      hsGXferMode* const mode = over ? static_cast<hsGXferMode*>(new hsGSrcOverMode) : new hsGSrcMode;
      With(pen, mode, &hsGAttribute::SetXferMode);
      const hsRect oval = Box(12, 10, 132, 86);
      d.DrawOval(&oval, &pen);
    });
}

void Save(const hsGBitmap& sheet, const char* path) {
  std::vector<uint32_t> rgb(size_t(sheet.fWidth) * sheet.fHeight);
  for (uint32_t y = 0; y < sheet.fHeight; ++y)
    for (uint32_t x = 0; x < sheet.fWidth; ++x) {
      const uint32_t p = *sheet.GetAddr16(x, y);
      rgb[size_t(y) * sheet.fWidth + x] =
          hsMakeColor32(0, hsWiden6(hsRed6(p)), hsWiden5(hsGreen5(p)), hsWiden5(hsBlue5(p)));
    }
  writePng(path, int(sheet.fWidth), int(sheet.fHeight), rgb);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: gfx_sheet OUT.png\n");
    return 1;
  }
  std::vector<Cell> cells;
  AddFilled(cells);
  AddRectsAndFills(cells);
  AddStrokes(cells);
  AddHairlinesAndClips(cells);
  AddBitmaps(cells);
  AddPaints(cells);
  const int rows = (int(cells.size()) + kColumns - 1) / kColumns;
  hsGRasterDevice sheet;
  sheet.SetSize(uint32_t(kColumns * kCellWidth), uint32_t(rows * kCellHeight), hsGBitmap::kConfig_RGB16, nullptr);
  sheet.EraseColor(0xFFFF, 0xFFFF, 0xFFFF);
  hsGAttribute copying;
  for (size_t i = 0; i < cells.size(); ++i) {
    hsGRasterDevice device;
    device.SetSize(kCellWidth - 2, kCellHeight - 2, hsGBitmap::kConfig_RGB16, nullptr);
    device.EraseColor(0xF400, 0xF400, 0xF800);
    cells[i](device);
    hsGBitmap picture;
    device.GetBitmap(&picture);
    sheet.CopyBitmap(&picture, Px(int(i) % kColumns * kCellWidth + 1), Px(int(i) / kColumns * kCellHeight + 1),
                     &copying);
  }
  hsGBitmap bitmap;
  sheet.GetBitmap(&bitmap);
  Save(bitmap, argv[1]);
}
