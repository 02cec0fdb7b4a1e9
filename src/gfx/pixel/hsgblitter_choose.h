// The choosers of the two screen depths, for callers that bring a shader of their own.
#pragma once

#include <cstdint>

class hsGAttribute;
class hsGBitmap;
class hsGBlitter;
class hsGShader;

// The paint is the attribute's but for the shader, which may be null. The caller holds a reference to the result.
hsGBlitter* hsChooseBlitter8(const hsGBitmap& bitmap, const hsGAttribute& attr, hsGShader* shader, int32_t maskType);
hsGBlitter* hsChooseBlitter16(const hsGBitmap& bitmap, const hsGAttribute& attr, hsGShader* shader, int32_t maskType);
