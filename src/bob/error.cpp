#include "bob/error.h"

#include "bob/compile/statementreader.h"
#include "bob/interp.h"
#include "bob/objects.h"
#include "bob/print.h"
#include "bob/vm.h"

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

[[noreturn]] void Raise(BobInterp* interp, int code, const BobErrorArgument& argument) {
  if (interp->errorHandler) interp->errorHandler(interp, code, argument);
  throw BobUnwind{code};
}

// The code's name, bare, or the code itself when it has none.
void PrintCodeName(BobInterp* interp, BobValue code, BobStream* stream) {
  const uint32_t* w = interp->words(code);
  const BobValue name = bobCodeCount(w[kCodeCount]) > 1 ? w[kCodeElements + 1] : kBobNil;
  if (name != kBobNil)
    bobDisplay(interp, name, stream);
  else
    bobPrint(interp, code, stream);
  bobPutText(stream, "\n");
}

}  // namespace

void bobRaise(BobInterp* interp, int code) { Raise(interp, code, {}); }
void bobRaise(BobInterp* interp, int code, BobValue value) { Raise(interp, code, {value, "", 0}); }
void bobRaiseText(BobInterp* interp, int code, const char* text) { Raise(interp, code, {kBobNil, text, 0}); }
void bobRaiseNumber(BobInterp* interp, int code, int32_t number) { Raise(interp, code, {kBobNil, "", number}); }

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
        bobPutFormat(stream, "\n  in line %d\n", bobCurrentLine(interp));
        break;
    }
  }
  bobPutText(stream, "\n");
}

void bobPrintTraceback(BobInterp* interp) {
  if (!interp->code) return;
  BobStream* stream = interp->stdoutStream;
  bobPutText(stream, "Happened in ");
  PrintCodeName(interp, interp->code, stream);
  bool first = true;
  for (const uint32_t* frame = interp->fp; frame < interp->stackTop; frame = interp->words(frame[kFramePrevious])) {
    if (frame[kFrameRecord] != kCallFrame || !frame[kFrameCode]) continue;
    if (first) bobPutText(stream, "Called from:\n");
    first = false;
    bobPutText(stream, "  ");
    PrintCodeName(interp, frame[kFrameCode], stream);
  }
}

void bobStandardErrorHandler(BobInterp* interp, int code, const BobErrorArgument& argument) {
  if (code == kBobRestart) return;
  // What prints the value can itself raise (a vector that holds itself): then that error is told instead.
  bobPrintError(interp, code, argument);
  bobPrintTraceback(interp);
}
