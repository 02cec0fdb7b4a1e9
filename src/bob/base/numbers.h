// Numbers from and to text, by the C library's rules in its plain locale whatever the host's locale says.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Decimal digits after optional white space and a sign; anything else ends the number. Saturates to 64 bits, of
// which the low 32 are taken.
int32_t bobParseInteger(std::string_view text);
// As the C library's conversion to double: white space, sign, digits, point, exponent; also 0x..., inf and nan.
double bobParseFloat(std::string_view text);
// "%g", followed by ".0" when that holds no point; a NaN shows no sign.
std::string bobFormatFloat(double number);
// The number by a format text of integer conversions (d i u o x X c and %%, h and hh cut the number to 16 and 8 bits),
// cut to 99 bytes. What is no integer conversion stays as it is.
std::string bobFormatInteger(std::string_view format, int32_t number);
// Toward zero; -2147483648 for what doesn't fit.
int32_t bobTruncate(double number);
