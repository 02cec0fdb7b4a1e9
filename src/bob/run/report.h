// How an error is reported: its message, and where it happened.
#pragma once

#include <functional>
#include <string>

#include "bob/base/value.h"
#include "bob/heap/errorcodes.h"

// The message of a code; "Unknown error" for a code that is not in the table.
const char* bobErrorMessage(int code);

// Prints "Error: ", the message and a newline on stderrStream.
void bobPrintError(BobInterp* interp, int code, const BobErrorArgument& argument);
// The name of the running code, as a traceback prints it; empty while nothing runs.
std::string bobRunningName(BobInterp* interp);
// The name of code; empty for code without one. Touches no object.
std::string bobCodeText(BobInterp* interp, BobValue code);
// The name of a function that scripts define; empty for one without a name, and for anything else. Touches no object.
std::string bobFunctionName(BobInterp* interp, BobValue function);
// Prints where the running code is and who called it on stdoutStream. `named`, unless it is empty, is called when the
// name of each has been printed, before the line's end.
void bobPrintTraceback(BobInterp* interp, const std::function<void()>& named = {});
// The handler that an interpreter starts with: both of the above, except for kBobRestart.
void bobStandardErrorHandler(BobInterp* interp, int code, const BobErrorArgument& argument);
