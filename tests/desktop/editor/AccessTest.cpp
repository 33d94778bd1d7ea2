// The playlist editor for those who don't see it as others do: what programs are told that read it aloud,
// dark colours, everything twice as large.
#include <QtGui/QAccessible>

#include "EditorScene.hpp"
#include "support/BusDaemon.hpp"
#include "support/desktop/Portal.hpp"

using support::Control;
using ::testing::ElementsAre;

namespace {

class Access : public support::EditorScene {
 protected:
  static QAccessibleInterface& of(QWidget& widget) {
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(&widget);
    EXPECT_NE(found, nullptr) << widget.objectName().toStdString();
    return *found;
  }
  QAccessibleInterface& of(Control control) { return of(pane().control(control)); }
  static std::string nameOf(const QAccessibleInterface& interface) {
    return interface.text(QAccessible::Name).toStdString();
  }
  static std::vector<std::string> entriesOf(const QAccessibleInterface& pane) {
    std::vector<std::string> names;
    for (int i = 0; i < pane.childCount(); ++i)
      if (const QAccessibleInterface* entry = pane.child(i)) names.push_back(nameOf(*entry));
    return names;
  }
};

/// On a desktop whose user has everything twice as large.
class TwiceAsLarge : public support::EditorScene {
 protected:
  TwiceAsLarge() : EditorScene([] { ::setenv("QT_SCALE_FACTOR", "2", 1); }) {}
  void TearDown() override { ::unsetenv("QT_SCALE_FACTOR"); }
  /// The screen's dots are not the desktop's measure there.
  static QPoint dots(QPoint at) { return at * 2; }
};

/// A desktop's settings, which say dark.
struct DarkSettings {
  support::BusDaemon bus;
  support::Portal portal{bus.address(), true};
};
class InTheDark : DarkSettings, public support::EditorScene {
 protected:
  InTheDark() : EditorScene([this] { ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1); }) {}
  void TearDown() override { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }
  /// Near the foot of a pane, where nothing is written.
  int lightness(Control control) {
    const QRect place = pane().control(control).geometry();
    return pane().grab().toImage().pixelColor(place.center().x(), place.bottom() - 4).lightness();
  }
};

}  // namespace

TEST_F(Access, EveryControlHasAnInterfaceWithItsRoleAndItsName) {
  open();
  const std::tuple<Control, QAccessible::Role, const char*> wanted[] = {
      {Control::kTreeView1, QAccessible::Tree, "Sources"},
      {Control::kPlayListDropBox, QAccessible::ComboBox, "Autumn"},
      {Control::kListView1, QAccessible::List, "Playlist Autumn"},
      {Control::kNew_PlayList, QAccessible::Button, "New PlayList"},
      {Control::kRename_Button, QAccessible::Button, "Rename P/L"},
      {Control::kDelete_Button, QAccessible::Button, "Delete"},
      {Control::kMoveUp_Button, QAccessible::Button, "Move Up"},
      {Control::kMoveDown_Button, QAccessible::Button, "Move Down"},
      {Control::kClose_Button, QAccessible::Button, "Close"},
      {Control::kWaitBox, QAccessible::StaticText, "Reading Media Library \nPlease Wait...\n"},
  };
  for (const auto& [control, role, name] : wanted) {
    EXPECT_EQ(of(control).role(), role) << name;
    EXPECT_EQ(nameOf(of(control)), name);
  }
  EXPECT_EQ(nameOf(of(pane())), "Vantorix PlayList Editor");
  EXPECT_EQ(of(Control::kPlayListDropBox).text(QAccessible::Description), "Playlist");
}

TEST_F(Access, TheEntriesOfThePanesAreReadByTheirTexts) {
  open();
  EXPECT_THAT(entriesOf(of(Control::kListView1)), ElementsAre("One", "Two", "Three"));
  EXPECT_THAT(entriesOf(of(Control::kTreeView1)),
              ElementsAre("Name", "All Audio", "Album", "Blue", "Sky", "Sea", "Green", "PlayList"));
}

TEST_F(Access, AButtonIsPressedByWhoeverReadsIt) {
  open();
  QAccessibleActionInterface* actions = of(Control::kMoveUp_Button).actionInterface();
  ASSERT_NE(actions, nullptr);
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(reported("up"));
  window->enabled(Control::kDelete_Button, false);
  EXPECT_TRUE(of(Control::kDelete_Button).state().disabled);
}

TEST_F(InTheDark, ThePanesAreDarkAndTheirPicturesAreSeen) {
  open();
  for (const Control control : {Control::kTreeView1, Control::kListView1})
    EXPECT_TRUE(until([&] { return lightness(control) < 60; })) << ui::editor::layout::Of(control).name;
  support::ScreenShot("editor-dark");
  const QVariant picture = pane().tree().model()->index(0, 0).data(Qt::DecorationRole);
  const QImage drawn = picture.value<QIcon>().pixmap(16, 16).toImage();
  int brightest = 0;
  for (int x = 0; x < drawn.width(); ++x)
    for (int y = 0; y < drawn.height(); ++y)
      if (drawn.pixelColor(x, y).alpha() > 200)
        brightest = std::max(brightest, drawn.pixelColor(x, y).lightness());
  EXPECT_GT(brightest, 120);
}

TEST_F(TwiceAsLarge, EverythingHasItsPlaceAndCanBeReached) {
  open();
  EXPECT_EQ(pane().size(), QSize(647, 354)) << "in the desktop's own measure";
  EXPECT_EQ(pane().devicePixelRatio(), 2);
  support::ScreenShot("editor-200");
  for (const Control control : {Control::kNew_PlayList, Control::kMoveDown_Button}) {
    const auto& button = dynamic_cast<QPushButton&>(pane().control(control));
    EXPECT_LT(button.fontMetrics().horizontalAdvance(button.accessibleName()), button.width() - 4);
  }
  clickAt(dots(item("Two")));
  ASSERT_TRUE(reported("click Two"));
  EXPECT_TRUE(journal.has("list press Two 1"));
}
