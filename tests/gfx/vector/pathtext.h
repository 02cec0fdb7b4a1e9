// A path as text and back, for tests: verbs M L Q C Z with their points.
#pragma once

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "gfx/vector/hspath.h"
#include "gfx/vector/hspathiter.h"

// In whole units, so "L 3 4" is LineTo(3.0, 4.0).
inline void Build(const std::string& text, hsPath* path) {
  std::istringstream in(text);
  const auto point = [&in] {
    double x = 0, y = 0;
    in >> x >> y;
    return hsPoint{hsScalar(x * 65536), hsScalar(y * 65536)};
  };
  for (char verb; in >> verb;) {
    const hsPoint a = verb == 'Z' ? hsPoint{} : point(), b = verb == 'Q' || verb == 'C' ? point() : a;
    if (verb == 'M') path->MoveTo(a);
    if (verb == 'L') path->LineTo(a);
    if (verb == 'Q') path->QuadTo(a, b);
    if (verb == 'C') path->CurveTo(a, b, point());
    if (verb == 'Z') path->Close();
  }
}

inline hsPath PathOf(const std::string& text) {
  hsPath path;
  Build(text, &path);
  return path;
}

inline std::string TextOf(const std::vector<uint8_t>& verbs, const hsPoint* points) {
  std::ostringstream out;
  for (uint8_t verb : verbs) {
    out << (out.tellp() > 0 ? " " : "") << "DMLQCZ"[verb];
    for (int32_t left = hsPointsOfVerb(verb); left > 0; --left, ++points)
      out << ' ' << points->fX / 65536.0 << ' ' << points->fY / 65536.0;
  }
  return out.str();
}

// What is stored, read from the flat form.
inline std::string TextOf(const hsPath& path) {
  std::vector<char> flat(size_t(path.Flatten(nullptr)));
  path.Flatten(flat.data());
  int32_t counts[2];
  std::memcpy(counts, flat.data(), sizeof counts);
  std::vector<hsPoint> points(size_t(counts[0]) + 1);
  std::memcpy(points.data(), flat.data() + 8, size_t(counts[0]) * sizeof(hsPoint));
  const char* verbs = flat.data() + 8 + size_t(counts[0]) * sizeof(hsPoint);
  return TextOf(std::vector<uint8_t>(verbs, verbs + counts[1]), points.data());
}

// What the iterator returns, without the repeated start points.
inline std::string IteratedText(const hsPath& path, bool forceClose) {
  std::vector<uint8_t> verbs;
  std::vector<hsPoint> points;
  hsPathIter iter(path, forceClose);
  hsPoint pts[4];
  for (hsPath::Verb verb; (verb = iter.Next(pts)) != hsPath::kDoneVerb;) {
    verbs.push_back(verb);
    const hsPoint* stored = verb == hsPath::kMoveVerb ? pts : pts + 1;
    points.insert(points.end(), stored, stored + hsPointsOfVerb(verb));
  }
  if (!iter.IsDone()) return "goes on after its end";
  return TextOf(verbs, points.data());
}
