// What the system gives a program that is called in a terminal: its arguments, its streams, and the terminal's size.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// What follows the program's name, in UTF-8.
std::vector<std::string> programArguments(int argc, char** argv);

// Every byte goes through the standard streams as it is, one that the caller has closed can't be taken for a file, and
// writing where nobody reads is an error, not the end.
void prepareStandardStreams();

// Of the terminal that the error stream writes to; `otherwise` when it is none.
size_t terminalColumns(size_t otherwise);
