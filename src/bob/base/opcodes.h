// The instruction set: numbers, names, operand forms. Object files and the disassembler go by it; what the machine
// runs is quick code (run/quickops.h).
#pragma once

#include <cstdint>

enum BobOpcode : uint8_t {
  kOpBrt = 1,
  kOpBrf,
  kOpBr,
  kOpT,
  kOpNil,
  kOpPush,
  kOpNot,
  kOpAdd,
  kOpSub,
  kOpMul,
  kOpDiv,
  kOpRem,
  kOpBand,
  kOpBor,
  kOpXor,
  kOpBnot,
  kOpShl,
  kOpShr,
  kOpLt,
  kOpLe,
  kOpEq,
  kOpNe,
  kOpGe,
  kOpGt,
  kOpLit,
  kOpGref,
  kOpGset,
  kOpGetp,
  kOpSetp,
  kOpReturn,
  kOpCall,
  kOpSend,
  kOpEref,
  kOpEset,
  kOpFrame,
  kOpUnframe,
  kOpVref,
  kOpVset,
  kOpNeg,
  kOpInc,
  kOpDec,
  kOpDup2,
  kOpDrop,
  kOpDup,
  kOpOver,
  kOpNewObject,
  kOpCframe,
  kOpNewVector,
  kOpAframe,
  kOpAframer,
  kOpClose,
  kOpSwitch,
  kOpArgsGe,
  kOpPushScope,
  kOpLine,
  kOpThrow,
  kOpEnd  // one past the last
};

// How the operands after an opcode byte read.
enum class BobForm : uint8_t {
  kNone,     // none
  kByte,     // one byte
  kBytes,    // two bytes
  kWord,     // a 16-bit target or value, low byte first
  kLiteral,  // a 16-bit element number of the code
  kSwitch,   // a 16-bit count; that many pairs of element number and target; a target
};

struct BobOpcodeInfo {
  const char* name;
  BobForm form;
};

// By number; number 0 has no name.
extern const BobOpcodeInfo kBobOpcodes[kOpEnd];

// Where the first instruction that is run lies: after AFRAME, which says how many slots there are, and its operands.
constexpr uint32_t kBobFirstOffset = 3;

inline uint32_t bobWordAt(const uint8_t* bytes) { return bytes[0] | uint32_t(bytes[1]) << 8; }

// The length of the instruction at `at`, or 0 if its opcode is unknown or it doesn't fit in `end` bytes.
uint32_t bobInstructionLength(const uint8_t* bytes, uint32_t at, uint32_t end);
