// The popup window on a screen, under the plug-in's own popup controls: from a click to what it leads to.
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include "support/FakeLibrary.hpp"
#include "support/House.hpp"
#include "support/desktop/PopupScene.hpp"

using ::testing::ElementsAre;

namespace {

/// A house of fakes around the window: its clock is the test's.
class HouseAround : public support::House {
 public:
  explicit HouseAround(ui::PopupWindow& window) : House(Pages::kFakes, &window) {
    preparePlayer = [this](support::FakePlayer& player) { library.into(player); };
  }
  void TestBody() override {}
  void start() { House::start(); }
  /// The time within which the window follows.
  void second() { loop.advance(base::Milliseconds(1000)); }
  void name(const std::string& category, std::int16_t element, const std::string& text) {
    plugin.popupMenus.load(category, element);
    plugin.popupMenus.caption(category, element, text);
  }
  [[nodiscard]] bool shown() const { return plugin.state.DisplayControlsShown; }
  player::WMPCalls& calls() { return plugin.calls; }
  ui::PopupControls& controls() { return plugin.popupControls; }
  void plays(std::int32_t videoHeight) {
    const auto media = std::make_shared<support::FakeMedia>("A", "B", "C", "D");
    media->height = videoHeight;
    wmp9->media = media;
    wmp9->state = player::kPlaying;
  }
  support::Journal& lines() { return journal; }

  support::FakeLibrary library{journal};
};

class WholePopup : public support::PopupScene {
 protected:
  explicit WholePopup(bool managed = false) : PopupScene(managed) {}
  void SetUp() override {
    house = std::make_unique<HouseAround>(*view);
    house->start();
    house->second();
    ASSERT_TRUE(until([&] { return exposed(pane()) && view->settled(); }));
  }
  void TearDown() override { house.reset(); }
  static bool exposed(const QWidget& window) {
    return window.isVisible() && window.windowHandle() != nullptr && window.windowHandle()->isExposed();
  }
  static bool listSeen() { return openList() != nullptr && exposed(*openList()); }
  void openNames(const QString& category) {
    for (QMenu* menu : pane().findChild<QMenuBar*>()->findChildren<QMenu*>())
      for (QAction* action : menu->actions())
        if (action->text() == category) return action->trigger();
    FAIL() << category.toStdString();
  }
  void clickRow(const QString& text) {
    auto* list = openList()->findChild<QListView*>();
    for (int row = 0; row < list->model()->rowCount(); ++row) {
      const QModelIndex index = list->model()->index(row, 0);
      if (index.data().toString() != text) continue;
      return clickAt(list->viewport()->mapToGlobal(list->visualRect(index).center()));
    }
    FAIL() << text.toStdString();
  }
  static QString heading() {
    const QWidget* list = openList();
    return list != nullptr ? list->findChild<QLabel*>("Heading")->text() : QString();
  }

  std::unique_ptr<HouseAround> house;
};

class ManagedWholePopup : public WholePopup {
 protected:
  ManagedWholePopup() : WholePopup(true) {}
};

}  // namespace

TEST_F(WholePopup, FromANameToItsTitlesToTheMusic) {
  house->name("Album", 1, "Blue");
  house->name("Album", 2, "Green");
  for (const char* title : {"Grass", "Leaf"}) house->library.addTrack(title, "A", "Green", "Folk");
  house->lines().clear();
  openNames("Album");
  ASSERT_TRUE(until([] { return listSeen(); }));
  clickRow("Green");
  ASSERT_TRUE(until([] { return listSeen() && heading() == "Album: Green"; }));
  clickRow("Leaf");
  ASSERT_TRUE(until([&] { return !house->lines().with("WMPPlay").empty(); }));
  EXPECT_THAT(house->lines().with("WMPPlay"), ElementsAre("WMPPlay(Album, Green, Leaf)"));
}

TEST_F(WholePopup, FromANameToAllOfIt) {
  house->name("Artist", 1, "A");
  for (const char* title : {"Grass", "Leaf"}) house->library.addTrack(title, "A", "Green", "Folk");
  house->lines().clear();
  openNames("Artist");
  ASSERT_TRUE(until([] { return listSeen(); }));
  clickRow("A");
  ASSERT_TRUE(until([] { return listSeen() && heading() == "Artist: A"; }));
  clickRow("(Play entire list)");
  ASSERT_TRUE(until([&] { return !house->lines().with("WMPPlay").empty(); }));
  EXPECT_THAT(house->lines().with("WMPPlay"), ElementsAre("WMPPlay(Artist, A, (Play entire list))"));
}

TEST_F(ManagedWholePopup, AVideoShowsControlsThatAreHiddenInTheTaskBar) {
  iconShown = false;
  house->calls().SetDisplayControls(false);
  house->second();
  ASSERT_FALSE(view->visible());
  house->plays(480);
  house->controls().LayoutControls();
  EXPECT_TRUE(house->shown());
  house->second();
  EXPECT_TRUE(view->visible());
  EXPECT_TRUE(until([&] { return exposed(pane()) && !pane().isMinimized(); }));
}

TEST_F(ManagedWholePopup, AListGoesWithTheWindowThatGoesToTheTaskBar) {
  iconShown = false;
  house->name("Album", 1, "Blue");
  openNames("Album");
  ASSERT_TRUE(until([] { return listSeen(); }));
  house->calls().SetDisplayControls(false);
  house->second();
  EXPECT_TRUE(until([] { return openList() == nullptr; }));
}

TEST_F(ManagedWholePopup, ItsFramesMinimiseButtonHidesIt) {
  tool({"windowminimize", std::to_string(view->handle())});
  ASSERT_TRUE(until([&] { return !house->shown(); }));
  house->second();
  EXPECT_TRUE(until([&] { return !pane().isVisible(); }));
  house->calls().SetDisplayControls("toggle");
  house->second();
  EXPECT_TRUE(until([&] { return exposed(pane()) && !pane().isMinimized(); }));
}
