// Filling of a path enlarged by a whole factor, into a blitter of any kind.
#pragma once

#include <algorithm>

#include "gfx/vector/hspath.h"
#include "gfx/vector/hsscan_clips.h"
#include "gfx/vector/hsscan_edgelist.h"
#include "gfx/vector/hsscan_walk.h"

// As HSScan::FillPath, of the path's points times scale. Blitter is the most exact type known, for direct calls.
template <typename Blitter>
void hsFillScaledPath(const hsPath& path, int32_t scale, const hsRegion* clip, Blitter* blitter) {
  if (path.IsEmpty() || (clip && clip->IsEmpty())) return;
  hsEdgeList edges(path, scale, clip ? &clip->Bounds() : nullptr);
  if (edges.IsEmpty()) return;
  const int32_t mask = path.FillType() == hsPath::kEvenOddFill ? 1 : -1;
  int32_t top, bottom;
  edges.GetRows(&top, &bottom);
  hsEdge* const first = edges.Sort();
  // The edges were cut to the clip's rows, so none starts above it.
  if (clip) bottom = std::min(bottom, clip->Bounds().fBottom);
  hsWithSpans(clip, blitter, [&](const auto& spans) { hsWalkEdges(first, edges.Count(), top, bottom, mask, spans); });
}
