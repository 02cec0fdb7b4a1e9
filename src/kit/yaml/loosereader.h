// Reads YAML for looseyaml.h: blocks by their indentation, flows by their brackets, and scalars of all styles.
#pragma once

#include "kit/yaml/looseyaml.h"

class LooseReader {
 public:
  explicit LooseReader(std::string_view text);

  LooseNode read();

 private:
  static constexpr int kMaxDepth = 700;  // of maps and lists; what lies deeper is a text

  struct Line {
    size_t begin, end;  // without its end
    size_t indent;      // spaces
    bool isBlank;       // or a comment alone
  };

  // -- where it stands: always in line `line`, at byte `at` of the text

  bool isAtEnd() const { return line >= lines.size(); }
  size_t lineEnd() const { return lines[line].end; }
  size_t column() const { return at - lines[line].begin; }
  char next() const { return at < lineEnd() ? text[at] : '\0'; }
  bool isNext(char c) const { return next() == c && at < lineEnd(); }
  size_t afterBlanks(size_t from, size_t end) const;
  void skipBlanks();    // in the line
  void goTo(size_t n);  // the first of that line and those after it that is not blank, at its indentation
  void nextLine() { goTo(line + 1); }
  bool isLineOver() const;  // but for a comment

  // -- blocks

  bool isDash() const;
  size_t keyEnd() const;             // where a key that begins here ends; npos if none does
  LooseNode blockNode(long around);  // `around`: the column of what it lies in, -1 for the document
  void readProperties(LooseNode& node);
  void readMap(LooseNode& node, size_t indent);
  void readList(LooseNode& node, size_t indent);
  LoosePair pair(size_t indent);
  LoosePair strayLine();
  LooseNode below(long around, bool takesList);
  LooseNode valueInLine(long around);

  // -- flows

  LooseNode flowNode(long around, bool isInMap);
  void readFlow(LooseNode& node, long around);
  void readFlowEntry(LooseNode& node, long around);
  bool skipInFlow(long around);  // false where the flow breaks off

  // -- scalars

  LooseNode plain(long around, bool isInFlow);
  LooseNode quoted(long around);
  LooseNode blockScalar(long around);
  size_t plainEnd(bool isInFlow) const;  // in the line, without blanks at its end
  size_t escape(LooseNode& node);
  bool foldInto(LooseNode& node, long around);
  void append(LooseNode& node, std::string_view part, size_t source);
  std::string_view rest(size_t end) const { return text.substr(at, end - at); }

  const std::string_view text;
  std::vector<Line> lines;
  size_t line = 0, at = 0;
  int depth = 0;
};
