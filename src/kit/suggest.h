// A word that is not known, and the one that was probably meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The nearest of the words, whatever the case of its letters; empty when none is near enough to be meant.
std::string nearestWord(std::string_view word, const std::vector<std::string>& words);

// "; did you mean 'x'?", or nothing.
std::string suggestion(std::string_view word, const std::vector<std::string>& words);

// "a, b and c"
std::string listOfWords(const std::vector<std::string>& words, const char* last = "and");
