#include "bob/base/opcodes.h"

// clang-format off
const BobOpcodeInfo kBobOpcodes[kOpEnd] = {
    {nullptr, BobForm::kNone},
    {"BRT", BobForm::kWord}, {"BRF", BobForm::kWord}, {"BR", BobForm::kWord}, {"T", BobForm::kNone},
    {"NIL", BobForm::kNone}, {"PUSH", BobForm::kNone}, {"NOT", BobForm::kNone}, {"ADD", BobForm::kNone},
    {"SUB", BobForm::kNone}, {"MUL", BobForm::kNone}, {"DIV", BobForm::kNone}, {"REM", BobForm::kNone},
    {"BAND", BobForm::kNone}, {"BOR", BobForm::kNone}, {"XOR", BobForm::kNone}, {"BNOT", BobForm::kNone},
    {"SHL", BobForm::kNone}, {"SHR", BobForm::kNone}, {"LT", BobForm::kNone}, {"LE", BobForm::kNone},
    {"EQ", BobForm::kNone}, {"NE", BobForm::kNone}, {"GE", BobForm::kNone}, {"GT", BobForm::kNone},
    {"LIT", BobForm::kLiteral}, {"GREF", BobForm::kLiteral}, {"GSET", BobForm::kLiteral}, {"GETP", BobForm::kNone},
    {"SETP", BobForm::kNone}, {"RETURN", BobForm::kNone}, {"CALL", BobForm::kByte}, {"SEND", BobForm::kByte},
    {"EREF", BobForm::kBytes}, {"ESET", BobForm::kBytes}, {"FRAME", BobForm::kByte}, {"UNFRAME", BobForm::kNone},
    {"VREF", BobForm::kNone}, {"VSET", BobForm::kNone}, {"NEG", BobForm::kNone}, {"INC", BobForm::kNone},
    {"DEC", BobForm::kNone}, {"DUP2", BobForm::kNone}, {"DROP", BobForm::kNone}, {"DUP", BobForm::kNone},
    {"OVER", BobForm::kNone}, {"NEWOBJECT", BobForm::kNone}, {"CFRAME", BobForm::kByte},
    {"NEWVECTOR", BobForm::kNone}, {"AFRAME", BobForm::kBytes}, {"AFRAMER", BobForm::kBytes},
    {"CLOSE", BobForm::kNone}, {"SWITCH", BobForm::kSwitch}, {"ARGSGE", BobForm::kByte},
    {"PUSHSCOPE", BobForm::kNone}, {"LINE", BobForm::kWord}, {"THROW", BobForm::kNone},
};
// clang-format on

uint32_t bobInstructionLength(const uint8_t* bytes, uint32_t at, uint32_t end) {
  if (at >= end || bytes[at] == 0 || bytes[at] >= kOpEnd) return 0;
  uint32_t length = 1;
  switch (kBobOpcodes[bytes[at]].form) {
    case BobForm::kNone: break;
    case BobForm::kByte: length = 2; break;
    case BobForm::kBytes:
    case BobForm::kWord:
    case BobForm::kLiteral: length = 3; break;
    case BobForm::kSwitch:
      if (end - at < 3) return 0;
      length = 5 + 4 * bobWordAt(bytes + at + 1);
      break;
  }
  return length <= end - at ? length : 0;
}
