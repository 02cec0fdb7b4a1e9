// Links made from where widgets lie: `links: auto` for the page or a group, `links: wrap` to lead round its edges too.
//
// Widgets that show or answer the focus take part, but for those that only share the highlight of a master. What an
// author has written, a link or a script for the key, stays.
#pragma once

#include <vector>

#include "kit/yaml/yamlnode.h"

// Adds up, down, left and right to the widgets of a plain source, and names to those that a link needs and that have
// none, and takes the directions away. What is wrong is added to `errors`.
void linkNeighbours(YamlNode& source, std::vector<KitMessage>& errors);
