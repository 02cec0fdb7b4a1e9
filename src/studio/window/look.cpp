#include "studio/window/look.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>

namespace {

const Look kLight{QColor("#F3F4F6"), QColor("#FFFFFF"), QColor("#D5D8DE"), QColor("#D0D4DB"),
                  QColor("#1B1F27"), QColor("#6B7280"), QColor("#2563EB"), QColor("#FFFFFF"),
                  QColor("#B42318"), QColor("#FDECEA"), QColor("#92580A"), QColor("#F2994A")};
const Look kDark{QColor("#1C1F26"), QColor("#15181E"), QColor("#0E1014"), QColor("#343A46"),
                 QColor("#E5E7EB"), QColor("#949CAB"), QColor("#5B93F5"), QColor("#0B1220"),
                 QColor("#FF8A80"), QColor("#3A1F1F"), QColor("#E8B45A"), QColor("#F2994A")};

const Look* current = &kLight;

QColor mixed(const QColor& a, const QColor& b, double share) {
  const auto part = [&](int x, int y) { return int(x * share + y * (1 - share)); };
  return QColor(part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue()));
}

QString styleSheet(const Look& l) {
  const QColor tint = mixed(l.accent, l.window, 0.22);
  return QString(R"(
    QToolBar { background: %1; border: none; border-bottom: 1px solid %3; spacing: 2px; padding: 4px 6px; }
    QToolBar::separator { background: %3; width: 1px; margin: 5px 6px; }
    QToolButton { border: none; border-radius: 5px; padding: 5px; }
    QToolButton:hover { background: %3; }
    QToolButton:checked { background: %8; }
    QToolButton::menu-indicator { image: none; }
    QStatusBar { border-top: 1px solid %3; }
    QStatusBar QLabel { color: %7; padding: 2px 6px; }
    QScrollArea#surround, QScrollArea#surround > QWidget { background: %9; }
    QSplitter::handle { background: %3; }
    QTabWidget::pane { border: none; border-top: 1px solid %3; }
    QTabBar { qproperty-drawBase: 0; }
    QTabBar::tab { padding: 7px 14px; border: none; color: %7; background: transparent; }
    QTabBar::tab:selected { color: %4; border-bottom: 2px solid %5; }
    QTreeView, QPlainTextEdit, QLineEdit { background: %2; border: none; selection-background-color: %5;
      selection-color: %6; }
    QTreeView::item { padding: 2px 0; }
    QHeaderView::section { background: %1; color: %7; border: none; border-bottom: 1px solid %3; padding: 4px 6px; }
    QToolTip { background: %2; color: %4; border: 1px solid %3; padding: 4px; }
  )")
      .arg(l.window.name(), l.panel.name(), l.edge.name(), l.text.name(), l.accent.name(), l.onAccent.name(),
           l.faint.name(), tint.name(), l.surround.name());
}

}  // namespace

const Look& look() { return *current; }

bool lookIsDark() { return current == &kDark; }

bool desktopIsDark() { return QPalette().color(QPalette::Window).lightness() < 128; }

void applyLook(QApplication& application, bool dark) {
  current = dark ? &kDark : &kLight;
  const Look& l = *current;
  QPalette palette;
  palette.setColor(QPalette::Window, l.window);
  palette.setColor(QPalette::Base, l.panel);
  palette.setColor(QPalette::AlternateBase, l.window);
  palette.setColor(QPalette::Button, l.window);
  palette.setColor(QPalette::ToolTipBase, l.panel);
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(role, l.text);
  palette.setColor(QPalette::PlaceholderText, l.faint);
  palette.setColor(QPalette::Highlight, l.accent);
  palette.setColor(QPalette::HighlightedText, l.onAccent);
  palette.setColor(QPalette::Link, l.accent);
  palette.setColor(QPalette::Mid, l.edge);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, l.faint);
  QApplication::setStyle("Fusion");
  application.setPalette(palette);
  application.setStyleSheet(styleSheet(l));
}

QFont fixedFont() {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(QApplication::font().pointSizeF());
  return font;
}
