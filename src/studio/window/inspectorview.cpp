#include "studio/window/inspectorview.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "studio/inspector/unseen.h"
#include "studio/window/look.h"

namespace {

constexpr int kValueColumn = 1, kPlaceColumn = 2;

QString flagsOf(const TreeRow& row) {
  QStringList flags;
  if (row.focused) flags << "focus";
  if (row.hidden) flags << "hidden";
  if (row.notSeen) flags << "not seen";
  return flags.join(", ");
}

QTreeWidget* newTree(const QStringList& heads) {
  auto* tree = new QTreeWidget;
  tree->setHeaderLabels(heads);
  tree->setFrameStyle(0);
  tree->setUniformRowHeights(true);
  tree->header()->setStretchLastSection(true);
  return tree;
}

// Edits values, and nothing else, by what suits them. The model stays as it is: the page is built with the new value,
// and then it shows.
class ValueDelegate : public QStyledItemDelegate {
 public:
  using LineOf = std::function<const AttributeLine*(const QModelIndex&)>;
  using Edited = std::function<void(const AttributeLine&, const std::string& value)>;
  ValueDelegate(QObject* parent, LineOf l, Edited e)
      : QStyledItemDelegate(parent), lineOf(std::move(l)), edited(std::move(e)) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const override {
    const AttributeLine* line = index.column() == kValueColumn ? lineOf(index) : nullptr;
    if (!line || line->editBy == EditBy::nothing) return nullptr;
    QStringList choices;
    if (line->editBy == EditBy::flag)
      choices << "true"
              << "false";
    for (const std::string& choice : line->choices) choices << QString::fromStdString(choice);
    if (choices.isEmpty()) return new QLineEdit(parent);
    auto* box = new QComboBox(parent);
    box->addItems(choices);
    return box;
  }
  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    const QString text = QString::fromStdString(lineOf(index)->value);
    if (auto* box = dynamic_cast<QComboBox*>(editor))
      box->setCurrentText(text);
    else if (auto* field = dynamic_cast<QLineEdit*>(editor))
      field->setText(text);
  }
  void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
    const auto* box = dynamic_cast<QComboBox*>(editor);
    const auto* field = dynamic_cast<QLineEdit*>(editor);
    const std::string text = (box ? box->currentText() : field ? field->text() : QString()).toStdString();
    const AttributeLine line = *lineOf(index);
    if (text != line.value) edited(line, text);
  }

 private:
  const LineOf lineOf;
  const Edited edited;
};

bool looksTheSame(const TreeRow& a, const TreeRow& b) {
  return a.id == b.id && a.path == b.path && a.hidden == b.hidden && a.focused == b.focused && a.notSeen == b.notSeen &&
         a.bounds.x == b.bounds.x && a.bounds.y == b.bounds.y && a.bounds.w == b.bounds.w && a.bounds.h == b.bounds.h;
}

}  // namespace

InspectorView::InspectorView()
    : tree(newTree({"Widget", "Kind", "State"})),
      attributes(newTree({"Attribute", "Value", "From"})),
      unseen(new QLabel) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  auto* parts = new QSplitter(Qt::Vertical);
  parts->setHandleWidth(1);
  auto* below = new QWidget;
  auto* belowColumn = new QVBoxLayout(below);
  belowColumn->setContentsMargins(0, 0, 0, 0);
  belowColumn->setSpacing(0);
  unseen->setWordWrap(true);
  unseen->setMargin(kGap);
  belowColumn->addWidget(unseen);
  belowColumn->addWidget(attributes, 1);
  parts->addWidget(tree);
  parts->addWidget(below);
  parts->setSizes({300, 300});
  column->addWidget(parts);

  tree->setColumnWidth(0, 150);
  tree->setColumnWidth(1, 90);
  attributes->setColumnWidth(0, 130);
  attributes->setColumnWidth(1, 120);
  attributes->setRootIsDecorated(false);
  tree->setAccessibleName("Widgets");
  attributes->setAccessibleName("Attributes");
  unseen->hide();

  QObject::connect(tree, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (isFilling || !item) return;
    path = rows[size_t(item->data(0, Qt::UserRole).toULongLong())].path;
    showAttributes();
    if (choiceChanged) choiceChanged();
  });
  attributes->setEditTriggers(QAbstractItemView::NoEditTriggers);
  const auto lineOf = [this](const QModelIndex& index) -> const AttributeLine* {
    const size_t n = size_t(index.siblingAtColumn(0).data(Qt::UserRole).toULongLong());
    return n < lines.size() ? &lines[n] : nullptr;
  };
  // Once the editor has gone: the page's new attributes come in place of those that it lies over.
  const auto edited = [this](const AttributeLine& line, const std::string& value) {
    QTimer::singleShot(0, this, [this, name = line.name, value] {
      if (valueEdited) valueEdited(name, value);
    });
  };
  attributes->setItemDelegate(new ValueDelegate(attributes, lineOf, edited));
  QObject::connect(attributes, &QTreeWidget::itemDoubleClicked, this,
                   [this](QTreeWidgetItem*, int column) { column == kPlaceColumn ? openCurrent() : editCurrent(); });
  addAttributeActions();
}

// What can be done with an attribute, in the list's own menu too.
void InspectorView::addAttributeActions() {
  const auto add = [&](const QString& text, const char* keys, auto work) {
    auto* action = new QAction(text, attributes);
    action->setShortcut(QKeySequence(keys));
    action->setShortcutContext(Qt::WidgetShortcut);
    QObject::connect(action, &QAction::triggered, this, work);
    attributes->addAction(action);
  };
  add("Edit the value", "F2", [this] { editCurrent(); });
  add("Back to the default", "Del", [this] {
    if (const AttributeLine* line = currentLine(); line && valueRemoved) valueRemoved(std::string(line->name));
  });
  add("Open where it was written", "Return", [this] { openCurrent(); });
  attributes->setContextMenuPolicy(Qt::ActionsContextMenu);
}

const AttributeLine* InspectorView::currentLine() const {
  const QTreeWidgetItem* item = attributes->currentItem();
  return item ? &lines[size_t(item->data(0, Qt::UserRole).toULongLong())] : nullptr;
}

void InspectorView::editCurrent() {
  const AttributeLine* line = currentLine();
  if (!line) return;
  if (line->editBy != EditBy::nothing) return attributes->editItem(attributes->currentItem(), kValueColumn);
  if (editRefused) editRefused(line->name + " can't be edited here: " + line->whyNotEdited);
}

void InspectorView::openCurrent() {
  const AttributeLine* line = currentLine();
  if (line && line->place && placeClicked) placeClicked(*line->place);
}

void InspectorView::setRun(PageRun* r) {
  run = r;
  places = run ? std::make_unique<WidgetSources>(*run) : nullptr;
  rows.clear();
  tree->clear();
  refresh();
}

void InspectorView::refresh() {
  if (!run) return;
  std::vector<TreeRow> now = widgetTree(run->engine());
  const bool isSame = std::equal(rows.begin(), rows.end(), now.begin(), now.end(), looksTheSame);
  rows = std::move(now);
  if (!isSame) showTree();
  showAttributes();
}

// The lists keep the colours that they were filled with.
void InspectorView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange && run) {
    showTree();
    attributes->clear();
    lines.clear();
    showAttributes();
  }
  QWidget::changeEvent(event);
}

std::optional<TreeRow> InspectorView::chosen() const {
  const auto row = path.empty() ? std::nullopt : findPath(rows, path);
  return row ? std::optional(rows[*row]) : std::nullopt;
}

void InspectorView::choose(WidgetId id) {
  const auto row = findRow(rows, id);
  if (!row) return;
  path = rows[*row].path;
  showTree();
  showAttributes();
  if (choiceChanged) choiceChanged();
}

void InspectorView::showTree() {
  isFilling = true;
  tree->clear();
  std::vector<QTreeWidgetItem*> items;
  const auto wanted = path.empty() ? std::nullopt : findPath(rows, path);
  for (size_t i = 0; i < rows.size(); ++i) {
    const TreeRow& row = rows[i];
    const std::string_view kind = widgetKindName(row.kind);
    auto* item = new QTreeWidgetItem({QString::fromStdString(row.label),
                                      kind.empty() ? "box" : QString::fromLatin1(kind.data(), qsizetype(kind.size())),
                                      flagsOf(row)});
    item->setData(0, Qt::UserRole, qulonglong(i));
    const QColor color = row.notSeen ? look().warning : row.hidden ? look().faint : look().text;
    for (int column = 0; column < 3; ++column) item->setForeground(column, column == 0 ? color : look().faint);
    if (row.focused) item->setForeground(2, look().accent);
    items.push_back(item);
    if (row.parent) {
      items[*row.parent]->addChild(item);
    } else {
      tree->addTopLevelItem(item);
    }
  }
  tree->expandAll();
  if (wanted) tree->setCurrentItem(items[*wanted]);
  isFilling = false;
}

void InspectorView::showAttributes() {
  const auto row = chosen();
  std::vector<AttributeLine> now =
      row && places ? attributeLines(*run, *places, row->id) : std::vector<AttributeLine>();
  QStringList reasons;
  if (row)
    for (const UnseenSentence& sentence : unseenSentences(run->engine(), row->id))
      reasons << QString::fromStdString(sentence.text).toHtmlEscaped();
  unseen->setVisible(!reasons.isEmpty());
  unseen->setText(QString("<b style='color:%1'>Not to be seen:</b> %2").arg(look().warning.name(), reasons.join("; ")));

  // Filled anew only when something differs, so that what is selected stays so.
  const auto saysTheSame = [](const AttributeLine& a, const AttributeLine& b) {
    return a.name == b.name && a.value == b.value && a.from == b.from;
  };
  const bool isSame = std::equal(lines.begin(), lines.end(), now.begin(), now.end(), saysTheSame);
  const std::string current = currentLine() ? currentLine()->name : "";
  lines = std::move(now);
  if (isSame) return;
  attributes->clear();
  for (size_t i = 0; i < lines.size(); ++i) {
    const AttributeLine& line = lines[i];
    auto* item = new QTreeWidgetItem(
        {QString::fromStdString(line.name), QString::fromStdString(line.value), QString::fromStdString(line.from)});
    item->setData(0, Qt::UserRole, qulonglong(i));
    if (line.editBy != EditBy::nothing) item->setFlags(item->flags() | Qt::ItemIsEditable);
    item->setForeground(2, line.origin == ValueOrigin::refused   ? look().error
                           : line.origin == ValueOrigin::changed ? look().accent
                                                                 : look().faint);
    if (line.origin == ValueOrigin::byDefault)
      for (int column = 0; column < 2; ++column) item->setForeground(column, look().faint);
    QString tip = QString::fromStdString(line.help);
    if (!line.range.empty()) tip += "\n" + QString::fromStdString(line.range);
    for (const std::string& use : line.uses) tip += "\n" + QString::fromStdString(use);
    if (!line.whyNotEdited.empty()) tip += "\nNot edited here: " + QString::fromStdString(line.whyNotEdited);
    for (int column = 0; column < 3; ++column) item->setToolTip(column, tip);
    attributes->addTopLevelItem(item);
    if (line.name == current) attributes->setCurrentItem(item, kValueColumn);
  }
}
