#include "bob/run/report.h"

#include <algorithm>

#include "bob/heap/interp.h"
#include "bob/heap/stack.h"
#include "bob/model/print.h"
#include "bob/model/values.h"

using namespace BobLayout;

namespace {

struct Message {
  int code;
  const char* text;
};

constexpr Message kMessages[] = {
    {kBobExit, "Exit"},
    {kBobInsufficientMemory, "Insufficient memory"},
    {kBobStackOverflow, "Stack overflow"},
    {kBobTooManyArguments, "Too many arguments - %V"},
    {kBobTooFewArguments, "Too few arguments - %V"},
    {kBobWrongType, "Wrong type - %V"},
    {kBobUnboundVariable, "Unbound variable - %V"},
    {kBobIndexOutOfBounds, "Index out of bounds - %V"},
    {kBobNoMethod, "No method for selector - %V"},
    {kBobBadOpcode, "Bad opcode"},
    {kBobRestart, "Restart"},
    {kBobWritingFile, "Writing file"},
    {kBobBadParseCode, "Bad parse code"},
    {kBobImpossible, "Impossible error"},
    {kBobNotAnIndex, "Can't use as an index"},
    {kBobReadOnly, "Attempt to set a read-only property"},
    {kBobWriteOnly, "Attempt to get a write-only property"},
    {kBobFileNotFound, "File not found - %s"},
    {kBobNoInstances, "Can't create an instance"},
    {kBobNoProperty, "No property - %V"},
    {kBobStackEmpty, "Stack empty - %V"},
    {kBobNotObjectFile, "Not an object file - %s"},
    {kBobWrongVersion, "Wrong object file version number - %i"},
    {kBobSyntaxError, "Syntax error - %E"},
    {kBobStoreIntoConstant, "Attempt to store into a constant"},
    {kBobTooMuchCode, "Too much code"},
    {kBobTooManyLiterals, "Too many literals"},
};

// The code's name, bare, or the code itself when it has none.
void putCodeName(BobInterp* interp, BobValue code, BobStream* stream) {
  const BobValue name = bobCodeName(interp, code);
  if (name != kBobNil)
    bobDisplay(interp, name, stream);
  else
    bobPrint(interp, code, stream);
}

}  // namespace

const char* bobErrorMessage(int code) {
  for (const Message& message : kMessages)
    if (message.code == code) return message.text;
  return "Unknown error";
}

void bobPrintError(BobInterp* interp, int code, const BobErrorArgument& argument) {
  BobStream* stream = interp->stderrStream;
  bobPutText(stream, "Error: ");
  std::string_view message = bobErrorMessage(code);
  const size_t at = std::min(message.find('%'), message.size());
  bobPutText(stream, message.substr(0, at));
  if (at < message.size()) {
    switch (message[at + 1]) {
      case 'V': bobPrint(interp, argument.value, stream); break;
      case 's': bobPutText(stream, argument.text); break;
      case 'i': bobPutFormat(stream, "%d", argument.number); break;
      case 'E':
        bobPutText(stream, interp->errorText);
        bobPutFormat(stream, "\n  in line %d\n", interp->sourceLine);
        break;
    }
  }
  bobPutText(stream, "\n");
}

std::string bobRunningName(BobInterp* interp) {
  if (!interp->code) return "";
  char text[256];
  BobStringOutput name(text, sizeof text);
  putCodeName(interp, interp->code, &name);
  return {text, name.count()};
}

std::string bobCodeText(BobInterp* interp, BobValue code) {
  const BobValue name = bobCodeName(interp, code);
  if (name == kBobNil) return "";
  if (interp->isA(name, kBobSymbol)) return std::string(interp->symbolOf(name));
  return interp->isA(name, kBobString) ? std::string(interp->stringOf(name)) : "";
}

std::string bobFunctionName(BobInterp* interp, BobValue function) {
  return interp->isA(function, kBobMethod) ? bobCodeText(interp, bobMethodCode(interp, function)) : "";
}

void bobPrintTraceback(BobInterp* interp, const std::function<void()>& named) {
  if (!interp->code) return;
  BobStream* stream = interp->stdoutStream;
  const auto line = [&](const char* before, BobValue code) {
    bobPutText(stream, before);
    putCodeName(interp, code, stream);
    if (named) named();
    bobPutText(stream, "\n");
  };
  line("Happened in ", interp->code);
  bool first = true;
  for (const uint32_t* frame = interp->fp; frame < interp->stackTop; frame = interp->words(frame[kFramePrevious])) {
    if (bobFrameRecord(frame) != kCallFrame || !frame[kFrameCode]) continue;
    if (first) bobPutText(stream, "Called from:\n");
    first = false;
    line("  ", frame[kFrameCode]);
  }
}

void bobStandardErrorHandler(BobInterp* interp, int code, const BobErrorArgument& argument) {
  if (code == kBobRestart) return;
  // What prints the value can itself raise (a vector that holds itself): then that error is reported instead.
  bobPrintError(interp, code, argument);
  bobPrintTraceback(interp);
}
