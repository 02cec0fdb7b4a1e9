// A JSON schema of page sources, for editors that know YAML and nothing of pages.
//
// It takes an expression, "$(...)", wherever kpg does, and what a template or a file brings in as it is: what comes of
// it only kpg knows.
#pragma once

#include <string>

// Of draft 7, which editors understand.
std::string pageSchema();
