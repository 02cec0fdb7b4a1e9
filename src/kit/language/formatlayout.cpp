#include "kit/language/formatlayout.h"

#include <algorithm>

namespace {

using Token = BobTokenKind;
using Gap = BobGap;

size_t widthOf(std::string_view text) {
  return size_t(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string_view withoutEnd(std::string_view text) {
  const size_t end = text.find_last_not_of(" \t\r\f\v\n");
  return text.substr(0, end == std::string_view::npos ? 0 : end + 1);
}

}  // namespace

std::string BobLayout::run() {
  const auto count = uint32_t(tree.tokens.all.size());
  uint32_t owner = 0;
  for (uint32_t token = 0; token < count; ++token) {
    if (token >= owner) owner = token;
    while (tree.tokens.all[owner].isComment()) ++owner;
    put(token, owner);
    if (!shorten(&token)) continue;
    owner = token;  // it is put again
    --token;
  }
  return aligned();
}

// -- line ends

bool BobLayout::keepsBreak(uint32_t token) const {
  return last != UINT32_MAX && gaps.beginLine[token] != gaps.endLine[last];
}

bool BobLayout::isBroken(uint32_t token) const {
  const Gap& gap = gaps.gaps[token];
  switch (gap.mode) {
    case Gap::kJoined:
    case Gap::kSpace: return false;
    case Gap::kLine: return true;
    case Gap::kGroup: return gaps.brokenGroups[gap.group];
    case Gap::kSoft:
    case Gap::kSoftJoined: break;
  }
  const bool follows = gap.breaksWith != 0 && places[gap.breaksWith].column == places[gap.breaksWith].lineIndent;
  return broken[token] || follows || keepsBreak(token);
}

// Whether a line ends before the token, a comment or the gap's owner.
bool BobLayout::breaksBefore(uint32_t token, uint32_t owner) {
  if (token == 0) return false;
  const bool afterComment = tree.tokens.all[token - 1].isComment();
  if (tree.tokens.all[token - 1].kind == Token::kLineComment) return true;
  const bool authors = newlinesBefore(token) > 0;
  if (authors && (afterComment || token != owner)) return true;
  return isBroken(owner) && (authors || (token == owner && !gapBroken));
}

size_t BobLayout::indentOf(uint32_t owner, bool* continues) const {
  const Gap& gap = gaps.gaps[owner];
  if (gap.anchor == Gap::kLeftEdge) return gap.amount;
  if (gap.anchor == Gap::kTokenBefore) {
    if (last == UINT32_MAX) return 0;
    *continues = true;
    return places[last].lineIndent + (places[last].continues ? 0 : gap.amount);
  }
  const Place& anchor = places[gap.anchor];
  if (gap.indent == Gap::kFromLine) return anchor.lineIndent + gap.amount;
  const bool begins = gap.indent == Gap::kOperand && anchor.column == anchor.lineIndent;
  return anchor.column + (begins ? gap.amount : 0);
}

void BobLayout::newLine(uint32_t token, uint32_t owner) {
  const Gap& gap = gaps.gaps[owner];
  const bool isEdge = token == owner &&
                      (tree.tokens.all[token].kind == Token::kCloseBrace || tree.tokens.all[token].kind == Token::kEnd);
  const bool behindBrace = token > 0 && tree.tokens.all[token - 1].kind == Token::kOpenBrace;
  const bool blank = gap.keepsBlankLine && newlinesBefore(token) > 1 && !isEdge && !behindBrace;
  if (!text.empty()) {
    text += lineEnd;
    ++lines;
    if (blank) {
      text += lineEnd;
      ++lines;
    }
  }
  bool continues = false;
  column = indentOf(owner, &continues) + (token == owner ? 0 : gap.commentAmount);
  lineIndent = column;
  lineContinues = continues;
  gapBroken = true;
  breaks.clear();
  openGroups.clear();
  if (tree.tokens.all[token].kind != Token::kEnd) text.append(column, ' ');
}

// What separates the token from the one before it in the line.
void BobLayout::space(uint32_t token, uint32_t owner) {
  if (token == 0) return;
  const BobSourceToken& now = tree.tokens.all[token];
  const BobSourceToken& then = tree.tokens.all[token - 1];
  size_t spaces = 1;
  if (now.isComment()) {
    const bool opens = then.kind == Token::kOpenParenthesis || then.kind == Token::kOpenBracket;
    spaces = now.kind == Token::kLineComment ? 2 : opens ? 0 : 1;
  } else if (then.isComment()) {
    const Token kind = now.kind;
    const bool closes = kind == Token::kCloseParenthesis || kind == Token::kCloseBracket || kind == Token::kComma ||
                        kind == Token::kSemicolon;
    spaces = closes || kind == Token::kEnd ? 0 : 1;
  } else {
    const Gap::Mode mode = gaps.gaps[owner].mode;
    spaces = mode == Gap::kJoined || mode == Gap::kSoftJoined ? 0 : 1;
  }
  if (now.kind == Token::kLineComment)
    trailing.push_back({text.size(), column, lines, widthOf(withoutEnd(tree.text(now)))});
  text.append(spaces, ' ');
  column += spaces;
}

// -- tokens

void BobLayout::put(uint32_t token, uint32_t owner) {
  Place& place = places[token];
  place.before = text.size();
  if (breaksBefore(token, owner)) {
    newLine(token, owner);
  } else {
    const Gap& gap = gaps.gaps[token];
    const size_t columnBefore = column;
    space(token, owner);
    bool continues = false;
    const bool soft = token == owner && (gap.mode == Gap::kSoft || gap.mode == Gap::kSoftJoined);
    if (soft && indentOf(token, &continues) < columnBefore) breaks.push_back({token, gap.weight});
    if (token == owner && gap.mode == Gap::kGroup) openGroups.push_back(token);
  }
  place.column = column;
  place.lineIndent = lineIndent;
  place.continues = lineContinues;
  putText(token);
  if (token != owner) return;
  last = token;
  gapBroken = false;
}

void BobLayout::putText(uint32_t token) {
  const BobSourceToken& now = tree.tokens.all[token];
  if (now.kind == Token::kBlockComment) return putBlockComment(tree.text(now));
  const std::string_view part = now.isComment() ? withoutEnd(tree.text(now)) : tree.text(now);
  text += part;
  const size_t line = part.rfind('\n');
  if (line == std::string_view::npos) {
    column += widthOf(part);
    return;
  }
  lines += size_t(std::count(part.begin(), part.end(), '\n'));
  column = widthOf(part.substr(line + 1));
  breaks.clear();
  openGroups.clear();
}

// The lines of a comment move along with its first one.
void BobLayout::putBlockComment(std::string_view comment) {
  const std::string_view source = tree.source;
  comment = withoutEnd(comment);  // of one that isn't closed
  const auto begin = size_t(comment.data() - source.data());
  const size_t lineBegin = begin == 0 ? 0 : source.rfind('\n', begin - 1) + 1;
  const size_t oldColumn = begin - lineBegin, newColumn = column;
  for (size_t at = 0; at <= comment.size();) {
    const size_t end = std::min(comment.find('\n', at), comment.size());
    std::string_view line = withoutEnd(comment.substr(at, end - at));
    if (at > 0) {
      text += lineEnd;
      ++lines;
      const size_t margin = std::min(line.find_first_not_of(" \t"), line.size());
      line.remove_prefix(margin);
      column = line.empty() ? 0 : margin + newColumn < oldColumn ? 0 : margin + newColumn - oldColumn;
      text.append(column, ' ');
      breaks.clear();
      openGroups.clear();
    }
    text += line;
    column += widthOf(line);
    at = end + 1;
  }
}

// -- lines that are too long

// Breaks the line, if it has become too long, and goes back to the token that begins the next one.
bool BobLayout::shorten(uint32_t* token) {
  if (column <= columns || tree.tokens.all[*token].kind == Token::kLineComment) return false;
  if (!openGroups.empty()) {
    const uint32_t first = openGroups.front();
    gaps.brokenGroups[gaps.gaps[first].group] = true;
    *token = first;
  } else if (!breaks.empty()) {
    const auto lighter = [](const Break& a, const Break& b) { return a.weight < b.weight; };
    // Of several that are as light, the last one.
    const auto found = std::min_element(breaks.rbegin(), breaks.rend(), lighter);
    broken[found->token] = true;
    *token = found->token;
  } else {
    return false;
  }
  backTo(*token);
  return true;
}

// All that has been put since is of the same line.
void BobLayout::backTo(uint32_t token) {
  text.resize(places[token].before);
  while (!trailing.empty() && trailing.back().at >= text.size()) trailing.pop_back();
  const auto isBehind = [&](uint32_t other) { return other >= token; };
  std::erase_if(breaks, [&](const Break& b) { return isBehind(b.token); });
  std::erase_if(openGroups, isBehind);
  last = token;
  do --last;
  while (tree.tokens.all[last].isComment());
  gapBroken = false;
}

// -- comments behind code

// Those of lines that follow each other stand in one column, if they fit there.
std::string BobLayout::aligned() const {
  std::string out;
  size_t copied = 0;
  for (size_t begin = 0; begin < trailing.size();) {
    size_t end = begin + 1;
    while (end < trailing.size() && trailing[end].line == trailing[end - 1].line + 1) ++end;
    size_t widest = 0, longest = 0;
    for (size_t i = begin; i < end; ++i) widest = std::max(widest, trailing[i].column);
    for (size_t i = begin; i < end; ++i) longest = std::max(longest, widest + 2 + trailing[i].width);
    for (size_t i = begin; i < end; ++i) {
      out.append(text, copied, trailing[i].at - copied);
      copied = trailing[i].at;
      if (longest <= columns) out.append(widest - trailing[i].column, ' ');
    }
    begin = end;
  }
  return out.append(text, copied);
}
