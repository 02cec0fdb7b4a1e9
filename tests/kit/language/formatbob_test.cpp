#include "kit/language/formatbob.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/language/boblexer.h"
#include "kit/language/randombob.h"
#include "kit/source/scripts.h"

namespace {

std::string format(const std::string& source) { return formatBob(source, "x.bob"); }

// Comments without the white space at the ends of their lines, which the formatter may change.
std::string tokensOf(std::string_view source) {
  std::string all;
  for (const BobSourceToken& token : bobTokensOf(source).all) {
    for (const char c : source.substr(token.begin, token.end - token.begin))
      if (!token.isComment() || !std::isspace(static_cast<unsigned char>(c))) all += c;
    all += '\n';
  }
  return all;
}

// Empty where a source is too long to compile.
class Compiler {
 public:
  std::string objectOf(const std::string& source) {
    if (uses++ % 20 == 0) compiler = std::make_unique<ScriptCompiler>();
    try {
      return compiler->compileFile(source);
    } catch (const ScriptError&) {
      return {};
    }
  }

 private:
  int uses = 0;
  std::unique_ptr<ScriptCompiler> compiler;
};

void expectHarmless(Compiler* compiler, const std::string& source) {
  const std::string once = format(source);
  ASSERT_EQ(format(once), once) << source;
  ASSERT_EQ(tokensOf(once), tokensOf(source));
  ASSERT_EQ(compiler->objectOf(once), compiler->objectOf(source)) << source;
}

TEST(FormatBob, LeavesTheCodeOfRandomPrograms) {
  Compiler compiler;
  RandomBob random(6);
  for (int i = 0; i < 4000 && !HasFatalFailure(); ++i) expectHarmless(&compiler, random.program());
}

TEST(FormatBob, LeavesTheCodeOfEverySource) {
  Compiler compiler;
  int formatted = 0;
  for (const char* folder : {"demo", "docs", "bench", "tests"})
    for (const auto& entry : std::filesystem::recursive_directory_iterator(std::string(VISTREL_ROOT) + "/" + folder)) {
      if (entry.path().extension() != ".bob") continue;
      SCOPED_TRACE(entry.path());
      const std::vector<uint8_t> bytes = readFile(entry.path().string());
      expectHarmless(&compiler, std::string(bytes.begin(), bytes.end()));
      ++formatted;
    }
  EXPECT_GT(formatted, 15);
}

struct Example {
  const char *source, *expected;
};

void expectFormatted(const std::vector<Example>& examples) {
  for (const Example& each : examples) {
    EXPECT_EQ(format(each.source), each.expected);
    EXPECT_EQ(format(each.expected), each.expected);
  }
}

TEST(FormatBob, PutsSpaces) {
  expectFormatted({
      {"x=-y*( a+b [1 ])  ;", "x = -y * (a + b[1]);\n"},
      {"x = - - y - --z+ ++w;", "x = - -y - --z + ++w;\n"},
      {"x.y . ( z )( 1,2 ) [ 3 ]++;", "x.y.(z)(1, 2)[3]++;\n"},
      {"new  X ( 1 ) . y( ) ;new (x)(2);", "new X(1).y();\nnew (x)(2);\n"},
      {"f=function(a,b=1,c ..){};", "f = function (a, b = 1, c..) {};\n"},
      {"f=function g (){};h=function \"h\"(){};", "f = function g() {};\nh = function \"h\" () {};\n"},
      {"define a . b ( ){return super . b ( ) ;}", "define a.b() { return super.b(); }\n"},
      {"x=\\ a;y=\\[ ];z=\\{ };w=\\{K:1};", "x = \\a;\ny = \\[];\nz = \\{};\nw = \\{ K: 1 };\n"},
      {"x=1 .y;z=1.5.y;w='a'.y;v=!x?y:z;", "x = 1 .y;\nz = 1.5.y;\nw = 'a'.y;\nv = !x ? y : z;\n"},
      {"return ;return(x);throw x;x<<=1;", "return;\nreturn (x);\nthrow x;\nx <<= 1;\n"},
  });
}

TEST(FormatBob, BreaksStatements) {
  expectFormatted({
      {"a;b;", "a;\nb;\n"},
      {"define f(a){b;c;}", "define f(a) { b; c; }\n"},
      {"define f(a){b;\nc;}", "define f(a) {\n  b;\n  c;\n}\n"},
      {"define f(){\n}", "define f() {}\n"},
      {"if(a){b;}\nelse\n{c;}", "if (a) {\n  b;\n} else {\n  c;\n}\n"},
      {"if(a)b;else c;", "if (a) b; else c;\n"},
      {"if(a)\nb;else c;", "if (a)\n  b;\nelse c;\n"},
      {"if (a) {\nb; } else if(c) d; else {e;}", "if (a) {\n  b;\n} else if (c) d; else {\n  e;\n}\n"},
      {"for(i=0;i<3;i++)\nfor(;;)x;", "for (i = 0; i < 3; i++)\n  for (;;) x;\n"},
      {"do\nx;while(y);do{x;}while(y);", "do\n  x;\nwhile (y);\ndo { x; } while (y);\n"},
      {"try{a;}catch(e){\nb;}finally{}", "try {\n  a;\n} catch (e) {\n  b;\n} finally {}\n"},
      {"f(a,function(e){\nb;});", "f(a, function (e) {\n  b;\n});\n"},
      {"x={local a=1,b;a+b;};", "x = { local a = 1, b; a + b; };\n"},
      {"define f() { }; ;while(x);", "define f() {};;\nwhile (x);\n"},
      {"switch(x){case 1:case \\a:f();\ncase\"s\":\ng();break;default :h();i();}",
       "switch (x) {\n  case 1: case \\a: f();\n  case \"s\":\n    g();\n    break;\n  default: h(); i();\n}\n"},
  });
}

TEST(FormatBob, KeepsTheLinesOfLists) {
  expectFormatted({
      {"v=\\[1,2,\n3];", "v = \\[1, 2,\n      3];\n"},
      {"v=\\[\n1,\n2\n];", "v = \\[\n  1,\n  2\n];\n"},
      {"o=\\{P a:1,\nb:2};o=\\{};o = \\{ P };", "o = \\{ P a: 1,\n       b: 2 };\no = \\{};\no = \\{ P };\n"},
      {"f(a,\nb &&\nc);", "f(a,\n  b &&\n      c);\n"},
      {"x = a\n? b\n: c;", "x = a\n    ? b\n    : c;\n"},
      {"x =\n  a\n  + b;", "x =\n    a + b;\n"},
      {"a\n.b(c)\n.d();", "a\n    .b(c)\n    .d();\n"},
      {"if (a &&\nb) {\nc;\n}", "if (a &&\n    b) {\n  c;\n}\n"},
  });
}

TEST(FormatBob, KeepsCommentsAndBlankLines) {
  expectFormatted({
      {"\n\n// a\n\n\n\nb; // c  \n  // d\n", "// a\n\nb;  // c\n// d\n"},
      {"define f() {\n\n  // a\n\n  b;\n\n  // c\n\n}\n", "define f() {\n  // a\n\n  b;\n\n  // c\n}\n"},
      {"a; // one\nlonger = 1; // two\n\nb; // three\n", "a;           // one\nlonger = 1;  // two\n\nb;  // three\n"},
      {"f(a, // one\nb /* two */, /* three */ c);", "f(a,  // one\n  b /* two */, /* three */ c);\n"},
      {"x = a + // why\nb;", "x = a +  // why\n    b;\n"},
      {"{\n    /* a\n       b */\n  c;\n}", "{\n  /* a\n     b */\n  c;\n}\n"},
      {"if (a)\n  // why\n  b;\n// else\nelse c;", "if (a)\n  // why\n  b;\n// else\nelse c;\n"},
      {"/* a */ b;", "/* a */ b;\n"},
      {"", ""},
      {"  \n", ""},
      {"a;\r\nb;\r\n", "a;\r\nb;\r\n"},
      {"x = \"a\n  b\";", "x = \"a\n  b\";\n"},
  });
}

TEST(FormatBob, BreaksLongLines) {
  const std::string name(30, 'n');
  const std::string f = "f(" + name + ", " + name + ", " + name + ", " + name + ");";
  EXPECT_EQ(format(f), "f(" + name + ", " + name + ", " + name + ",\n  " + name + ");\n");
  EXPECT_EQ(format("define g() { " + f + " }"),
            "define g() {\n  f(" + name + ", " + name + ", " + name + ",\n    " + name + ");\n}\n");
  EXPECT_EQ(format("if (" + name + ") " + name + " = " + name + " + " + name + ";"),
            "if (" + name + ")\n  " + name + " = " + name + " + " + name + ";\n");
  // A line that can't be helped stays.
  const std::string text = "x = \"" + std::string(150, 't') + "\";";
  EXPECT_EQ(format(text), text + "\n");
}

TEST(FormatBob, RefusesWhatHasErrors) {
  const auto message = [](const std::string& source) -> std::string {
    try {
      format(source);
      return "none";
    } catch (const KitError& e) {
      return e.what();
    }
  };
  EXPECT_EQ(message("x = ;\ny = (1;"), "x.bob:1: Expecting a primary expression\nx.bob:2: Expecting ')', found ';'");
  EXPECT_EQ(message(std::string("x;\n\0y", 5)), "x.bob:2: a byte ends the source here, and what follows is never read");
}

}  // namespace
