// The steps of a test, from YAML.
#pragma once

#include <string>
#include <vector>

#include "kit/testing/mapreader.h"
#include "kit/testing/testfile.h"

// `what` is what messages call the list. Errors are kept by the reader.
std::vector<TestStep> readSteps(MapReader& reader, const YamlNode& list, const std::string& what);
