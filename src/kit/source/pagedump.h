// A compiled page as source.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// YAML that builds back to the same bytes when the page was built by this kit, and that is readable for any page that
// has a good header; anything else is a KitError. So is a page whose parts share so much that the text would be larger
// than a megabyte for each kilobyte of the page. What can't be said in a source becomes a comment.
std::string dumpPage(const std::string& path, std::vector<uint8_t> bytes);
