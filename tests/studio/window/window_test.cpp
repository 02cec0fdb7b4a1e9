// The real window: what an author does with it, and what is to be seen then.
#include "studio/window/studiowindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <filesystem>

#include "kit/files.h"
#include "studio/window/look.h"
#include "support/temporaryfolder.h"

namespace {

constexpr int kLong = 20000;  // milliseconds, for what comes

class WindowTest : public testing::Test {
 protected:
  void write(const std::string& text) { writeFile(page, text.data(), text.size()); }

  static std::string source(const std::string& color) {
    return "flags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: '" + color +
           "', start: n, children: [\n"
           "  {type: number, name: n, width: 90, height: 20, value: 1, navigate: leftRight}]}\n";
  }

  void open() {
    window = std::make_unique<StudioWindow>(page);
    window->resize(1180, 800);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), kLong));
    window->pageDriver().restart();
  }

  // As the desktop shows it, in the middle of the screen's lower right corner.
  QColor shown() {
    QImage image = window->screenView().grab().toImage();
    return image.pixelColor(image.width() - 10, image.height() - 10);
  }

  std::string value() {
    return std::to_string(
        std::get<int32_t>(readKeptState(window->pageDriver().session().run()->engine()).values.at("n")));
  }

  const TemporaryFolder folder;
  const std::string page = (folder.path() / "p.yaml").string();
  std::unique_ptr<StudioWindow> window;
};

TEST_F(WindowTest, ASaveIsOnTheScreenWithWhatWasDone) {
  write(source("#000000"));
  open();
  EXPECT_EQ(shown(), QColor(Qt::black));
  QTest::keyClick(&window->screenView(), Qt::Key_Right);
  QTest::keyClick(&window->screenView(), Qt::Key_L);
  EXPECT_EQ(value(), "3");
  write(source("#FFFFFF"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return shown().lightness() > 240; }, kLong));
  EXPECT_EQ(value(), "3");
  EXPECT_FALSE(window->errorBar().isVisible());
}

TEST_F(WindowTest, AnErrorShowsOverTheLastGoodPageUntilItIsMended) {
  write(source("#FFFFFF"));
  open();
  std::vector<KitMessage> clicked;
  window->errorBar().clicked = [&](const KitMessage& message) { clicked.push_back(message); };
  write("page: {type: gruop}\n");
  ASSERT_TRUE(QTest::qWaitFor([&] { return window->errorBar().isVisible(); }, kLong));
  EXPECT_GT(shown().lightness(), 240);
  QTest::mouseClick(&window->errorBar(), Qt::LeftButton);
  ASSERT_EQ(clicked.size(), 1u);
  EXPECT_EQ(clicked[0].line, 1);
  write(source("#000000"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !window->errorBar().isVisible(); }, kLong));
  EXPECT_EQ(shown(), QColor(Qt::black));
}

TEST_F(WindowTest, TheRemoteControlAndTheConsoleDriveThePage) {
  write(source("#000000"));
  open();
  RemoteView& remote = window->remoteView();
  QTest::mouseClick(&remote, Qt::LeftButton, Qt::NoModifier, QPoint(remote.width() - 40, 14 + 48 + 20));  // right
  EXPECT_EQ(value(), "2");
  QLineEdit* input = window->consoleView().findChild<QLineEdit*>();
  QTest::keyClicks(input, "wid");
  QTest::keyClick(input, Qt::Key_Tab);
  QTest::keyClicks(input, ".n.value = 7;");
  QTest::keyClick(input, Qt::Key_Return);
  EXPECT_EQ(value(), "7");
  EXPECT_EQ(window->pageDriver().session().recording().actions.size(), 2u);
}

TEST_F(WindowTest, TheConsoleCompletesWhatScriptsHaveMadeAndWhatMayFollowADot) {
  write(source("#000000"));
  open();
  QLineEdit* input = window->consoleView().findChild<QLineEdit*>();
  const auto completed = [&](const QString& begun) {
    input->clear();
    QTest::keyClicks(input, begun);
    QTest::keyClick(input, Qt::Key_Tab);
    return input->text().toStdString();
  };
  EXPECT_EQ(completed("programmesO"), "programmesO");
  window->consoleView().entered("programmesOfToday = 3;");
  EXPECT_EQ(completed("programmesO"), "programmesOfToday");
  EXPECT_EQ(completed("widgets.n.SetFo"), "widgets.n.SetFocus");
  EXPECT_EQ(completed("1 + "), "1 + ");
}

TEST_F(WindowTest, WhatTheBuilderWarnsOfIsInTheConsole) {
  write(
      "flags: 16bit\npage: {type: group, width: 720, height: 480, start: a, children: [\n"
      "  {name: a, width: 9, height: 9, right: nowhere}]}\n");
  open();
  const QString text = window->consoleView().findChild<QPlainTextEdit*>()->toPlainText();
  EXPECT_TRUE(text.startsWith("warning: ") && text.contains("nowhere") && text.contains("p.yaml:3\n"))
      << text.toStdString();
}

// Also what the console has written before.
TEST_F(WindowTest, DarkAndLightChangeEverything) {
  write(source("#000000"));
  open();
  window->consoleView().print("before\n");
  const auto tree = [&] {
    for (auto* list : window->inspectorView().findChildren<QTreeWidget*>())
      if (list->accessibleName() != "Attributes") return list->topLevelItem(0)->foreground(0).color().lightness();
    return -1;
  };
  auto* output = window->consoleView().findChild<QPlainTextEdit*>();
  const auto ink = [&] {
    QTextCursor cursor = output->document()->find("before");
    return cursor.charFormat().foreground().color().lightness();
  };
  EXPECT_LT(ink(), 100);
  applyLook(*qApp, true);
  EXPECT_GT(ink(), 150);
  EXPECT_GT(tree(), 150);
  applyLook(*qApp, false);
  EXPECT_LT(ink(), 100);
  EXPECT_LT(tree(), 100);
}

TEST_F(WindowTest, AnErrorOfAScriptShowsWithItsLine) {
  write(
      "flags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  bgColor: '#FFFFFF'\n  start: a\n  children:\n"
      "  - type: image\n    name: a\n    onClick: |\n      x = 1;\n      x.nosuch;\n");
  open();
  EXPECT_FALSE(window->errorBar().isVisible());
  std::vector<KitMessage> clicked;
  window->errorBar().clicked = [&](const KitMessage& message) { clicked.push_back(message); };
  QTest::keyClick(&window->screenView(), Qt::Key_K);
  ASSERT_TRUE(window->errorBar().isVisible());
  QTest::mouseClick(&window->errorBar(), Qt::LeftButton);
  ASSERT_EQ(clicked.size(), 1u);
  EXPECT_EQ(clicked[0].line, 13);
  EXPECT_EQ(clicked[0].text, "No property - nosuch");
  EXPECT_EQ(std::filesystem::path(clicked[0].file).filename(), "p.yaml");
  EXPECT_GT(shown().lightness(), 240) << "the page goes on";

  // The console has the place too, and it is a link.
  auto* output = window->consoleView().findChild<QPlainTextEdit*>();
  const qsizetype at = output->toPlainText().lastIndexOf("p.yaml:13");
  ASSERT_GE(at, 0) << output->toPlainText().toStdString();
  QTextCursor cursor(output->document());
  cursor.setPosition(int(at) + 3);
  output->setTextCursor(cursor);
  window->consoleView().placeClicked = window->errorBar().clicked;
  QTest::mouseClick(output->viewport(), Qt::LeftButton, Qt::NoModifier, output->cursorRect(cursor).center());
  ASSERT_EQ(clicked.size(), 2u);
  EXPECT_EQ(clicked[1].line, 13);

  // Closed, the strip stays away until something else is wrong.
  QTest::mouseClick(window->errorBar().findChildren<QToolButton*>().last(), Qt::LeftButton);
  EXPECT_FALSE(window->errorBar().isVisible());
  window->pageDriver().step();
  EXPECT_FALSE(window->errorBar().isVisible());
  window->consoleView().entered("nosuch();");
  EXPECT_TRUE(window->errorBar().isVisible());
}

TEST_F(WindowTest, AQuestionMarkShowsWhatLiesInAValue) {
  write(source("#000000"));
  open();
  window->consoleView().entered("?\\[1, \\[2]]");
  EXPECT_TRUE(window->consoleView().findChild<QPlainTextEdit*>()->toPlainText().contains("\n    [0]: 2\n"));
  EXPECT_TRUE(window->pageDriver().session().recording().actions.empty()) << "looking does nothing";
}

// The inspector's list with that attribute chosen; null if there is none.
QTreeWidget* listAt(InspectorView& inspector, const QString& attribute) {
  for (auto* tree : inspector.findChildren<QTreeWidget*>()) {
    if (tree->accessibleName() != "Attributes") continue;
    const auto found = tree->findItems(attribute, Qt::MatchExactly);
    if (found.size() != 1) continue;
    tree->setCurrentItem(found.front());
    tree->setFocus();
    return tree;
  }
  return nullptr;
}

// Types a new value over the one that the inspector shows.
void editValue(InspectorView& inspector, const QString& attribute, const QString& value) {
  QTreeWidget* list = listAt(inspector, attribute);
  ASSERT_TRUE(list);
  QTest::keyClick(list, Qt::Key_F2);
  auto* field = list->findChild<QLineEdit*>();
  ASSERT_TRUE(field);
  field->setText(value);
  QTest::keyClick(field, Qt::Key_Return);
}

TEST_F(WindowTest, AValueIsEditedInTheInspectorAndSavedWithTheRestOfTheSource) {
  const std::string text = "# Mine.\n" + source("#000000") + "# The end.\n";
  write(text);
  open();
  QTest::keyClick(&window->screenView(), Qt::Key_Right);
  InspectorView& inspector = window->inspectorView();
  const auto root = inspectWidgets(window->pageDriver().session().run()->engine())[1];
  inspector.choose(root.id);
  const auto onDisk = [&] {
    const std::vector<uint8_t> bytes = readFile(page);
    return std::string(bytes.begin(), bytes.end());
  };

  editValue(inspector, "bgColor", "#FFFFFF");
  ASSERT_TRUE(QTest::qWaitFor([&] { return shown().lightness() > 240; }, kLong));
  EXPECT_TRUE(window->isWindowModified());
  EXPECT_EQ(onDisk(), text) << "only when it is saved";
  EXPECT_EQ(value(), "2") << "what was pressed stays";

  QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return shown().lightness() < 10; }, kLong));
  EXPECT_FALSE(window->isWindowModified());
  QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return shown().lightness() > 240; }, kLong));
  QTest::keyClick(window.get(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(window->isWindowModified());
  const std::string saved = onDisk();
  EXPECT_TRUE(saved.starts_with("# Mine.\n") && saved.ends_with("# The end.\n")) << saved;
  EXPECT_NE(saved.find("#FFFFFF"), std::string::npos);

  // What an author can't write there is refused, and nothing changes.
  inspector.choose(inspectWidgets(window->pageDriver().session().run()->engine())[1].id);
  editValue(inspector, "bgColor", "reddish");
  QTest::qWait(50);
  EXPECT_FALSE(window->isWindowModified());
  EXPECT_GT(shown().lightness(), 240);

  // Taken off, it is what it is by default.
  QTest::keyClick(listAt(inspector, "start"), Qt::Key_Delete);
  EXPECT_TRUE(window->isWindowModified());
  EXPECT_EQ(inspectWidgets(window->pageDriver().session().run()->engine())[2].focused, false);
}

TEST_F(WindowTest, AWidgetIsMovedAndSizedByHand) {
  write(source("#000000"));
  open();
  ScreenView& screen = window->screenView();
  const auto widget = [&] { return inspectWidgets(window->pageDriver().session().run()->engine())[2]; };
  const auto dragTo = [&](QPoint from, QPoint to, bool letsGo) {
    QTest::mousePress(&screen, Qt::LeftButton, Qt::NoModifier, from);
    QTest::mouseMove(&screen, (from + to) / 2);
    QTest::mouseMove(&screen, to);
    if (letsGo) QTest::mouseRelease(&screen, Qt::LeftButton, Qt::NoModifier, to);
    QTest::qWait(0);
  };
  QTest::mouseClick(&screen, Qt::LeftButton, Qt::ControlModifier, QPoint(45, 10));  // finds it
  dragTo({45, 10}, {145, 60}, true);
  EXPECT_EQ(widget().place, (Bounds{100, 50, 90, 20}));
  dragTo({190, 70}, {200, 100}, true);
  EXPECT_EQ(widget().place, (Bounds{100, 50, 100, 50}));

  dragTo({150, 75}, {350, 75}, false);
  EXPECT_EQ(widget().place, (Bounds{300, 50, 100, 50})) << "the page shows it at once";
  QTest::keyClick(&screen, Qt::Key_Escape);
  QTest::qWait(0);
  EXPECT_EQ(widget().place, (Bounds{100, 50, 100, 50}));

  screen.setZoom(2);
  QTest::keyClick(&screen, Qt::Key_Right, Qt::AltModifier);
  QTest::keyClick(&screen, Qt::Key_Right, Qt::AltModifier);
  QTest::keyClick(&screen, Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier);
  EXPECT_EQ(widget().place, (Bounds{102, 50, 100, 49}));
  EXPECT_EQ(value(), "1") << "the page has got no key";
  QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(widget().place, (Bounds{100, 50, 100, 50})) << "nudges are one step";
  for (int i = 0; i < 2; ++i) QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(widget().place, (Bounds{0, 0, 90, 20}));
  EXPECT_FALSE(window->isWindowModified());
}

// Pauses and all; a key ends it.
TEST_F(WindowTest, WhatWasDoneIsPlayedOnceMore) {
  write(source("#000000"));
  open();
  window->pageDriver().setPaused(true);
  QTest::keyClick(&window->screenView(), Qt::Key_Right);
  window->pageDriver().step();
  window->pageDriver().step();
  QTest::keyClick(&window->screenView(), Qt::Key_Right);
  EXPECT_EQ(value(), "3");
  QTest::keyClick(window.get(), Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(value(), "1");
  window->pageDriver().step();
  EXPECT_EQ(value(), "2");
  for (int i = 0; i < 2; ++i) window->pageDriver().step();
  EXPECT_EQ(value(), "3");
  EXPECT_TRUE(window->pageDriver().replay().isOver());
  EXPECT_EQ(window->pageDriver().session().recording().actions.size(), 4u) << "and may be saved again";

  QTest::keyClick(window.get(), Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
  QTest::keyClick(&window->screenView(), Qt::Key_Left);
  EXPECT_TRUE(window->pageDriver().replay().isOver());
}

// Time stands, the window doesn't; what is asked for in the middle is answered there.
TEST_F(WindowTest, APageStandsAtABreakpointUntilItIsToGoOn) {
  write(
      "flags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  start: a\n  children:\n"
      "  - type: image\n    name: a\n    onClick: |\n      total = 3;\n      { local twice = total * 2; total = twice; "
      "}\n"
      "      bgColor = total;\n");
  open();
  const std::string file = debuggedFileName(page);
  DebuggerView& view = window->debuggerView();
  window->desk().toggle(file, 12);
  const auto list = [&](const char* name) {
    for (auto* tree : view.findChildren<QTreeWidget*>())
      if (tree->accessibleName() == name) return tree;
    return static_cast<QTreeWidget*>(nullptr);
  };
  const auto atStop = [&](std::function<void()> work) {
    QTimer::singleShot(0, &view, [&, work] {
      ASSERT_TRUE(view.isStanding());
      EXPECT_TRUE(view.isVisible());
      work();
    });
    QTest::keyClick(&window->screenView(), Qt::Key_K);
    EXPECT_FALSE(view.isStanding());
  };

  QString answer, where;
  atStop([&] {
    where = list("Calls")->topLevelItem(0)->text(1);
    EXPECT_TRUE(view.evaluate("total + 1", &answer));
    window->consoleView().entered("total = 5;");
    QTest::keyClick(&window->screenView(), Qt::Key_K);  // dropped
    view.goOn(BobResume::run);
  });
  EXPECT_EQ(where, "p.yaml:12");
  EXPECT_EQ(answer, "4");
  window->consoleView().entered("total;");
  EXPECT_TRUE(window->pageDriver().session().run()->log().ends_with("--> 10\n"));
  EXPECT_EQ(window->pageDriver().session().recording().actions.size(), 2u);

  // A save ends what stands.
  window->desk().toggle(file, 12);
  window->desk().toggle(file, 13);
  atStop([&] { window->pageDriver().reload(); });
  EXPECT_EQ(window->pageDriver().session().openings(), 2u);

  // And so does closing the window.
  atStop([&] { window->close(); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return !window->isVisible(); }, kLong));
}

// The window goes on while a script runs for ever; a save ends it, and shows the page without the mistake.
TEST_F(WindowTest, AnEndlessScriptHoldsUpNothing) {
  write(source("#000000"));
  open();
  bool wasBusy = false, saved = false;
  PageDriver& driver = window->pageDriver();
  const auto busy = driver.busy;
  driver.busy = [&] {
    busy();
    wasBusy |= driver.isBusy();
    if (!saved) write(source("#FFFFFF"));
    saved = true;
  };
  window->consoleView().entered("for (;;);");
  EXPECT_TRUE(wasBusy);
  ASSERT_TRUE(QTest::qWaitFor([&] { return shown().lightness() > 240; }, kLong));
  EXPECT_FALSE(driver.isBusy());
}

TEST_F(WindowTest, PixelsAreMagnifiedWithoutSmoothing) {
  write(
      "flags: 16bit\npage: {type: group, width: 720, height: 480, bgColor: '#000000', children: [\n"
      "  {x: 10, y: 10, width: 1, height: 1, bgColor: '#FFFFFF'}]}\n");
  open();
  window->screenView().setGrid(false);
  for (const int zoom : {1, 3, 8}) {
    window->screenView().setZoom(zoom);
    const QImage image = window->screenView().grab().toImage();
    ASSERT_EQ(image.size(), QSize(720 * zoom, 480 * zoom));
    int light = 0;
    for (int y = 0; y < 30 * zoom; ++y)
      for (int x = 0; x < 30 * zoom; ++x) light += image.pixelColor(x, y).lightness() > 240;
    EXPECT_EQ(light, zoom * zoom);
    EXPECT_GT(image.pixelColor(10 * zoom, 10 * zoom).lightness(), 240);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  applyLook(application, false);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
