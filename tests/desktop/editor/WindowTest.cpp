// The playlist editor's window: what stands where, how it opens, waits and closes.
#include "EditorScene.hpp"

using support::Control;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Window = support::EditorScene;

namespace {

/// What the desktop has sent to a window.
class SeenInput : public QObject {
 public:
  bool closed = false;
  bool clicked = false;
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    closed = closed || event->type() == QEvent::Close;
    clicked = clicked || event->type() == QEvent::MouseButtonRelease;
    return false;
  }
};

}  // namespace

TEST_F(Window, EverythingStandsInItsPlace) {
  open();
  EXPECT_EQ(pane().windowTitle(), "Vantorix PlayList Editor");
  EXPECT_EQ(pane().size(), QSize(647, 354));
  EXPECT_EQ(pane().control(Control::kTreeView1).geometry(), QRect(8, 0, 289, 313));
  EXPECT_EQ(pane().control(Control::kPlayListDropBox).geometry(), QRect(304, 0, 337, 21));
  EXPECT_EQ(pane().control(Control::kListView1).geometry(), QRect(304, 24, 337, 289));
  EXPECT_EQ(pane().control(Control::kNew_PlayList).geometry(), QRect(16, 320, 73, 25));
  EXPECT_EQ(pane().control(Control::kClose_Button).geometry(), QRect(560, 320, 73, 25));
  EXPECT_FALSE(pane().control(Control::kWaitBox).isVisible());
  support::ScreenShot("editor");
}

TEST_F(Window, EveryControlHasANameAndRoomForItsWords) {
  open();
  for (QWidget* each : pane().findChildren<QWidget*>()) {
    if (each->focusPolicy() == Qt::NoFocus || !each->isVisible() || each->parentWidget() != &pane()) continue;
    EXPECT_FALSE(each->accessibleName().isEmpty()) << each->objectName().toStdString();
    const auto* button = qobject_cast<QPushButton*>(each);
    if (button == nullptr) continue;
    EXPECT_LT(button->fontMetrics().horizontalAdvance(button->accessibleName()), button->width() - 4);
  }
  EXPECT_EQ(pane().control(Control::kRename_Button).accessibleName(), "Rename P/L");
  EXPECT_EQ(pane().list().accessibleName(), "Playlist Autumn");
}

TEST_F(Window, StandsWhereItIsPutAndSaysWhereItIs) {
  window->top(1500);
  window->left(3000);
  EXPECT_EQ(window->top(), 1500);
  open();
  ASSERT_TRUE(until([&] { return pane().pos() == QPoint(200, 100); }));
  EXPECT_EQ(window->left(), 3000);
  EXPECT_NE(window->handle(), 0);
}

TEST_F(Window, EachButtonReportsItsClickAndDisabledOnesNone) {
  open();
  const std::pair<Control, const char*> each[] = {{Control::kNew_PlayList, "new"},
                                                  {Control::kRename_Button, "rename"},
                                                  {Control::kDelete_Button, "delete"},
                                                  {Control::kMoveUp_Button, "up"},
                                                  {Control::kMoveDown_Button, "down"}};
  for (const auto& [button, report] : each) {
    clickAt(middleOf(button));
    EXPECT_TRUE(reported(report)) << report;
  }
  journal.clear();
  window->enabled(Control::kDelete_Button, false);
  clickAt(middleOf(Control::kDelete_Button));
  clickAt(middleOf(Control::kNew_PlayList));
  EXPECT_TRUE(reported("new"));
  EXPECT_FALSE(journal.has("delete"));
}

TEST_F(Window, TheBoxShowsTheNamesInTheirOrderAndAChoiceIsAWrite) {
  // Else the end of a slow click on the box counts as a choice already.
  QApplication::setDoubleClickInterval(10 * 60 * 1000);
  open();
  auto& box = static_cast<QComboBox&>(pane().control(Control::kPlayListDropBox));
  ASSERT_TRUE(until([&] { return box.count() == 2 && box.currentText() == "Autumn"; }));
  models.PlayListDropBox.Click = [&] { journal.add("box " + models.PlayListDropBox.text()); };
  clickAt(middleOf(Control::kPlayListDropBox));
  ASSERT_TRUE(until([&] { return QApplication::activePopupWidget() != nullptr; }));
  key("Down");
  key("Return");
  EXPECT_TRUE(reported("box Winter"));
  EXPECT_EQ(box.currentText(), "Winter");
  models.PlayListDropBox.add("Autumn leaves");
  EXPECT_TRUE(until([&] { return box.count() == 3 && box.currentText() == "Winter"; }));
}

TEST_F(Window, ThePanesHideBehindTheWaitBox) {
  fill();
  window->screenPointer(desktop::PlayListWindow::kHourglass);
  window->enabled(false);
  for (const Control each : {Control::kTreeView1, Control::kListView1, Control::kPlayListDropBox})
    window->visible(each, false);
  window->visible(Control::kWaitBox, true);
  window->repaint();
  window->show();
  ASSERT_TRUE(until([&] { return pane().drawn() && pane().isActiveWindow(); }));
  EXPECT_TRUE(pane().control(Control::kWaitBox).isVisible());
  EXPECT_FALSE(pane().tree().isVisible());
  support::ScreenShot("editor-waits");
  SeenInput seen;
  pane().windowHandle()->installEventFilter(&seen);
  key("alt+F4");
  clickAt(middleOf(Control::kClose_Button));
  for (const Control each : {Control::kTreeView1, Control::kListView1, Control::kPlayListDropBox})
    window->visible(each, true);
  window->visible(Control::kWaitBox, false);
  // Both have come to the window, and no further.
  ASSERT_TRUE(until([&] { return seen.closed && seen.clicked; }));
  window->enabled(true);
  window->screenPointer(desktop::PlayListWindow::kDefaultPointer);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_THAT(journal.lines(), IsEmpty()) << "a disabled window takes no input";
  EXPECT_TRUE(pane().isVisible()) << "and can't be closed";
  EXPECT_EQ(pane().focusWidget(), &pane().tree());
}

TEST_F(Window, ItsUserClosesItOnceAndItOpensAgain) {
  open();
  key("alt+F4");
  ASSERT_TRUE(reported("unload"));
  EXPECT_TRUE(until([&] { return !pane().isVisible(); }));
  EXPECT_EQ(journal.count("unload"), 1U);
  window->close();
  EXPECT_EQ(journal.count("unload"), 1U) << "it is closed";
  show();
  EXPECT_TRUE(pane().isVisible());
  clickAt(middleOf(Control::kClose_Button));
  EXPECT_TRUE(reported("unload"));
}

TEST_F(Window, AClosedWindowMayLoseItsModels) {
  open();
  reports.onUnload = [&] {
    models.TreeView1.clear();
    models.ListView1.clear();
    models.PlayListDropBox.clear();
  };
  window->close();
  EXPECT_EQ(pane().tree().model()->rowCount(), 0);
  EXPECT_EQ(pane().list().model()->rowCount(), 0);
}

TEST_F(Window, TitlesOfOneNameAreToldApartByATip) {
  open();
  const auto tipOf = [&](const char* text) {
    const QAbstractItemModel& model = *pane().tree().model();
    const auto found =
        model.match(model.index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchExactly | Qt::MatchRecursive);
    return found.front().data(Qt::ToolTipRole).toString();
  };
  EXPECT_TRUE(tipOf("Sky").contains("/music/blue/sky.mp3"));
  models.TreeView1.find("AlbumGreen")->tag = "OK";
  EXPECT_FALSE(tipOf("Green").contains("OK")) << "a group's state is nothing to its user";
  models.TreeView1.text(models.TreeView1.find("AlbumBlueSky"), "<b>Sky</b>");
  EXPECT_TRUE(tipOf("<b>Sky</b>").contains("&lt;b&gt;"));
}

TEST_F(Window, EachPictureIsThereAndIsAnother) {
  desktop::Pictures pictures;
  std::vector<QImage> drawn;
  for (const char* key : ui::editor::image::kAll) {
    for (const QColor& ink : {QColor(Qt::black), QColor(Qt::white)}) {
      const QImage image = pictures.icon(key, ink, ink).pixmap(16, 16).toImage();
      ASSERT_EQ(image.size(), QSize(16, 16)) << key;
      if (ink == QColor(Qt::black)) continue;
      EXPECT_THAT(drawn, ::testing::Not(::testing::Contains(image))) << key;
      drawn.push_back(image);
    }
  }
  EXPECT_EQ(drawn.size(), 22U);
  EXPECT_TRUE(pictures.icon("None", Qt::black, Qt::black).isNull());
}

TEST_F(Window, APictureIsSeenOnTheGroundOfWhatIsChosen) {
  desktop::Pictures pictures;
  const QColor ground = pane().palette().color(QPalette::Highlight);
  const QColor ink = pane().palette().color(QPalette::HighlightedText);
  for (const char* key : {"Sound", "List", "Music2"}) {
    const QIcon icon = pictures.icon(key, pane().palette().color(QPalette::Text), ink);
    const QImage image = icon.pixmap(QSize(16, 16), QIcon::Selected).toImage();
    int seen = 0;
    for (int x = 0; x < image.width(); ++x)
      for (int y = 0; y < image.height(); ++y) {
        const QColor dot = image.pixelColor(x, y);
        if (dot.alpha() < 200) continue;
        ++seen;
        EXPECT_GT(std::abs(dot.lightness() - ground.lightness()), 60) << key << " at " << x << ", " << y;
      }
    EXPECT_GT(seen, 10) << key;
  }
}

TEST_F(Window, AHundredThousandTitlesAreShownWithoutACopy) {
  open();
  {
    const ui::editor::KeyedTree::Filling filling(models.TreeView1);
    for (int i = 0; i < 100'000; ++i) {
      const std::string title = "Title " + std::to_string(i);
      models.TreeView1.add("All Audio", "All Audio" + title, title, "Sound");
    }
  }
  models.TreeView1.expanded(models.TreeView1.find("All Audio"), true);
  window->ensureVisible(models.TreeView1.find("All AudioTitle 99999"));
  EXPECT_EQ(pane().tree().model()->rowCount(pane().tree().model()->index(0, 0)), 100'000);
  clickAt(node("Title 99999"));
  EXPECT_TRUE(reported("click Title 99999"));
}
