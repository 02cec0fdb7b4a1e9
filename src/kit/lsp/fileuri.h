// Names of files as editors write them: file:///home/anna/men%C3%BC.yaml.
#pragma once

#include <string>
#include <string_view>

// The full name of the file; of anything but a file the URI itself, which no file is called.
std::string pathOfUri(std::string_view uri);

std::string uriOfPath(std::string_view path);

// The name by which the server knows a file, however it was written.
std::string fullPath(std::string_view path);
