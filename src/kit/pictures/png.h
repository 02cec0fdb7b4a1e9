// PNG pictures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/pictures/picture.h"

bool isPng(const std::vector<uint8_t>& bytes);

// Any kind of PNG, as 8 bits a channel. `path` is for errors. Throws KitError.
Picture decodePng(const std::string& path, const std::vector<uint8_t>& bytes);

// Whether a kit wrote it, which puts its name in as the software.
bool isKitPng(const std::vector<uint8_t>& bytes);

// Pictures of few colours get a palette, which is smaller and quicker, unless somebody needs all to be alike.
enum class PngForm { smallest, trueColor };

// The bytes of such a picture; see below.
std::vector<uint8_t> encodePng(int width, int height, const std::vector<uint32_t>& pixels,
                               PngForm form = PngForm::smallest);

// Write width x height pixels, rows from the top: 0x00RRGGBB, or 0xAARRGGBB with alpha. Throw KitError.
void writePng(const std::string& path, int width, int height, const std::vector<uint32_t>& pixels);
void writePngWithAlpha(const std::string& path, int width, int height, const std::vector<uint32_t>& pixels);
