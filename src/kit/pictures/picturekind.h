// What kind of file somebody has brought in place of a picture, whatever its name says.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// "a JPEG picture", "a PDF document", "an empty file" ...; empty for what it doesn't know.
std::string describePictureFile(const std::vector<uint8_t>& bytes);
