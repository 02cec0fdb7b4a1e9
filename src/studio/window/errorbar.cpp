#include "studio/window/errorbar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>
#include <filesystem>

#include "studio/window/look.h"

ErrorBar::ErrorBar() : text(new QLabel), next(new QToolButton) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(kGap + 6, 5, kGap, 5);
  text->setWordWrap(true);
  text->setTextFormat(Qt::RichText);
  next->setToolTip("Show the next error");
  row->addWidget(text, 1);
  row->addWidget(next);
  setCursor(Qt::PointingHandCursor);
  QObject::connect(next, &QToolButton::clicked, this, [this] { show((shown + 1) % messages.size()); });
  hide();
}

void ErrorBar::setMessages(const std::vector<KitMessage>& m) {
  messages = m;
  setVisible(!messages.empty());
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
