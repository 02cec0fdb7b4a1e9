// Where the cursor is: by the tokens before it, so that a source that breaks off there does no harm.
#include <algorithm>

#include "kit/language/bobsymbols.h"
#include "kit/language/knownobject.h"

namespace {

using Token = BobTokenKind;
constexpr size_t kNone = SIZE_MAX;

class Look {
 public:
  Look(const BobTree& t, const BobSymbols& s) : tree(t), symbols(s) {}

  Token kind(size_t token) const { return token == kNone ? Token::kEnd : tree.tokens.all[token].kind; }
  std::string text(size_t token) const { return std::string(tree.text(tree.tokens.all[token])); }

  // The last token that isn't a comment and ends at the offset or before it.
  size_t lastBefore(size_t offset) const {
    size_t token = tree.tokens.at(offset);
    while (token != kNone && (tree.tokens.all[token].end > offset || tree.tokens.all[token].kind == Token::kEnd))
      --token;
    return token == kNone ? kNone : skipBack(token);
  }
  size_t before(size_t token) const { return token == kNone || token == 0 ? kNone : skipBack(token - 1); }

  // Back over brackets to the opening one of the closing one that `token` is; kNone if there is none.
  size_t opening(size_t token) const {
    size_t depth = 0;
    for (; token != kNone; token = before(token)) {
      if (closes(kind(token))) ++depth;
      if (opens(kind(token)) && --depth == 0) return token;
    }
    return kNone;
  }

  // The first token of the chain of names, calls and indices that ends with `token`; kNone if none ends there.
  size_t chainBegin(size_t token) const {
    for (;;) {
      size_t begin = token;
      while (kind(begin) == Token::kCloseParenthesis || kind(begin) == Token::kCloseBracket ||
             kind(begin) == Token::kCloseBrace) {
        const size_t bracket = opening(begin);
        const size_t ahead = before(bracket);
        if (bracket == kNone) return kNone;
        if (kind(ahead) == Token::kBackslash) return ahead;  // a literal
        const bool applies = isOperandEnd(kind(ahead)) && kind(bracket) != Token::kOpenBrace;
        if (!applies) return kind(before(bracket)) == Token::kNew ? before(bracket) : bracket;
        begin = ahead;
      }
      if (!isOperandEnd(kind(begin))) return kNone;
      const size_t point = before(begin);
      if (kind(point) == Token::kNew || kind(point) == Token::kBackslash) return point;
      if (kind(point) != Token::kDot) return begin;
      token = before(point);
    }
  }

  // What the chain from `begin` to before `end` is known to be.
  std::string objectOf(size_t begin, size_t end) const {
    const size_t from = tree.tokens.all[begin].begin;
    const std::string source = std::string(tree.source.substr(from, tree.tokens.all[end].begin - from)) + ";";
    const std::string& thisObject = symbols.scopes[symbols.scopeAt(from)].thisObject;
    if (kind(begin) == Token::kSuper) {
      const BobClass* own = symbols.findClass(thisObject);
      return own ? own->parent : std::string();
    }
    const BobTree part = parseBob(source);
    const std::span<const uint32_t> statements = part.children(part.root());
    if (statements.size() != 1 || part.nodes[statements[0]].kind != BobNodeKind::kExpression || !part.errors.empty())
      return {};
    return objectOf(part, part.children(statements[0])[0], from, thisObject);
  }

 private:
  size_t skipBack(size_t token) const {
    while (tree.tokens.all[token].isComment()) {
      if (token == 0) return kNone;
      --token;
    }
    return token;
  }
  static bool opens(Token k) {
    return k == Token::kOpenParenthesis || k == Token::kOpenBracket || k == Token::kOpenBrace;
  }
  static bool closes(Token k) {
    return k == Token::kCloseParenthesis || k == Token::kCloseBracket || k == Token::kCloseBrace;
  }
  static bool isOperandEnd(Token k) {
    return closes(k) || k == Token::kIdentifier || k == Token::kString || k == Token::kInteger || k == Token::kFloat ||
           k == Token::kSuper || k == Token::kNil;
  }

  std::string objectOf(const BobTree& part, uint32_t node, size_t offset, const std::string& thisObject) const {
    const std::span<const uint32_t> list = part.children(node);
    if (part.nodes[node].kind == BobNodeKind::kParenthesis) return objectOf(part, list[0], offset, thisObject);
    if (part.nodes[node].kind == BobNodeKind::kName) return objectOfName(part.text(node), offset, thisObject);
    if (part.nodes[node].kind != BobNodeKind::kChain) return bobKindOf(part, node);
    if (part.nodes[list[0]].kind != BobNodeKind::kName) return {};
    std::string path(part.text(list[0]));
    const std::string first = objectOfName(path, offset, thisObject);
    if (!first.empty()) path = first;
    for (const uint32_t link : list.subspan(1)) {
      if (part.nodes[link].kind != BobNodeKind::kMember) return {};
      path += "." + std::string(part.text(part.children(link)[0]));
    }
    return symbols.findClass(path) ? path : std::string();
  }

  std::string objectOfName(std::string_view name, size_t offset, const std::string& thisObject) const {
    if (name == "this") return thisObject;
    for (const uint32_t variable : symbols.variablesAt(offset))
      if (symbols.symbols[variable].name == name) return symbols.symbols[variable].object;
    const BobSymbol* global = symbols.find(BobSymbolKind::kGlobal, name);
    if (global && !global->object.empty()) return global->object;
    return symbols.findClass(name) ? std::string(name) : std::string();
  }

  const BobTree& tree;
  const BobSymbols& symbols;
};

bool isWord(const BobSourceToken& token) { return token.kind == Token::kIdentifier || bobIsKeyword(token.kind); }

// Whether text at the offset would go into a token that isn't code.
bool isInText(const BobTree& tree, size_t offset) {
  for (size_t i = tree.tokens.at(offset) + 1; i-- > 0;) {
    const BobSourceToken& token = tree.tokens.all[i];
    if (token.end < offset) return false;
    if (token.begin >= offset) continue;
    const bool atEnd = token.end == offset;
    const std::string_view text = tree.text(token);
    switch (token.kind) {
      case Token::kLineComment: return true;
      case Token::kBlockComment: return !atEnd || text.size() < 4 || !text.ends_with("*/");
      case Token::kString: return !atEnd || text.size() < 2 || text.back() != '"';
      case Token::kInteger:
      case Token::kFloat: return true;
      default: return false;
    }
  }
  return false;
}

// Whether a name between `(` or `,` and the cursor is made there: a parameter, or a variable of a block.
bool makesName(const BobTree& tree, size_t token) {
  const uint32_t at = tree.tokens.all[token].end;
  for (uint32_t node = tree.nodeAt(at); node != kBobNoNode; node = tree.nodes[node].parent) {
    switch (tree.nodes[node].kind) {
      case BobNodeKind::kName:
      case BobNodeKind::kMissing:
      case BobNodeKind::kVariable:
      case BobNodeKind::kParameter: break;
      case BobNodeKind::kParameters:
      case BobNodeKind::kLocals: return true;
      default: return false;
    }
  }
  return false;
}

bool makesKey(const BobTree& tree, size_t token) {
  for (uint32_t node = tree.nodeAt(tree.tokens.all[token].end); node != kBobNoNode; node = tree.nodes[node].parent) {
    switch (tree.nodes[node].kind) {
      case BobNodeKind::kSelector:
      case BobNodeKind::kMissing:
      case BobNodeKind::kPair: break;
      case BobNodeKind::kObject: return true;
      default: return false;
    }
  }
  return false;
}

}  // namespace

BobCursor cursorAt(const BobTree& tree, const BobSymbols& symbols, size_t offset) {
  offset = std::min(offset, tree.source.size());
  BobCursor cursor;
  cursor.begin = cursor.end = uint32_t(offset);
  if (isInText(tree, offset)) return cursor;
  const Look look(tree, symbols);
  size_t ahead = look.lastBefore(offset);
  const size_t next = tree.tokens.at(offset);
  // The word that the cursor is in, or at either end of.
  size_t word = kNone;
  if (ahead != kNone && tree.tokens.all[ahead].end == offset && isWord(tree.tokens.all[ahead])) word = ahead;
  if (tree.tokens.all[next].begin <= offset && isWord(tree.tokens.all[next])) word = next;
  if (word != kNone) {
    cursor.begin = tree.tokens.all[word].begin;
    cursor.end = tree.tokens.all[word].end;
    ahead = look.before(word);
  }
  cursor.kind = BobCursor::kName;
  switch (look.kind(ahead)) {
    case Token::kDot: {
      cursor.kind = BobCursor::kMember;
      const size_t begin = look.chainBegin(look.before(ahead));
      if (begin == kNone) break;
      const uint32_t from = tree.tokens.all[begin].begin;
      cursor.chain = std::string(tree.source.substr(from, tree.tokens.all[look.before(ahead)].end - from));
      cursor.object = look.objectOf(begin, ahead);
      break;
    }
    case Token::kBackslash: cursor.kind = BobCursor::kSymbol; break;
    case Token::kLocal:
    case Token::kDefine:
    case Token::kFunction: cursor.kind = BobCursor::kNewName; break;
    case Token::kOpenParenthesis:
    case Token::kComma:
      if (makesName(tree, ahead)) cursor.kind = BobCursor::kNewName;
      if (makesKey(tree, ahead)) cursor.kind = BobCursor::kKey;
      break;
    case Token::kOpenBrace:
      if (look.kind(look.before(ahead)) == Token::kBackslash) cursor.kind = BobCursor::kKey;
      break;
    default: break;
  }
  return cursor;
}

bool callAt(const BobTree& tree, const BobSymbols& symbols, size_t offset, BobCallAt* call) {
  const Look look(tree, symbols);
  size_t argument = 0;
  for (size_t token = look.lastBefore(std::min(offset, tree.source.size())); token != kNone;
       token = look.before(token)) {
    switch (look.kind(token)) {
      case Token::kComma: ++argument; continue;
      case Token::kSemicolon: return false;
      case Token::kCloseParenthesis:
      case Token::kCloseBracket:
      case Token::kCloseBrace:
        token = look.opening(token);
        if (token == kNone) return false;
        continue;
      case Token::kOpenBrace:
        if (look.kind(look.before(token)) != Token::kBackslash) return false;
        argument = 0;
        continue;
      case Token::kOpenBracket: argument = 0; continue;
      case Token::kOpenParenthesis: break;
      default: continue;
    }
    const size_t callee = look.before(token);
    const size_t begin = look.chainBegin(callee);
    if (begin == kNone) {  // only parentheses
      argument = 0;
      continue;
    }
    const Token ahead = look.kind(look.before(begin));
    if (ahead == Token::kDefine || ahead == Token::kFunction || look.kind(callee) == Token::kString) return false;
    *call = {};
    call->argument = argument;
    call->nameOffset = tree.tokens.all[callee].begin;
    if (look.kind(callee) != Token::kIdentifier) return true;
    call->name = look.text(callee);
    const size_t point = look.before(callee);
    call->isMethod = look.kind(point) == Token::kDot || look.kind(point) == Token::kNew;
    if (look.kind(point) == Token::kDot) call->object = look.objectOf(begin, point);
    if (look.kind(point) == Token::kNew) {
      call->object = call->name;
      call->name = "initialize";
    }
    return true;
  }
  return false;
}
