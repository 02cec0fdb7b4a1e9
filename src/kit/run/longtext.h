// Messages of thousands of lines, such as the traceback of a stack overflow, which would hide what is above them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

std::vector<std::string> linesOf(std::string_view text);

// The text without the middle of its lines, if there are many; `where` follows their count, as in ", which --log has".
std::string cutInTheMiddle(std::string_view text, const std::string& where = {});
