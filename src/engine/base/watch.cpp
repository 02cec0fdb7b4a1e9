#include "engine/base/watch.h"

void reportDrawing(EngineObserver& observer, const Bounds& rect) {
  EngineNotes& notes = notesOf(observer);
  const Drawing drawing{notes.drawing, rect, notes.cost - notes.costAtDrawing};
  notes.costAtDrawing = notes.cost;
  if (const ObserverReport report; report) report->drawn(drawing);
}

void reportCharacter(EngineObserver& observer, char c) {
  std::string& line = notesOf(observer).line;
  if (c != '\n') {
    line += c;
    return;
  }
  if (const ObserverReport report; report) report->lineLogged(line);
  line.clear();
}
