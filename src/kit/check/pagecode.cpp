#include "kit/check/pagecode.h"

#include <algorithm>

#include "bob/tools/objectformat.h"
#include "kit/run/bobruntime.h"

namespace {

constexpr size_t kHeaderSize = sizeof kBobMagic + 4;

bool isWhole(const PageValue& script) { return script.tag == PageTag::script && !script.bytes.empty(); }

}  // namespace

PageCode::PageCode(const CheckedPage& page, OpenedPage& opened) {
  places.add(page.tree.lines);
  for (const ScriptFile& file : page.tree.scriptFiles) places.add(file.lines);
  for (const CheckedWidget& widget : page.widgets)
    for (const PageEntry& entry : widget.node->attributes)
      if (isWhole(entry.value))
        read(entry.value.bytes, {nullptr, nullptr, &widget, entry.name, widget.place(entry.name)});
  const PageValue* files = page.root().find("scripts");
  if (!files) return;
  const PageFunction owner{nullptr, nullptr, nullptr, "", page.root().place("scripts")};
  for (const PageValue& name : files->table) {
    const auto made = std::find_if(page.tree.scriptFiles.begin(), page.tree.scriptFiles.end(),
                                   [&](const ScriptFile& file) { return file.name == name.bytes; });
    const std::string bytes = made != page.tree.scriptFiles.end() ? made->bytes : opened.read(name.bytes);
    if (isObjectFile({bytes.begin(), bytes.end()}) && bytes.size() >= kHeaderSize)
      read(bytes.substr(kHeaderSize), owner);
    else
      complete = false;
  }
}

void PageCode::read(const std::string& records, const PageFunction& owner) {
  const BobRuntime runtime;
  BobInterp* interp = runtime.interp;
  complete &= bobTry(interp, [&] {
    BobStringInput input(records);
    BobValue code;
    while (bobReadValue(bobRootScope(interp), &input, &code) && bobIsA(interp, code, kBobCompiledCode)) {
      statements.push_back(std::make_unique<BobCodeUses>(bobCodeUses(interp, code)));
      add(*statements.back(), owner, nullptr);
    }
  });
}

void PageCode::add(const BobCodeUses& code, const PageFunction& owner, const PageFunction* around) {
  all.push_back(std::make_unique<PageFunction>(owner));
  PageFunction* function = all.back().get();
  function->code = &code;
  function->around = around;
  for (const BobCodeUses& inner : code.functions) add(inner, owner, function);
}

YamlPlace PageCode::placeOf(const PageFunction& function, uint32_t offset) const {
  const BobCodeLines* lines = places.linesOf(function.code->hash);
  if (!lines) return function.place;
  if (function.place.file && *function.place.file == lines->file) {
    YamlPlace place = function.place;  // with what brought it in
    place.line = lines->lineAt(offset);
    return place;
  }
  return {std::make_shared<const std::string>(lines->file), lines->lineAt(offset), 1, nullptr};
}

void PageCode::say(const Find& find, std::string_view check, const PageFunction& function, uint32_t offset,
                   const std::string& text) const {
  const std::string where = function.widget ? function.hook + " of " + function.widget->label + ": " : "";
  find(check, placeOf(function, offset), where + text);
}
