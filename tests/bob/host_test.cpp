// What the host sees: native kinds, calls in, scopes, streams, argument signatures.
#include <gtest/gtest.h>

#include <deque>

#include "bob/session.h"

namespace {

struct Lamp {
  int32_t level = 0;
};

std::deque<Lamp> lamps;  // never released: the host owns them
std::vector<Lamp*> finalized;
uint32_t lampKind;

BobValue LampInitialize(BobInterp* interp) {
  BobValue self;
  int32_t level = 7;
  bobParse(interp, "V=*|i", lampKind, &self, &level);
  bobHandleOf(interp, self) = bobMakeHandle(interp, &lamps.emplace_back(Lamp{level}));
  return self;
}
BobValue LampBlink(BobInterp* interp) {
  void* lamp;
  BobValue callback;
  bobParse(interp, "P=*V", lampKind, &lamp, &callback);
  if (!lamp) return kBobFalse;
  return bobCall(bobCurrentScope(interp), callback, {bobMakeInteger(interp, static_cast<Lamp*>(lamp)->level)});
}
BobValue LampLevel(BobInterp* interp, BobValue object) {
  const auto* lamp = static_cast<Lamp*>(bobNativePointer(interp, object));
  return lamp ? bobMakeInteger(interp, lamp->level) : kBobNil;
}
void SetLampLevel(BobInterp* interp, BobValue object, BobValue value) {
  static_cast<Lamp*>(bobNativePointer(interp, object))->level = bobIntegerValue(interp, value);
}
void FinalizeLamp(BobInterp* interp, BobValue object) {
  finalized.push_back(static_cast<Lamp*>(bobNativePointer(interp, object)));
  bobReleaseHandle(interp, bobHandleOf(interp, object));
}

constexpr BobMethodRow kMethods[] = {{"initialize", LampInitialize}, {"Blink", LampBlink}, {nullptr, nullptr}};
constexpr BobPropertyRow kProperties[] = {{"level", LampLevel, SetLampLevel},
                                          {"shape", [](BobInterp*, BobValue) { return bobSmall(3); }, nullptr},
                                          {"colour", nullptr, [](BobInterp*, BobValue, BobValue) {}},
                                          {nullptr, nullptr, nullptr}};

struct LampSession : Session {
  LampSession() {
    finalized.clear();
    lampKind = bobMakeKind(interp, 0, "Lamp", kMethods, kProperties);
    bobSetFinalizer(interp, lampKind, FinalizeLamp);
    childKind = bobMakeKind(interp, lampKind, "NightLamp", nullptr, nullptr);
  }
  uint32_t childKind;
};

TEST(NativeKinds, ReadAndWriteThroughTheirRows) {
  LampSession session;
  const std::pair<const char*, const char*> lines[] = {
      {"lamp = new Lamp(5), 0;", "--> 0\n"},
      {"\\[lamp.level, lamp.level = 9, lamp.level, lamp.shape];", "--> [5,9,9,3]\n"},
      {"lamp.shape = 4;", "Error: Attempt to set a read-only property\nHappened in <CompiledCode-#>\n"},
      {"lamp.colour;", "Error: Attempt to get a write-only property\nHappened in <CompiledCode-#>\n"},
      {"lamp.note = \"mine\", lamp.note;", "--> \"mine\"\n"},
      {"lamp.zip;", "Error: No property - zip\nHappened in <CompiledCode-#>\n"},
      {"lamp;", "--> <Lamp-#>\n"},
      {"Lamp;", "--> <Type-Lamp>\n"},
      {"night = new NightLamp(2), \\[night.level, night.shape, Type(night)];", "--> [2,3,NightLamp]\n"},
      {"lamp.Blink(function (level) { return level + 1; });", "--> 10\n"},
      {"Lamp.Blink.Apply(5, nil, \\[1]);", "Error: Wrong type - 5\nHappened in <CompiledCode-#>\n"},
      {"(new lamp).Blink(1);", "--> nil\n"},  // made without initialize: it has no lamp
  };
  for (const auto& [text, answer] : lines) EXPECT_EQ(session.eval(text), answer) << text;
}

TEST(NativeKinds, AreFinalizedOnceWhenNothingReachesThem) {
  LampSession session;
  session.run("kept = new Lamp(1); lost = new Lamp(2); closed = new Lamp(3); bare = new Lamp;");
  BobValue closed;
  ASSERT_TRUE(bobFindGlobal(session.interp, session.root()->object, bobIntern(session.interp, "closed"), &closed));
  bobReleaseHandle(session.interp, bobHandleOf(session.interp, closed));
  bobCollect(session.interp);
  EXPECT_TRUE(finalized.empty());
  session.run("lost = nil; closed = nil; bare = nil;");
  for (int i = 0; i < 3; ++i) bobCollect(session.interp);
  EXPECT_EQ(finalized.size(), 1u);
  EXPECT_EQ(session.eval("kept.level;"), "--> 1\n");
  session.run("kept = nil;");
  bobCollect(session.interp);
  EXPECT_EQ(finalized.size(), 2u);
}

TEST(Host, CallsFunctionsAndRestoresTheRegistersAfterAnError) {
  Session session;
  BobInterp* interp = session.interp;
  session.run(
      "define add(a, b) { return a + b; } define bad(a) { return a.zork; } o = \\{ k: 4 }; "
      "define o.times(n) { return this.k * n; }");
  uint32_t* const sp = interp->sp;
  EXPECT_EQ(bobCallByName(session.root(), "add", {bobSmall(2), bobSmall(3)}), bobSmall(5));
  BobValue object;
  bobFindGlobal(interp, session.root()->object, bobIntern(interp, "o"), &object);
  EXPECT_EQ(bobSend(interp, object, "times", {bobSmall(5)}), bobSmall(20));
  EXPECT_EQ(session.answer(), "");
  for (const char* name : {"bad", "nothing"}) {
    EXPECT_FALSE(bobTry(interp, [&] { bobCallByName(session.root(), name, {bobSmall(1)}); }));
    EXPECT_EQ(interp->sp, sp);
    EXPECT_EQ(interp->saveTop, nullptr);
  }
  EXPECT_EQ(session.answer(), "Error: No property - zork\nError: Unbound variable - nothing\nHappened in bad\n");
}

TEST(Host, CallsBackFromNativeMethodsNestUpToABound) {
  LampSession session;
  session.run("lamp = new Lamp(1); count = 0; define down(level) { count = count + 1; lamp.Blink(down); }");
  EXPECT_TRUE(session.eval("lamp.Blink(down);").starts_with("Error: Stack overflow\n"));
  EXPECT_EQ(session.eval("count;"), "--> 1499\n");  // of 1,500 runs the line's own is one
}

TEST(Host, ARestartUnwindsWithoutAMessage) {
  Session session;
  const auto raise = [&](int code) { return bobTry(session.interp, [&] { bobRaise(session.interp, code); }); };
  EXPECT_FALSE(raise(kBobRestart));
  EXPECT_EQ(session.answer(), "");
  EXPECT_FALSE(raise(99));
  EXPECT_EQ(session.answer(), "Error: Unknown error\n");
}

TEST(Host, ScopesHideButNeverChangeWhatIsOutside) {
  Session session;
  BobScope* inner = bobMakeScope(session.root());
  session.run("x = 1; define get() { return x; }");
  const auto inside = [&](const char* text) { return bobConsoleEvaluate(inner, text), session.answer(); };
  EXPECT_EQ(inside("define look() { return x; }"), "--> <Method-look>\n");
  EXPECT_EQ(inside("look() + x;"), "--> 2\n");
  EXPECT_EQ(inside("x = 5;"), "--> 5\n");
  EXPECT_EQ(inside("\\[look(), get()];"), "--> [5,1]\n");  // what had been found outside is hidden now
  EXPECT_EQ(session.eval("x;"), "--> 1\n");
  bobCollect(session.interp);
  session.answer();
  bobClearProperties(session.interp, inner->object);
  EXPECT_EQ(inside("x;"), "--> 1\n");
  bobReleaseScope(inner);
}

// Calls `parse` as a native method with the arguments that follow this and _next.
BobValue (*parse)(BobInterp*);
BobValue CallParse(BobInterp* interp) { return parse(interp); }
constexpr BobMethodRow kParser[] = {{"parse", CallParse}, {nullptr, nullptr}};

TEST(Host, CodeThatMovesWhileANativeMethodFailsGoesOn) {
  Session session;
  bobBindFunctions(session.interp, kParser);
  parse = [](BobInterp* interp) {
    bobTry(interp, [&] {
      bobCollect(interp);
      bobRaise(interp, kBobRestart);
    });
    return kBobNil;
  };
  EXPECT_EQ(session.eval("{ parse(); gc(); gc(); \\[\"still\", \"here\"]; }"), "--> [\"still\",\"here\"]\n");
}

TEST(Signature, ChecksKindsAndNumbers) {
  Session session;
  bobBindFunctions(session.interp, kParser);
  parse = [](BobInterp* interp) {
    int32_t flag = 9, number = 8;
    int8_t small = 7;
    double real = 0.5;
    const char* text = "default";
    int32_t length = -1;
    bobParse(interp, "**Bi|cS?#d", &flag, &number, &small, &text, &length, &real);
    char line[80];
    std::snprintf(line, sizeof line, "%d %d %d %s %d %g", flag, number, small, text ? text : "none", length, real);
    return bobMakeString(interp, line);
  };
  const std::pair<const char*, const char*> lines[] = {
      {"parse(0, 5);", "--> \"1 5 7 default -1 0.5\"\n"},
      {"parse(nil, -5, 0x1FF, \"ab\", 2.25);", "--> \"0 -5 -1 ab 2 2.25\"\n"},
      {"parse(1, 2, 3, nil);", "--> \"1 2 3 none 0 0.5\"\n"},
      {"parse(1);", "Error: Too few arguments - <CMethod-parse>\nHappened in <CompiledCode-#>\n"},
      {"parse(1, 2, 3, nil, 1.5, 6);", "Error: Too many arguments - <CMethod-parse>\nHappened in <CompiledCode-#>\n"},
      {"parse(1, 2.5);", "Error: Wrong type - 2.5\nHappened in <CompiledCode-#>\n"},
      {"parse(1, 2, 3, nil, 4);", "Error: Wrong type - 4\nHappened in <CompiledCode-#>\n"},
  };
  for (const auto& [text, answer] : lines) EXPECT_EQ(session.eval(text), answer) << text;
  parse = [](BobInterp* interp) {
    const BobParseSlot none[] = {BobParseSlot(0u)};
    bobParseSlots(interp, "*z", none);
    return kBobNil;
  };
  EXPECT_EQ(session.eval("parse();"), "Error: Bad parse code\nHappened in <CompiledCode-#>\n");
}

TEST(Streams, RefuseWhenFullAndForwardToTheField) {
  char buffer[3];
  BobStringOutput output(buffer, sizeof buffer);
  EXPECT_FALSE(bobPutText(&output, "abcd"));
  EXPECT_EQ(std::string(buffer, output.count()), "abc");
  TextStream first, second;
  BobStream* field = &first;
  BobIndirectStream indirect(&field);
  indirect.PutC('1');
  field = &second;
  indirect.PutC('2');
  EXPECT_EQ(first.text + "|" + second.text, "1|2");
  BobStringCopyInput input(std::string("\xFFz"));
  EXPECT_EQ(input.GetC(), 255);
  EXPECT_EQ(input.GetC(), 'z');
  EXPECT_EQ(input.GetC(), -1);
}

}  // namespace
