// Values for people: what a value is, and what lies in it.
//
// Looking runs no scripts and prints nothing. What surprises: a property of a native kind is what its getter returns,
// and that is the host's code.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "bob/base/value.h"

// As the language prints it, cut to a line's length; a vector that holds itself is one that can't be printed.
std::string bobValueText(BobInterp* interp, BobValue value);
// "Integer", "Vector", the name of a native kind.
std::string bobTypeName(BobInterp* interp, BobValue value);

// How many members there are: elements of a vector; properties of an object and its parent, if it has one; properties
// of a native kind. 0 for anything else.
size_t bobMemberCount(BobInterp* interp, BobValue value);
// Calls `visit` with `count` of them at most, from `first` on, elements as "[0]". It must not allocate in the heap; the
// values move with the next allocation, as everywhere. A property that can't be read has its error as `text`, and nil.
using BobVisitMember = std::function<void(const std::string& name, BobValue value, const std::string& text)>;
void bobForEachMember(BobInterp* interp, BobValue value, size_t first, size_t count, const BobVisitMember& visit);

// The globals that are seen from a scope's object, from the inside out.
std::vector<std::string> bobGlobalNames(BobInterp* interp, BobValue scopeObject);
// All symbols: the globals, selectors and properties that the language, the host and the code so far have names for.
std::vector<std::string> bobSymbolNames(BobInterp* interp);
