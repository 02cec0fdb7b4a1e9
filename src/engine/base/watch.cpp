#include "engine/base/watch.h"

void tellDrawing(EngineObserver& observer, const Bounds& rect) {
  EngineNotes& notes = notesOf(observer);
  const Drawing drawing{notes.drawing, rect, notes.cost - notes.costAtDrawing};
  notes.costAtDrawing = notes.cost;
  if (const Telling told; told) told->drawn(drawing);
}

void tellCharacter(EngineObserver& observer, char c) {
  std::string& line = notesOf(observer).line;
  if (c != '\n') {
    line += c;
    return;
  }
  if (const Telling told; told) told->lineLogged(line);
  line.clear();
}
