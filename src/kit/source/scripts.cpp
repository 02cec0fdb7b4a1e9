#include "kit/source/scripts.h"

#include <utility>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/language/bobtree.h"

ScriptCompiler::ScriptCompiler() {
  bobSetStderr(runtime.interp, &errors);
  bobSetErrorHandler(runtime.interp, keepError);
}

// The stream also hears of collections, so it is emptied first.
void ScriptCompiler::keepError(BobInterp* interp, int code, const BobErrorArgument& argument) {
  auto* errors = static_cast<ErrorStream*>(bobStderr(interp));
  errors->text.clear();
  errors->place = bobCurrentPlace(interp);
  if (code == kBobStackOverflow) return void(errors->text = kBobNestedTooDeep);
  bobPrintError(interp, code, argument);
}

std::string ScriptCompiler::compile(std::string_view source, const BobCodeNames& names, const ScriptOrigin* origin) {
  BobInterp* interp = runtime.interp;
  BobCodeListener listener;
  if (origin)
    listener = [origin](BobInterp* i, BobValue code, const BobCodeNotes& notes) {
      origin->lines.push_back(bobCodeLinesOf(i, code, notes, origin->file, origin->lineOf));
    };
  bobSetCodeListener(interp, std::move(listener));
  BobTextStream records;
  const bool compiled = bobTry(interp, [&] {
    BobStringInput input(source);
    BobStatementReader statements(bobRootScope(interp), &input, names);
    while (const BobValue method = statements.next())
      if (!bobWriteValue(interp, bobMethodCode(interp, method), &records)) bobRaise(interp, kBobWritingFile);
  });
  if (compiled) return records.text;
  std::string message = errors.text.substr(0, errors.text.find('\n'));
  constexpr std::string_view kPrefix = "Error: ";
  if (message.starts_with(kPrefix)) message.erase(0, kPrefix.size());
  throw ScriptError(errors.place, message);
}

std::string ScriptCompiler::compileFile(std::string_view source, const BobCodeNames& names,
                                        const ScriptOrigin* origin) {
  BobTextStream header;
  bobWriteHeader(&header);
  return header.text + compile(source, names, origin);
}

std::vector<BobTextCall> ScriptCompiler::pagesLoaded(std::string_view source) {
  return bobTextCalls(runtime.interp, source, "LoadPage");
}

ScriptFile compileScriptFile(const std::string& path, const BobCodeNames& names) {
  const std::vector<uint8_t> source = readFile(path);
  try {
    const std::string_view text(reinterpret_cast<const char*>(source.data()), source.size());
    ScriptFile made{"", path, ""};
    const ScriptOrigin origin{path, {}, made.lines};
    made.bytes = ScriptCompiler().compileFile(text, names, &origin);
    return made;
  } catch (const ScriptError& e) {
    throw KitError(path, e.place.line, e.what());
  }
}

ScriptLister::ScriptLister() { bobSetStdout(runtime.interp, &listing); }

std::string ScriptLister::list(std::string_view records) {
  listing.text.clear();
  BobStringInput input(records);
  bobListRecords(runtime.interp, &input);
  return listing.text;
}
