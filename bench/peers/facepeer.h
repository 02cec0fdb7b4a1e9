// A font as FreeType opens it, for benches that draw with Cairo. Cairo knows a face by its address, so one stays for
// all.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

// Null when the font isn't there. The file is that of the first call.
inline FT_Face PeerFace(const char* file) {
  static const FT_Face kFace = [file] {
    FT_Library library;
    FT_Face face = nullptr;
    FT_Init_FreeType(&library);
    FT_New_Face(library, file, 0, &face);
    return face;
  }();
  return kFace;
}
