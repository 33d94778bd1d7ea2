// The popup window as the programs are told of it that read windows aloud.
#include <QtGui/QAccessible>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include "support/desktop/PopupScene.hpp"

using ::testing::Each;
using ::testing::IsSupersetOf;
using ::testing::Not;

namespace {

class PopupReadAloud : public support::PopupScene {
 protected:
  /// The names of all that has that role, from that widget down.
  static std::vector<std::string> named(QWidget& widget, QAccessible::Role role) {
    std::vector<std::string> names;
    collect(QAccessible::queryAccessibleInterface(&widget), role, names);
    return names;
  }

 private:
  static void collect(QAccessibleInterface* thing, QAccessible::Role role, std::vector<std::string>& names) {
    if (thing == nullptr) return;
    if (thing->role() == role && !thing->state().invisible)
      names.push_back(thing->text(QAccessible::Name).toStdString());
    for (int i = 0; i < thing->childCount(); ++i) collect(thing->child(i), role, names);
  }
};

TEST_F(PopupReadAloud, EveryControlIsToldByItsName) {
  show();
  layOut(212, true);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&pane())->text(QAccessible::Name), "Vantorix Media Player");
  EXPECT_THAT(named(pane(), QAccessible::Button), IsSupersetOf({"Play", "Stop", "Previous", "Next", "Mute"}));
  EXPECT_THAT(named(pane(), QAccessible::Slider), IsSupersetOf({"Position", "Volume"}));
  EXPECT_THAT(named(pane(), QAccessible::MenuItem),
              IsSupersetOf({"Play...", "Settings", "About Vantorix Media Player"}));
  for (const auto role : {QAccessible::Button, QAccessible::Slider, QAccessible::MenuItem})
    EXPECT_THAT(named(pane(), role), Each(Not(""))) << role;
}

TEST_F(PopupReadAloud, AListOfNamesIsReadNameByName) {
  std::int16_t element = 0;
  for (const char* name : {"Blue", "Green"}) {
    menus.load("Album", ++element);
    menus.caption("Album", element, name);
  }
  show();
  for (QAction* action : pane().findChild<QMenuBar*>()->actions().front()->menu()->actions())
    if (action->text() == "Album") action->trigger();
  ASSERT_TRUE(until([] { return openList() != nullptr && openList()->windowHandle()->isExposed(); }));
  EXPECT_THAT(named(*openList(), QAccessible::ListItem), IsSupersetOf({"Blue", "Green"}));
  EXPECT_THAT(named(*openList(), QAccessible::EditableText), Each(Not("")));
}

}  // namespace
