// What happens on the page, as it happens, with what it costs on the player.
#pragma once

#include <QWidget>

#include "studio/timeline/timeline.h"

class QLineEdit;
class QTreeWidget;

class TimelineView : public QWidget {
 public:
  explicit TimelineView(const Timeline& timeline);

  void refresh();  // does nothing while it isn't to be seen

 private:
  const Timeline& timeline;
  QTreeWidget* list;
  QLineEdit* filter;
  uint64_t shownEnd = 0;
};
