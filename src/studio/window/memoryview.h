// How full the player's memories are, and were; and what lies in the image cache.
#pragma once

#include <QWidget>

#include "studio/memory/memorymeter.h"

class MemoryView : public QWidget {
 public:
  explicit MemoryView(const MemoryMeter& meter);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const MemoryMeter& meter;
  int needed = 0;  // pixels of height, as painted last
};
