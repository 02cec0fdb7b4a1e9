#include "studio/window/debuggerview.h"

#include <QComboBox>
#include <QEventLoop>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>

#include "kit/files.h"
#include "studio/window/icons.h"
#include "studio/window/look.h"
#include "studio/window/sourceview.h"

namespace {

constexpr size_t kMostMembers = 200;  // of a value, as unfolded here

// What an item of the variables knows of itself.
enum Role { kNumber = Qt::UserRole, kMembers, kOwner, kIsUnfolded };

QTreeWidget* newList(const QStringList& heads, const char* name) {
  auto* list = new QTreeWidget;
  list->setHeaderLabels(heads);
  list->setFrameStyle(0);
  list->setUniformRowHeights(true);
  list->setAccessibleName(name);
  return list;
}

QString textOf(const std::string& text) { return QString::fromLatin1(text.data(), qsizetype(text.size())); }

const char* groupName(const BobVariableGroup& group) {
  switch (group.kind) {
    case BobVariableGroup::block: return "Locals";
    case BobVariableGroup::arguments: return "Arguments";
    case BobVariableGroup::around: return "Around";
    case BobVariableGroup::globals: return "Globals";
  }
  return "";
}

QString reasonOf(const BobStop& stop) {
  switch (stop.reason) {
    case BobStop::error: return "Stopped at an error: " + textOf(stop.text);
    case BobStop::breakpoint: return "Stopped at a breakpoint";
    default: return "Stopped";
  }
}

}  // namespace

DebuggerView::DebuggerView(DebugDesk& d)
    : desk(d),
      files(new QComboBox),
      source(new SourceView),
      calls(newList({"Call", "Line"}, "Calls")),
      variables(newList({"Variable", "Value"}, "Variables")),
      why(new QLabel) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(newTools());
  why->setMargin(kGap);
  why->setWordWrap(true);
  why->hide();
  column->addWidget(why);
  column->addWidget(files);
  auto* parts = new QSplitter(Qt::Vertical);
  parts->setHandleWidth(1);
  parts->addWidget(source);
  parts->addWidget(calls);
  parts->addWidget(variables);
  parts->setSizes({360, 110, 220});
  column->addWidget(parts, 1);
  calls->setRootIsDecorated(false);
  calls->setColumnWidth(0, 230);
  variables->setColumnWidth(0, 150);
  variables->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  files->setToolTip("The sources with scripts");

  source->lineClicked = [this](int line) {
    desk.toggle(shownFile, line);
    showMarks();
  };
  source->menuWanted = [this](int line, const QPoint& global) { openMenu(line, global); };
  QObject::connect(files, &QComboBox::activated, this,
                   [this](int index) { showFile(files->itemData(index).toString().toStdString()); });
  QObject::connect(calls, &QTreeWidget::currentItemChanged, this, [this] { showVariables(); });
  QObject::connect(variables, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { unfold(item); });
  QObject::connect(variables, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item) { setVariable(item); });
}

DebuggerView::~DebuggerView() { goOn(BobResume::run); }

QToolBar* DebuggerView::newTools() {
  auto* bar = new QToolBar;
  bar->setIconSize(QSize(20, 20));
  const auto add = [&](const QString& text, const char* keys, Sign sign, std::function<void(bool)> work) {
    QAction* action = bar->addAction(signIcon(sign), text);
    action->setShortcut(QKeySequence(keys));
    action->setToolTip(QString("%1 (%2)").arg(text, action->shortcut().toString(QKeySequence::NativeText)));
    QObject::connect(action, &QAction::triggered, this, std::move(work));
    return action;
  };
  standingTools << add("Go on", "F8", Sign::play, [this](bool) { goOn(BobResume::run); });
  pauseTool = add("Stop where the next script is", "F6", Sign::pause, [this](bool) { desk.pause(); });
  standingTools << add("One line on, over calls", "F10", Sign::stepOver, [this](bool) { goOn(BobResume::stepOver); })
                << add("One line on, into calls", "F11", Sign::stepInto, [this](bool) { goOn(BobResume::stepInto); })
                << add("Out of this call", "Shift+F11", Sign::stepOut, [this](bool) { goOn(BobResume::stepOut); });
  for (QAction* action : standingTools) action->setEnabled(false);
  bar->addSeparator();
  add("Breakpoint in the line, or none", "F9", Sign::record, [this](bool) {
    if (shownFile.empty()) return;
    desk.toggle(shownFile, source->lineUnderCursor());
    showMarks();
  });
  errorsTool = add("Stop at errors", "Ctrl+Shift+E", Sign::error, [this](bool on) { desk.setStopsAtErrors(on); });
  errorsTool->setCheckable(true);
  return bar;
}

// ---- sources

void DebuggerView::refresh() {
  if (!isVisible() || isStanding()) return;
  const std::vector<std::string> all = desk.filesWithCode();
  QStringList names;
  for (const std::string& file : all) names << QString::fromStdString(file);
  QStringList shown;
  for (int i = 0; i < files->count(); ++i) shown << files->itemData(i).toString();
  if (names != shown) {
    files->clear();
    for (const QString& name : names) files->addItem(name.mid(name.lastIndexOf('/') + 1), name);
  }
  showFile(std::find(all.begin(), all.end(), shownFile) != all.end() ? shownFile : all.empty() ? "" : all.front());
}

void DebuggerView::showFile(const std::string& file) {
  std::string text;
  const std::string* kept = edited ? edited(file) : nullptr;
  if (kept) {
    text = *kept;
  } else if (!file.empty()) {
    try {
      const std::vector<uint8_t> bytes = readFile(file);
      text.assign(bytes.begin(), bytes.end());
    } catch (const KitError& e) {
      text = e.what();
    }
  }
  const QString wantedText = QString::fromUtf8(text.data(), qsizetype(text.size()));
  if (file != shownFile || source->toPlainText() != wantedText) source->setText(wantedText);
  shownFile = file;
  files->setCurrentIndex(files->findData(QString::fromStdString(file)));
  showMarks();
}

void DebuggerView::showMarks() {
  std::map<int, LineMark> marks;
  if (!shownFile.empty())
    for (const WantedBreakpoint& each : desk.breakpointsOf(shownFile))
      marks[each.line > 0 ? each.line : each.wanted.line] = each.line > 0 ? LineMark::breakpoint : LineMark::elsewhere;
  source->setMarks(std::move(marks));
}

void DebuggerView::openMenu(int line, const QPoint& global) {
  const std::vector<WantedBreakpoint> all = desk.breakpointsOf(shownFile);
  const auto here = std::find_if(all.begin(), all.end(), [&](const WantedBreakpoint& each) {
    return each.line == line || (each.line == 0 && each.wanted.line == line);
  });
  if (here == all.end()) return;
  BobBreakpoint breakpoint = here->wanted;
  const auto ask = [&](const QString& what, std::string* text) {
    bool isGiven = false;
    const QString given = QInputDialog::getText(this, "Breakpoint", what, QLineEdit::Normal, textOf(*text), &isGiven);
    if (isGiven) *text = given.toLatin1().toStdString();
    if (isGiven) desk.change(shownFile, breakpoint);
  };
  QMenu menu;
  menu.addAction("When\u2026", [&] { ask("Stop where this is true; empty for always", &breakpoint.condition); });
  menu.addAction("Log\u2026", [&] { ask("Log this and go on; {expression} is its value", &breakpoint.message); });
  menu.addAction("Remove", [&] { desk.toggle(shownFile, line); });
  menu.exec(global);
  showMarks();
}

// ---- while the page stands

BobResume DebuggerView::stand(const BobStop& stop) {
  if (wanted) wanted();
  QEventLoop waiting;
  loop = &waiting;
  answer = BobResume::run;
  for (QAction* action : standingTools) action->setEnabled(true);
  pauseTool->setEnabled(false);
  why->setText(QString("<b style='color:%1'>%2</b>").arg(look().warning.name(), reasonOf(stop).toHtmlEscaped()));
  why->show();
  showCalls();
  waiting.exec();
  loop = nullptr;
  for (QAction* action : standingTools) action->setEnabled(false);
  pauseTool->setEnabled(true);
  why->hide();
  calls->clear();
  variables->clear();
  source->setCurrentLine(0);
  return answer;
}

void DebuggerView::goOn(BobResume how) {
  if (!loop) return;
  answer = how;
  loop->quit();
}

void DebuggerView::showCalls() {
  isFilling = true;
  calls->clear();
  for (const BobFrameView& call : desk.standing()->frames()) {
    const std::string file = std::filesystem::path(call.file).filename().string();
    auto* item = new QTreeWidgetItem(
        {textOf(call.function.empty() ? "(statement)" : call.function),
         call.line > 0 ? QString::fromStdString(file) + ":" + QString::number(call.line) : QString()});
    item->setForeground(1, look().faint);
    calls->addTopLevelItem(item);
  }
  isFilling = false;
  calls->setCurrentItem(calls->topLevelItem(0));
}

size_t DebuggerView::frame() const { return size_t(std::max(calls->indexOfTopLevelItem(calls->currentItem()), 0)); }

void DebuggerView::showVariables() {
  BobDebugger* debugger = desk.standing();
  if (isFilling || !debugger) return;
  const BobFrameView call = debugger->frames().at(frame());
  if (!call.file.empty()) showFile(call.file);
  source->setCurrentLine(call.file.empty() ? 0 : call.line);
  isFilling = true;
  variables->clear();
  for (const BobVariableGroup& group : debugger->variables(frame())) {
    auto* heading = new QTreeWidgetItem({groupName(group)});
    heading->setForeground(0, look().faint);
    heading->setData(0, kIsUnfolded, true);
    variables->addTopLevelItem(heading);
    for (const BobVariableView& variable : group.variables) addVariable(heading, variable);
    heading->setExpanded(group.kind != BobVariableGroup::globals);
  }
  isFilling = false;
}

// `to` is a group or the value that it is a member of.
void DebuggerView::addVariable(QTreeWidgetItem* to, const BobVariableView& view) {
  auto* item = new QTreeWidgetItem({textOf(view.name), textOf(view.text)});
  item->setToolTip(1, textOf(view.type));
  item->setData(0, kNumber, qulonglong(view.number));
  item->setData(0, kMembers, qulonglong(view.members));
  item->setData(0, kOwner, to->data(0, kNumber));
  if (view.members > 0) item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
  item->setFlags(item->flags() | Qt::ItemIsEditable);
  to->addChild(item);
}

void DebuggerView::unfold(QTreeWidgetItem* item) {
  BobDebugger* debugger = desk.standing();
  if (!debugger || item->data(0, kIsUnfolded).toBool()) return;
  isFilling = true;
  item->setData(0, kIsUnfolded, true);
  for (const BobVariableView& member : debugger->members(size_t(item->data(0, kNumber).toULongLong()), 0, kMostMembers))
    addVariable(item, member);
  const qulonglong all = item->data(0, kMembers).toULongLong();
  if (all > kMostMembers) item->addChild(new QTreeWidgetItem({QString("%L1 more").arg(all - kMostMembers)}));
  isFilling = false;
}

// What was typed is an expression; the item shows what came of it, or again what it was.
void DebuggerView::setVariable(QTreeWidgetItem* item) {
  BobDebugger* debugger = desk.standing();
  if (isFilling || !debugger || !item->parent()) return;
  const std::string name = item->text(0).toLatin1().toStdString(), text = item->text(1).toLatin1().toStdString();
  const size_t owner = size_t(item->data(0, kOwner).toULongLong());
  std::string error;
  const auto view = owner > 0 ? debugger->setMember(owner, name, frame(), text, &error)
                              : debugger->evaluate(frame(), name + " = (" + text + ")", &error);
  if (!view) why->setText(textOf(error).toHtmlEscaped());
  QMetaObject::invokeMethod(
      this, [this] { showVariables(); }, Qt::QueuedConnection);
}

bool DebuggerView::evaluate(const QString& text, QString* answered) {
  std::string error;
  const auto view = desk.standing()->evaluate(frame(), text.toLatin1().toStdString(), &error);
  *answered = textOf(view ? view->text : error);
  if (view)
    QMetaObject::invokeMethod(
        this, [this] { showVariables(); }, Qt::QueuedConnection);
  return view.has_value();
}
