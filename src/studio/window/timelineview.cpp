#include "studio/window/timelineview.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "studio/window/look.h"

namespace {

constexpr size_t kMostShown = 500;  // the latest rows; the filter finds those before

QString textOf(std::string_view text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }

}  // namespace

TimelineView::TimelineView(const Timeline& t) : timeline(t), list(new QTreeWidget), filter(new QLineEdit) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  list->setHeaderLabels({"Time", "Kind", "What", "Cost"});
  list->setFrameStyle(0);
  list->setRootIsDecorated(false);
  list->setUniformRowHeights(true);
  list->setColumnWidth(0, 64);
  list->setColumnWidth(1, 54);
  list->setColumnWidth(2, 168);
  list->setAccessibleName("Timeline");
  filter->setPlaceholderText("Filter");
  filter->setTextMargins(6, 4, 6, 4);
  filter->setClearButtonEnabled(true);
  column->addWidget(list, 1);
  column->addWidget(filter);
  QObject::connect(filter, &QLineEdit::textChanged, this, [this] {
    shownEnd = 0;
    refresh();
  });
}

void TimelineView::refresh() {
  if (!isVisible() || shownEnd == timeline.end()) return;
  shownEnd = timeline.end();
  TimelineFilter wanted;
  wanted.text = filter->text().toStdString();
  const std::vector<uint64_t> numbers = timeline.rowsThat(wanted);
  list->clear();
  const size_t begin = numbers.size() > kMostShown ? numbers.size() - kMostShown : 0;
  QList<QTreeWidgetItem*> items;
  for (size_t i = begin; i < numbers.size(); ++i) {
    const TimelineRow& row = timeline.row(numbers[i]);
    auto* item = new QTreeWidgetItem({textOf(timelineTime(row.time)), textOf(timelineKindName(row.kind)),
                                      QString(2 * row.depth, ' ') + textOf(row.text), textOf(timelineCost(row.cost))});
    for (const int column : {0, 1, 3}) item->setForeground(column, look().faint);
    if (row.kind == TimelineKind::error) item->setForeground(2, look().error);
    item->setToolTip(2, textOf(row.text));
    item->setToolTip(3, textOf(timelineCost(row.cost)));
    items.push_back(item);
  }
  list->addTopLevelItems(items);
  list->scrollToBottom();
}
