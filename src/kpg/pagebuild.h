// From a page source to the files of the page.
#pragma once

#include <functional>
#include <string>

// Compiles the source to `output`, and the script files that it names to object files beside that. Throws SourceError
// or CommandError; then nothing has been written.
void buildPage(const std::string& source, const std::string& output,
               const std::function<void(const std::string&)>& warn);
