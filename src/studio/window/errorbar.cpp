#include "studio/window/errorbar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>
#include <filesystem>

#include "studio/window/look.h"

namespace {

std::string joined(const std::vector<KitMessage>& messages) {
  std::string all;
  for (const KitMessage& message : messages) all += message.whole() + "\n";
  return all;
}

}  // namespace

ErrorBar::ErrorBar() : text(new QLabel), next(new QToolButton), closing(new QToolButton) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(kGap + 6, 5, kGap, 5);
  text->setWordWrap(true);
  text->setTextFormat(Qt::RichText);
  next->setToolTip("Show the next error");
  closing->setText("\u2715");
  closing->setToolTip("Close, until something else is wrong");
  row->addWidget(text, 1);
  row->addWidget(next);
  row->addWidget(closing);
  setCursor(Qt::PointingHandCursor);
  QObject::connect(next, &QToolButton::clicked, this, [this] { show((shown + 1) % messages.size()); });
  QObject::connect(closing, &QToolButton::clicked, this, [this] { close(); });
  hide();
}

void ErrorBar::close() {
  closed = joined(messages);
  hide();
}

void ErrorBar::setMessages(const std::vector<KitMessage>& m) {
  messages = m;
  if (joined(messages) != closed) closed.clear();
  setVisible(!messages.empty() && closed.empty());
  if (!messages.empty()) show(0);
}

void ErrorBar::show(size_t index) {
  shown = index;
  const KitMessage& message = messages[index];
  const Look& l = look();
  QString place = QString::fromStdString(std::filesystem::path(message.file).filename().string());
  if (message.line > 0) place += ":" + QString::number(message.line);
  const QString what = QString::fromStdString(message.text).toHtmlEscaped();
  text->setText(place.isEmpty() ? QString("<span style='color:%1'>%2</span>").arg(l.error.name(), what)
                                : QString("<b style='color:%1'>%2</b>&nbsp; <span style='color:%3'>%4</span>")
                                      .arg(l.error.name(), place.toHtmlEscaped(), l.text.name(), what));
  setToolTip(message.file.empty() ? QString() : "Click to open the place in your editor");
  next->setVisible(messages.size() > 1);
  next->setText(QString("%1 of %2").arg(index + 1).arg(messages.size()));
}

void ErrorBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), look().errorPanel);
  painter.fillRect(QRect(0, 0, 4, height()), look().error);
}

void ErrorBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && !messages.empty() && clicked) clicked(messages[shown]);
}
