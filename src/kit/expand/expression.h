// Expressions in the values of a source: "$(row * 48 + 8)".
//
// Round brackets, not braces: a value in braces could not be written without quotes inside of a YAML map in braces.
// "$$(" is a plain "$(".
#pragma once

#include <string>
#include <string_view>

#include "kit/expand/scope.h"
#include "kit/yaml/yamlnode.h"

bool hasExpression(std::string_view text);

bool isExpressionName(std::string_view text);  // letters, digits and _, a digit not first

// The scalar with all of its expressions replaced. One that is a single expression becomes whatever that is: a number
// stays a number, a name can be that of a list or a map. Throws a SourceFault.
YamlNode evaluateScalar(const YamlNode& scalar, const Scope& scope);

// The text with "$$(" for each "$(", so that evaluating it returns it.
std::string escapeExpressions(std::string_view text);
