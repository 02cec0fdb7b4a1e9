// The widgets of the page as a tree and, of the chosen one, all that can be said: why it is not to be seen, and each
// attribute with where its value came from.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "studio/inspector/attributelines.h"
#include "studio/inspector/widgettree.h"

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

class InspectorView : public QWidget {
 public:
  InspectorView();

  // Another run, or none; what was chosen is found again by its path.
  void setRun(PageRun* run);
  // The page may have changed.
  void refresh();

  void choose(WidgetId id);
  std::optional<TreeRow> chosen() const;
  WidgetSources* sources() { return places.get(); }

  std::function<void()> choiceChanged;
  std::function<void(const YamlPlace& place)> placeClicked;
  // Somebody has given an attribute of the chosen widget another value.
  std::function<void(const std::string& attribute, const std::string& value)> valueEdited;
  std::function<void(const std::string& attribute)> valueRemoved;  // so that its default counts
  std::function<void(const std::string& sentence)> editRefused;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void showTree();
  void showAttributes();
  void addAttributeActions();
  const AttributeLine* currentLine() const;
  void editCurrent();
  void openCurrent();

  PageRun* run = nullptr;
  std::unique_ptr<WidgetSources> places;
  std::vector<TreeRow> rows;
  std::string path;  // of the chosen row; empty for none
  std::vector<AttributeLine> lines;
  QTreeWidget *tree, *attributes;
  QLabel* unseen;
  bool isFilling = false;
};
