// The player's memories: how much of each is in use, what lies in the image cache, and what was too much.
#pragma once

#include <QWidget>

#include "studio/memory/memorymeter.h"

class MemoryView : public QWidget {
 public:
  explicit MemoryView(const MemoryMeter& meter);

  QSize sizeHint() const override { return {360, 420}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const MemoryMeter& meter;
};
