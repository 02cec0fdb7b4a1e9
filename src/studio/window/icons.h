// The signs on the studio's buttons, drawn by the program so that they are sharp at every scale and follow the look.
#pragma once

#include <QIcon>

enum class Sign {
  reload,
  restart,
  pause,
  play,
  step,
  stop,
  record,
  picture,
  save,
  undo,
  redo,
  pick,
  focus,
  grid,
  safe,
  zoomIn,
  zoomOut,
  fit,
  stepOver,
  stepInto,
  stepOut,
  error
};

QIcon signIcon(Sign sign);
