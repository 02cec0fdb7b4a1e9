#include "bob/debug/valueview.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "bob/debug/evaluation.h"
#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/model/objects.h"
#include "bob/model/print.h"
#include "bob/model/properties.h"
#include "bob/model/symbols.h"
#include "bob/model/vectors.h"

using namespace BobLayout;

namespace {

constexpr size_t kMostText = 200;  // bytes

std::string printed(BobInterp* interp, BobValue value, bool (*print)(BobInterp*, BobValue, BobStream*)) {
  char text[kMostText];
  BobStringOutput out(text, sizeof text);
  bool whole = true;
  std::string error;
  if (!bobTryAside(interp, &error, [&] { whole = print(interp, value, &out); })) return "(" + error + ")";
  return std::string(text, out.count()) + (whole ? "" : "...");
}

bool isVector(BobInterp* interp, BobValue value) { return interp->recordOf(value)->base == kBobVector; }
// Of a native kind: all of them are made after one pattern.
bool isNative(BobInterp* interp, BobValue value) {
  return interp->recordOf(value)->GetProperty == interp->record(kBobCObject)->GetProperty;
}

// Those that the kind and the kinds above it have as rows, and those that were hung on the instance.
std::vector<std::string> nativeNames(BobInterp* interp, BobValue object) {
  std::vector<std::string> names;
  bobForEachProperty(interp, object,
                     [&](BobValue p) { names.push_back(printed(interp, interp->words(p)[kKey], bobDisplay)); });
  for (uint32_t type = interp->typeOf(object); type; type = interp->record(type)->parentType) {
    if (!interp->record(type)->classObject) continue;
    bobForEachProperty(interp, interp->record(type)->classObject, [&](BobValue p) {
      if (interp->isA(interp->words(p)[kValue], kBobVPMethod) && interp->isA(interp->words(p)[kKey], kBobSymbol))
        names.emplace_back(interp->symbolOf(interp->words(p)[kKey]));
    });
  }
  return names;
}

void addNames(BobInterp* interp, BobValue object, std::vector<std::string>* names) {
  bobForEachProperty(interp, object, [&](BobValue p) {
    const BobValue key = interp->words(p)[kKey];
    if (interp->isA(key, kBobSymbol)) names->emplace_back(interp->symbolOf(key));
  });
}

void visitNative(BobInterp* interp, BobValue object, size_t first, size_t count, const BobVisitMember& visit) {
  const BobLocal kept(interp->locals, object);
  const std::vector<std::string> names = nativeNames(interp, object);
  const size_t end = first + std::min(count, names.size() - std::min(first, names.size()));
  for (size_t n = first; n < end; ++n) {
    BobLocal value(interp->locals, kBobNil);
    std::string error;
    const bool read = bobTryAside(interp, &error, [&] {
      BobValue found = kBobNil;
      bobGetProperty(interp, kept, bobIntern(interp, names[n]), &found);
      value.value = found;
    });
    visit(names[n], value, read ? "" : "(" + error + ")");
  }
}

// The parent of an object, unless it has a property of that name, as scopes of frames do.
bool showsParent(BobInterp* interp, BobValue object) {
  bool show = interp->words(object)[kParent] != kBobNil;
  bobForEachProperty(interp, object, [&](BobValue p) {
    const BobValue key = interp->words(p)[kKey];
    if (interp->isA(key, kBobSymbol) && std::string_view(interp->symbolOf(key)) == "parent") show = false;
  });
  return show;
}

}  // namespace

std::string bobValueText(BobInterp* interp, BobValue value) { return printed(interp, value, bobPrint); }

std::string bobTypeName(BobInterp* interp, BobValue value) {
  return interp->record(interp->recordOf(value)->base)->name;
}

size_t bobMemberCount(BobInterp* interp, BobValue value) {
  if (isVector(interp, value)) return bobVectorSize(interp, value);
  if (interp->isObject(value)) return bobPropertyCount(interp, value) + showsParent(interp, value);
  return isNative(interp, value) ? nativeNames(interp, value).size() : 0;
}

void bobForEachMember(BobInterp* interp, BobValue value, size_t first, size_t count, const BobVisitMember& visit) {
  if (isNative(interp, value)) return visitNative(interp, value, first, count, visit);
  if (isVector(interp, value)) {
    for (size_t i = first; i - first < count && i < bobVectorSize(interp, value); ++i)
      visit("[" + std::to_string(i) + "]", bobVectorElements(interp, value)[i], "");
    return;
  }
  if (!interp->isObject(value)) return;
  size_t n = 0;
  const auto member = [&](const std::string& name, BobValue found) {
    if (n >= first && n - first < count) visit(name, found, "");
    ++n;
  };
  bobForEachProperty(interp, value, [&](BobValue p) {
    member(printed(interp, interp->words(p)[kKey], bobDisplay), interp->words(p)[kValue]);
  });
  if (showsParent(interp, value)) member("parent", interp->words(value)[kParent]);
}

std::vector<std::string> bobGlobalNames(BobInterp* interp, BobValue scopeObject) {
  std::vector<std::string> names;
  for (BobValue scope = scopeObject; interp->isObject(scope); scope = interp->words(scope)[kParent])
    addNames(interp, scope, &names);
  return names;
}

std::vector<std::string> bobSymbolNames(BobInterp* interp) {
  std::vector<std::string> names;
  addNames(interp, interp->symbolTable, &names);
  return names;
}
