// Editing in the studio: what the inspector and the hand change in the page's sources, undone, redone and saved.
#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QMessageBox>
#include <QTimer>

#include "studio/window/studiowindow.h"

// Null takes the attribute off the widget.
void StudioWindow::setValue(const std::string& attribute, const std::optional<std::string>& value) {
  const auto source = chosenSource();
  if (!source) return state->setText("Its source isn't known, so it can't be edited");
  if (source->sharedBy > 1) {
    const QString question =
        QString("%1 widgets are made of these lines, and all of them will change.").arg(source->sharedBy);
    if (QMessageBox::question(this, "Edit", question, QMessageBox::Ok | QMessageBox::Cancel) != QMessageBox::Ok) return;
  }
  edit([&] { value ? edits.setAttribute(*source, attribute, *value) : edits.removeAttribute(*source, attribute); });
}

std::optional<WidgetSource> StudioWindow::chosenSource() {
  const auto row = inspector->chosen();
  return row && inspector->sources() && !driver.isBusy() ? inspector->sources()->of(row->id) : std::nullopt;
}

// ---- by hand

// A hand is faster than the page: of the places that come while it is being built, the last counts.
void StudioWindow::drag(const Bounds& place, bool isOver) {
  if (!dragged) {
    const auto row = inspector->chosen();
    const auto source = chosenSource();
    if (!row || !source || place == row->bounds) return;
    dragged = Dragged{row->bounds, source->given, {}, ++drags, false, false};
    if (source->sharedBy > 1) state->setText(QString("%1 widgets share these lines").arg(source->sharedBy));
  }
  dragged->wanted = place;
  dragged->isOver = isOver;
  if (!dragged->isWaiting) QTimer::singleShot(0, this, [this] { followDrag(); });
  dragged->isWaiting = true;
}

void StudioWindow::followDrag() {
  if (!dragged) return;
  dragged->isWaiting = false;
  const Dragged now = *dragged;
  if (now.isOver) dragged.reset();
  place(now.shown, now.given, now.wanted, now.number);
}

// By arrows; what follows each other is one step to undo.
void StudioWindow::nudge(const Bounds& to) {
  const auto row = inspector->chosen();
  const auto source = chosenSource();
  if (!row || !source) return;
  if (nudgedPath != row->path) ++drags;
  nudgedPath = row->path;
  place(row->bounds, source->given, to, drags);
}

// Gives the chosen widget a rectangle that differs from its source's as `to` does from `shown` on the screen.
void StudioWindow::place(const Bounds& shown, const Bounds& given, const Bounds& to, uint32_t number) {
  const auto source = chosenSource();
  if (!source) return;
  const Bounds now{given.x + to.x - shown.x, given.y + to.y - shown.y, given.w + to.w - shown.w,
                   given.h + to.h - shown.h};
  edit([&] { edits.setBounds(*source, now, number); });
}

// The page is built with what the change makes of its sources, and goes on as after a save.
void StudioWindow::edit(const std::function<void()>& change) {
  try {
    change();
  } catch (const KitError& e) {
    return state->setText(QString::fromStdString(e.what()));
  }
  driver.reload();
}

bool StudioWindow::saveEdits() {
  try {
    edits.save();
  } catch (const KitError& e) {
    QMessageBox::warning(this, "The source can't be saved", QString::fromStdString(e.what()));
    return false;
  }
  showEdits();
  return true;
}

void StudioWindow::showEdits() {
  const bool isEdited = !edits.unsavedFiles().empty();
  setWindowModified(isEdited);
  saveAction->setEnabled(isEdited);
  const auto show = [](QAction* action, const QString& what, const std::string& name) {
    action->setEnabled(!name.empty());
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    action->setToolTip(QString("%1%2 (%3)").arg(what, name.empty() ? "" : ": " + QString::fromStdString(name), keys));
  };
  show(undoAction, "Undo", edits.undoName());
  show(redoAction, "Redo", edits.redoName());
}

// Whether what isn't saved has been saved, or may be given up.
bool StudioWindow::mayDropEdits() {
  if (edits.unsavedFiles().empty()) return true;
  const auto answer = QMessageBox::question(this, "Edited", "The source has been edited here and isn't saved.",
                                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
  if (answer == QMessageBox::Save) return saveEdits();
  return answer == QMessageBox::Discard;
}

// What runs, or stands, ends first.
void StudioWindow::closeEvent(QCloseEvent* event) {
  if (driver.isBusy()) {
    event->ignore();
    driver.stop();
    return QTimer::singleShot(0, this, [this] { close(); });
  }
  mayDropEdits() ? event->accept() : event->ignore();
}
