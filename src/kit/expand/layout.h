// Widgets and lines placed by what lies around them: `layout: row`, `column` or `grid`, with `gap`, `padding`,
// `columns` and `align`.
//
// Entries without a size share what is left, so sizes are settled from the outside in. An entry that says where it lies
// is no part of the layout.
#pragma once

#include <vector>

#include "kit/yaml/yamlnode.h"

// Writes x, y, width and height into the children of each widget of a plain source that has a layout, and y into the
// lines of a text container, and takes the layouts away. What is wrong is added to `errors`.
void layOut(YamlNode& source, std::vector<KitMessage>& errors);
