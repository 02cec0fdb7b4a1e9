// The edges of a path, in the order in which a fill takes them up.
#pragma once

#include <memory>

#include "gfx/vector/hsedge.h"

class hsPath;

// Edges and the scratch for sorting lie in the object itself while there are few; then a fill allocates nothing.
class hsEdgeList {
 public:
  // The path's points times scale, a power of two, and its curves chopped where their direction in Y changes. With a
  // clip, edges are cut to its rows, and what lies beside it keeps only its winding.
  hsEdgeList(const hsPath& path, int32_t scale, const hsIntRect* clip);
  hsEdgeList(const hsEdgeList&) = delete;
  hsEdgeList& operator=(const hsEdgeList&) = delete;

  bool IsEmpty() const { return fCount == 0; }
  int32_t Count() const { return fCount; }
  // Links the edges by first row, then X, and returns the first. Equal ones keep no particular order.
  hsEdge* Sort();
  // The rows that the edges own.
  void GetRows(int32_t* top, int32_t* bottom) const;

 private:
  static constexpr int32_t kInlineCount = 64;

  void Build(const hsPath& path, int32_t scale, const hsIntRect* clip);
  void AddQuad(const hsPoint pts[3], const hsIntRect* clip);
  void AddCubic(const hsPoint pts[4], const hsIntRect* clip);
  void AddLine(hsPoint p0, hsPoint p1, const hsIntRect* clip);
  hsEdge* NextFree() { return fEdges + fCount; }

  hsEdge* fEdges = fInline;
  int32_t fCount = 0;
  hsEdge fInline[kInlineCount];
  std::unique_ptr<hsEdge[]> fMore;
};
