#include "kit/language/randombob.h"

#include <utility>

#include "kit/language/boblexer.h"

namespace {

bool isWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '"' || c == '.'; }

}  // namespace

// With space before it where it needs it, and now and then where it doesn't.
void RandomBob::put(std::string_view token) {
  const bool touches = !text.empty() && isWord(text.back()) && isWord(token.front());
  const bool joins = !text.empty() && std::string_view("+-<>=!&|^*/%.").find(text.back()) != std::string_view::npos &&
                     std::string_view("+-<>=&|*/.").find(token.front()) != std::string_view::npos;
  if (oneIn(12)) {
    if (!text.empty() && text.back() == '/') text += ' ';
    text += anyOf(
        {"\n", "\n\n\n", "  \n  ", "\t", " // a comment\n", "/* one */", "\n// alone\n", "/* of\n two */", "\r\n"});
  } else if (touches || joins || !oneIn(3)) {
    text += ' ';
  }
  text += token;
}

std::string RandomBob::program() {
  text.clear();
  loops = switches = functions = 0;
  for (int i = 1 + below(4); i > 0; --i) statement(4);
  if (oneIn(4)) text += anyOf({"\n", "\n\n", "// the end", "/* the end", "  "});
  return std::move(text);
}

std::string RandomBob::name() {
  return std::string(anyOf({"a", "b", "va", "vb", "pa", "pb", "vk", "widgets", "total", "_next", "x9", "longer_name",
                            "this", "Object", "k", "true"}));
}

// A brace that begins a statement is a block, never an expression.
void RandomBob::statement(int depth) {
  statementBegin = text.size();
  switch (depth <= 0 ? below(2) : below(16)) {
    case 0: put(";"); return;
    case 1:
    case 2:
    case 3:
    case 4:
    case 5: comma(depth); return put(";");
    case 6: return block(depth);
    case 7:
      put("define");
      put(std::string("f") + name());
      while (oneIn(3)) put("."), put(name());
      return function(depth);
    case 8:
      put("if"), put("("), comma(depth - 2), put(")");
      statement(depth - 1);
      if (oneIn(2)) put("else"), statement(depth - 1);
      return;
    case 9:
    case 10: return loop(depth);
    case 11: return selection(depth);
    case 12:
      put("return");
      if (oneIn(2)) comma(depth - 1);
      return put(";");
    case 13:
      if (loops > 0 && oneIn(2)) return put("continue"), put(";");
      if (loops + switches > 0) return put("break"), put(";");
      return put(";");
    case 14:
      put("try"), block(depth - 1);
      if (oneIn(2)) put("catch"), put("("), put("e"), put(")"), block(depth - 1);
      if (oneIn(2)) put("finally"), block(depth - 1);
      return;
    default: put("throw"), comma(depth - 1), put(";");
  }
}

void RandomBob::block(int depth) {
  put("{");
  while (oneIn(3)) {
    put("local");
    do {
      put("v" + name());
      if (oneIn(2)) put("="), element(depth - 2);
    } while (oneIn(3) && (put(","), true));
    put(";");
  }
  for (int i = below(3); i > 0; --i) statement(depth - 1);
  put("}");
}

void RandomBob::loop(int depth) {
  const int kind = below(3);
  if (kind == 0) put("while"), put("("), comma(depth - 2), put(")");
  if (kind == 1) put("do");
  if (kind == 2) {
    put("for"), put("(");
    if (oneIn(2)) comma(depth - 2);
    put(";");
    if (oneIn(2)) comma(depth - 2);
    put(";");
    if (oneIn(2)) comma(depth - 2);
    put(")");
  }
  ++loops;
  statement(depth - 1);
  --loops;
  if (kind == 1) put("while"), put("("), comma(depth - 2), put(")"), put(";");
}

void RandomBob::selection(int depth) {
  put("switch"), put("("), comma(depth - 2), put(")"), put("{");
  ++switches;
  for (int i = below(4); i > 0; --i) {
    // Labels of their own, so that none comes twice.
    switch (below(5)) {
      case 0: put("case"), put("\"text\""); break;
      case 1: put("case"), put("\\"), put("s" + std::to_string(++labels)); break;
      case 2: put("case"), put("1.5"); break;
      case 3: put("default"); break;
      default: put("case"), put(std::to_string(++labels));
    }
    put(":");
    for (int j = below(3); j > 0; --j) statement(depth - 1);
  }
  --switches;
  put("}");
}

void RandomBob::parameters(int depth) {
  put("(");
  for (int i = below(4); i > 0; --i) {
    put("p" + name());
    if (oneIn(3))
      put("="), binary(depth - 2);
    else if (i == 1 && oneIn(4))
      put("..");
    if (i > 1) put(",");
  }
  put(")");
}

void RandomBob::function(int depth) {
  parameters(depth);
  const int outerLoops = std::exchange(loops, 0), outerSwitches = std::exchange(switches, 0);
  ++functions;
  block(depth - 1);
  --functions;
  loops = outerLoops;
  switches = outerSwitches;
}

void RandomBob::comma(int depth) {
  element(depth);
  while (depth > 0 && oneIn(6)) put(","), element(depth - 1);
}

void RandomBob::element(int depth) {
  switch (depth <= 0 ? 9 : below(10)) {
    case 0:
    case 1:
      place(depth - 1);
      put(anyOf({"=", "+=", "-=", "*=", "/=", "&=", "|=", "^=", "<<=", ">>="}));
      return element(depth - 1);
    case 2: binary(depth - 1), put("?"), comma(depth - 1), put(":"); return comma(depth - 1);
    default: return binary(depth);
  }
}

void RandomBob::binary(int depth) {
  primary(depth);
  while (oneIn(3)) {
    put(anyOf({"+", "-", "*", "/", "%", "<", "<=", ">", ">=", "==", "!=", "<<", ">>", "&", "|", "^", "&&", "||"}));
    primary(depth - 1);
  }
}

void RandomBob::place(int depth) {
  put("g" + name());
  if (oneIn(3)) put("."), put(name());
  if (oneIn(4)) put("["), comma(depth - 1), put("]");
  if (oneIn(6)) put("."), put("("), comma(depth - 1), put(")");
}

void RandomBob::arguments(int depth) {
  put("(");
  for (int i = below(4); i > 0; --i) {
    element(depth - 1);
    if (i > 1) put(",");
  }
  put(")");
}

void RandomBob::object(int depth) {
  put("\\"), put("{");
  if (oneIn(3)) put(name());
  const bool parent = text.back() != '{';
  for (int i = below(4); i > 0; --i) {
    put("k" + name()), put(":"), binary(depth - 1);
    if (i > 1) put(",");
  }
  if (parent && oneIn(2)) put(" ");
  put("}");
}

void RandomBob::primary(int depth) {
  switch (depth <= 0 ? below(6) : below(20)) {
    case 0:
    case 1: return put(name());
    case 2: return put(anyOf({"0", "1", "42", "0x1F", "017", "08", "1.5", ".5", "2e3", "1.", "'a'", "'\\n'", "'\\''"}));
    case 3: return put(anyOf({"\"\"", "\"text\"", "\"a // b\"", "\"a \\\" b\"", "\"two\nlines\"", "\"/* \\x41\""}));
    case 4: return put("nil");
    case 5: return put("\\"), put(anyOf({"size", "key", "this"}));
    case 6: return put("("), comma(depth - 1), put(")");
    case 7: return text.size() == statementBegin ? put(name()) : block(depth - 1);
    case 8:
      put("function");
      if (oneIn(3))
        put(name());
      else if (oneIn(4))
        put("\"called\"");
      return function(depth - 1);
    case 9:
      if (functions == 0) return put(name());
      put("super"), put("."), put(name());
      return arguments(depth);
    case 10:
      put("new");
      if (oneIn(3))
        put("("), comma(depth - 1), put(")");
      else
        put(name());
      if (oneIn(2)) arguments(depth);
      return;
    case 11:
      put("\\"), put("[");
      for (int i = below(5); i > 0; --i) {
        element(depth - 1);
        if (i > 1) put(",");
      }
      return put("]");
    case 12: return object(depth);
    case 13: return put(anyOf({"!", "-", "~"})), primary(depth - 1);
    case 14: return put(anyOf({"++", "--"})), place(depth);
    case 15: return place(depth), put(anyOf({"++", "--"}));
    case 16: return put(name()), arguments(depth);
    default:
      place(depth);
      do {
        if (oneIn(2)) put("."), put(name());
        arguments(depth);
      } while (oneIn(4));
  }
}

std::string RandomBob::mutated(std::string_view source) {
  const BobTokens tokens = bobTokensOf(source);
  std::vector<std::string> parts;  // a token and the space before it
  size_t end = 0;
  for (const BobSourceToken& token : tokens.all) {
    parts.emplace_back(source.substr(end, token.end - end));
    end = token.end;
  }
  for (int i = 1 + below(3); i > 0 && !parts.empty(); --i) {
    std::string& part = parts[size_t(below(int(parts.size())))];
    switch (below(4)) {
      case 0: part.clear(); break;
      case 1: part += part; break;
      case 2: std::swap(part, parts[size_t(below(int(parts.size())))]); break;
      default:
        part = " " + std::string(anyOf({"(",   ")",  "{",     "}",    "[",        "]",        ";",     ",",    ".",
                                        "..",  "\\", "=",     "else", "define",   "function", "local", "case", "break",
                                        "x",   "1",  "\"s\"", ":",    "?",        "nil",      "\"",    "'",    "super",
                                        "new", "@",  "true",  "/*",   "continue", "default"}));
    }
  }
  std::string out;
  for (const std::string& part : parts) out += part;
  return out;
}

std::string RandomBob::bytes() {
  std::string out;
  for (int i = below(200); i > 0; --i) {
    if (oneIn(4))
      out += char(below(256));
    else if (oneIn(3))
      out += anyOf({"define f(", "function ", "local ", "\\{", "\\[", "if (", "switch (", "case ", "new "});
    else
      out += "(){}[];,.\\\"'=+-<>&|!?:/* \nab01e_x"[below(34)];
  }
  return out;
}
