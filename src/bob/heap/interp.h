// The interpreter context: everything that one running Bob program owns.
//
// For the language's own files; to the host it is opaque (bob.h). Any allocation can collect, and a collection moves
// every object but symbols and static rows. A value that must last across an allocation is kept on the stack, in a
// protected variable, or in a BobLocal.
#pragma once

#include <cstring>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bob/base/layout.h"
#include "bob/base/stream.h"
#include "bob/heap/errorcodes.h"

struct BobCompiler;
struct BobLocal;
struct BobMethodRow;
struct BobPropertyRow;
class BobTracer;

// What an object's first word points to. `base` is the family that the record belongs to: itself or the record that
// it is a variant of.
struct BobTypeRecord {
  const char* name;
  uint32_t base;
  bool (*GetProperty)(BobInterp*, BobValue object, BobValue key, BobValue* value);
  bool (*SetProperty)(BobInterp*, BobValue object, BobValue key, BobValue value);
  BobValue (*New)(BobInterp*, BobValue value);
  bool (*Print)(BobInterp*, BobValue value, BobStream*);
  uint32_t (*Size)(BobInterp*, BobValue object);
  BobValue (*Copy)(BobInterp*, BobValue value);
  void (*Scan)(BobInterp*, BobValue object);
  uint32_t (*Hash)(BobInterp*, BobValue value);
  BobValue classObject;  // the class that scripts see; 0 until one is made
  uint32_t extraSize;    // native kinds: bytes of an instance beyond its five words
  void (*finalizer)(BobInterp*, BobValue object);
  uint32_t parentType;  // native kinds: the next kind up, 0 at the top
  uint32_t nextType;    // link of typeList
};
static_assert(sizeof(BobTypeRecord) <= kBobTypeRecordSize);

// A scope of global variables; the parents of its object are the scopes around it.
struct BobScope {
  BobInterp* interp;
  BobValue object;
  BobScope* next;
};

struct BobHeapBlock {
  uint32_t base, free, top;  // arena offsets
  BobValue finalizeList;     // the CObjects that live in this block, 0 at the end
};

// Registers as they were when the host, or a native method, called into the language.
struct BobSavedRegisters {
  BobValue scope, env, code;
  uint32_t *sp, *fp;
  uint32_t* pc;
  BobSavedRegisters* next;
};

// What a static row's arena object represents: one of the two.
struct BobStaticRow {
  const BobMethodRow* method = nullptr;
  const BobPropertyRow* property = nullptr;
};

// A native pointer that a CObject holds, by a number that goes stale when the pointer is given up.
struct BobHandleSlot {
  void* pointer = nullptr;
  uint32_t generation = 0;
  uint32_t nextFree = 0;  // while it is free: the number of the one given up before it, 0 for none
};

struct BobProtectedBlock {
  BobValue* variables[100];
  int count = 0;
};

// Bytecode as the machine runs it, made from a CompiledCode when that is first called (run/translate.h).
struct BobQuickCode {
  std::vector<uint32_t> words;
  int required = 0, optional = 0;  // slots, this and _next counted
  bool hasRest = false;
  int plainSlots = 0;  // the number of slots that needs no adjusting, -1 if none
  bool isTraced = false;
  uint32_t traceNumber = 0;  // the tracer's
  bool marked = false;       // its CompiledCode was found alive by the collection that is going on
};

#ifdef BOB_FUEL
constexpr uint32_t kBobStepsToRest = BOB_FUEL;
#else
constexpr uint32_t kBobStepsToRest = 1 << 20;  // some milliseconds
#endif

// Epochs count in the upper half of a word, so that one with an object in its lower half is compared at once.
constexpr uint64_t kBobEpoch = uint64_t(1) << 32;

struct BobInterp {
  BobInterp() = default;
  ~BobInterp();
  BobInterp(const BobInterp&) = delete;
  BobInterp& operator=(const BobInterp&) = delete;

  // The arena.
  uint8_t* base = nullptr;
  uint32_t arenaFree = 0, arenaTop = 0;  // the part that grows

  // Registers. The machine keeps sp, pc and val in locals while it runs and stores them before anything that can look.
  BobScope scope{}, rootScope{};
  BobScope* scopes = nullptr;
  uint32_t *stackBase = nullptr, *stackTop = nullptr, *sp = nullptr, *fp = nullptr;
  BobValue code = 0;       // 0 while none runs
  uint32_t* pc = nullptr;  // in its quick code
  BobValue val = kBobNil, env = kBobNil;
  uint32_t* argv = nullptr;  // argv[-1] is this, argv[-2] _next, argv[-3] the first argument
  int argc = 0;
  uint64_t cacheEpoch = kBobEpoch;  // what has been cached in another epoch doesn't hold
  BobSavedRegisters* saveTop = nullptr;
  int runDepth = 0;  // nested runs of the machine
  BobLocal* locals = nullptr;

  // The compiler knows the interpreter and not the other way round: whoever makes one says how it is destroyed.
  std::unique_ptr<BobCompiler, void (*)(BobCompiler*)> compiler{nullptr, nullptr};
  std::string errorText;  // what %E prints
  int sourceLine = 0;     // of the source that is being read, for messages; the scanner sets it
  BobErrorHandler errorHandler = nullptr;

  BobValue objectClass = kBobNil, methodClass = kBobNil, vectorClass = kBobNil, symbolClass = kBobNil,
           stringClass = kBobNil, integerClass = kBobNil, floatClass = kBobNil;
  BobValue symbolTable = kBobNil;
  uint32_t symbolChunks = 0;

  std::vector<std::unique_ptr<BobProtectedBlock>> protectedBlocks;  // the newest last
  BobHeapBlock oldSpace{}, newSpace{};
  uint32_t allocationLimit = 0;                   // newSpace.top, or 0 while every allocation must take the slow path
  uint32_t collections = 0;                       // so far
  uint32_t survivors = 0;                         // bytes that the last one found alive
  uint32_t expansionSize = 0;                     // as the interpreter was made with; spaces don't grow
  uint32_t totalMemory = 0, allocationCount = 0;  // what the collector reports of native memory

  BobNullStream nullStream;  // in the place of streams that the host hasn't set
  BobStream *stdinStream = &nullStream, *stdoutStream = &nullStream, *stderrStream = &nullStream;
  std::unique_ptr<BobStream> (*openFile)(const char* path, const char* mode) = bobOpenPlainFile;

  uint32_t typeClass = 0;  // the kind of class objects
  uint32_t fileKind = 0;
  uint32_t typeList = 0;
  std::vector<std::unique_ptr<std::string>> typeNames;
  void (*gcHook)(BobInterp*, void* data) = nullptr;
  void* gcHookData = nullptr;

  std::list<std::unique_ptr<BobStream>> openStreams;  // the streams of File objects, closed with the interpreter
  std::vector<BobStaticRow> staticRows;
  std::vector<BobHandleSlot> handles{1};                  // number 0 is never handed out
  uint32_t freeHandle = 0;                                // the one given up last
  std::vector<std::unique_ptr<BobQuickCode>> quickCodes;  // by number less 1

  int32_t randomSeed = 1;

  // For tests: collect at every allocation; fail the allocation that counts this down to 0.
  bool collectAlways = false;
  int64_t failAllocation = -1;

  BobTracer* tracer = nullptr;         // bobTrace
  void (*rest)(BobInterp*) = nullptr;  // bobSetRest
  uint32_t stepsToRest = kBobStepsToRest, stepsBetweenRests = kBobStepsToRest;

  uint32_t* words(BobValue object) { return reinterpret_cast<uint32_t*>(base + object); }
  uint8_t* bytes(BobValue object) { return base + object; }
  uint32_t offsetOf(const void* p) const { return uint32_t(static_cast<const uint8_t*>(p) - base); }
  BobTypeRecord* record(uint32_t type) { return reinterpret_cast<BobTypeRecord*>(base + type); }
  uint32_t typeOf(BobValue value) { return bobIsSmall(value) ? uint32_t(kBobInteger) : *words(value); }
  BobTypeRecord* recordOf(BobValue value) { return record(typeOf(value)); }
  bool isA(BobValue value, uint32_t type) { return typeOf(value) == type; }
  bool isObject(BobValue value) { return recordOf(value)->base == kBobObject; }

  // For the collector and whoever has roots: where the value is after this collection.
  BobValue moved(BobValue value) { return bobIsSmall(value) ? value : recordOf(value)->Copy(this, value); }

  bool isInteger(BobValue value) { return typeOf(value) == kBobInteger; }
  int32_t integerOf(BobValue value) {
    return bobIsSmall(value) ? bobSmallValue(value) : int32_t(words(value)[BobLayout::kIntegerValue]);
  }
  double floatOf(BobValue value) {
    double number;
    std::memcpy(&number, words(value) + BobLayout::kFloatWords, sizeof number);
    return number;
  }
  // Views into the heap: gone with the next allocation. A symbol's text stays.
  std::string_view stringOf(BobValue value) {
    return {reinterpret_cast<const char*>(bytes(value)) + BobLayout::kStringBytes,
            words(value)[BobLayout::kStringLength]};
  }
  std::string_view symbolOf(BobValue value) {
    return {reinterpret_cast<const char*>(bytes(value)) + BobLayout::kSymbolBytes,
            words(value)[BobLayout::kSymbolLength]};
  }

  // The sums of native memory that the collector reports. `size` is that of the record on the player, in its 32-bit
  // words; its allocator put one word more before each record, for the size.
  void countNative(uint32_t size) { totalMemory += size + 4, ++allocationCount; }
  void uncountNative(uint32_t size) { totalMemory -= size + 4, --allocationCount; }
};
