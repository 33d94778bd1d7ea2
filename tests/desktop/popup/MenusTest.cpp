// The popup window's menus, chosen from by keys and clicks.
#include <QtGui/QTextDocument>
#include <QtWidgets/QLabel>

#include "support/desktop/PopupScene.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class PopupMenu : public support::PopupScene {
 protected:
  void names(const std::string& category, int count) {
    for (int i = 1; i <= count; ++i) {
      menus.load(category, static_cast<std::int16_t>(i));
      menus.caption(category, static_cast<std::int16_t>(i), "Name " + std::to_string(i));
    }
  }
  void titles(const std::vector<std::string>& captions) {
    ui::ElementArray& media = menus.list(ui::PopupMenus::kMedia);
    media.caption(ui::PopupMenus::kHeading, "Album: Blue & Green");
    media.caption(ui::PopupMenus::kPlayAll, "(Play entire list)");
    std::int16_t element = ui::PopupMenus::kFirstTitle;
    for (const std::string& caption : captions) {
      media.load(element);
      media.caption(element++, caption);
    }
  }
  static std::vector<std::string> rows() {
    std::vector<std::string> texts;
    for (int row = 0; row < list().model()->rowCount(); ++row)
      texts.push_back(list().model()->index(row, 0).data().toString().toStdString());
    return texts;
  }
};

}  // namespace

TEST_F(PopupMenu, TheBarHoldsWhatTheModelHolds) {
  showActive();
  std::vector<std::string> bar;
  for (QAction* action : pane().findChild<QMenuBar*>()->actions())
    bar.push_back(action->text().toStdString());
  EXPECT_THAT(bar, ElementsAre("&Play...", "&Settings", "A&bout Vantorix Media Player"));
  std::vector<std::string> settings;
  for (QAction* action : menu("&Settings")->actions())
    settings.push_back(action->isSeparator() ? "---" : action->text().toStdString());
  EXPECT_THAT(settings, ElementsAre("Show Cover &Art", "Show &Visualizations (CPU Intensive)",
                                    "Show Full &Screen Video", "---", "&Loop Mode", "&Shuffle Mode", "&Eject",
                                    "---", "Always &On Top"));
}

TEST_F(PopupMenu, CheckMarksAreThoseOfTheMomentItOpens) {
  showActive();
  menus.check("LoopMode", true);
  QMenu& settings = *menu("&Settings");
  settings.popup(QPoint(300, 300));
  ASSERT_TRUE(until([&] { return seen(&settings); }));
  EXPECT_TRUE(item(settings, "&Loop Mode")->isChecked());
  EXPECT_FALSE(item(settings, "&Shuffle Mode")->isChecked());
  for (const char* caption : {"&Loop Mode", "&Shuffle Mode"})
    EXPECT_TRUE(readable("popup-settings", settings, settings.actionGeometry(item(settings, caption))))
        << caption;
  settings.hide();
  menus.check("LoopMode", false);
  settings.popup(QPoint(300, 300));
  EXPECT_FALSE(item(settings, "&Loop Mode")->isChecked());
  settings.hide();
}

TEST_F(PopupMenu, AnItemIsChosenByItsLetters) {
  showActive();
  tool({"key", "alt+s"});
  ASSERT_TRUE(until([&] { return menu("&Settings")->isVisible(); }));
  tool({"key", "e"});
  EXPECT_TRUE(reported("menu Eject"));
}

TEST_F(PopupMenu, AboutIsInTheBarItself) {
  showActive();
  tool({"key", "alt+b"});
  EXPECT_TRUE(reported("menu About"));
}

TEST_F(PopupMenu, TenThousandNamesOpenAndAreFoundByTyping) {
  names("Album", 10'000);
  showActive();
  const auto start = loop.now();
  openAlbums();
  RecordProperty("milliseconds", static_cast<int>((loop.now() - start).count()));
  EXPECT_EQ(list().model()->rowCount(), 10'001);
  EXPECT_EQ(openList()->height(), 380);
  EXPECT_EQ(rows().front(), "(none)");
  EXPECT_TRUE(rowReadable("popup-names", 0)) << "the chosen row";
  EXPECT_TRUE(rowReadable("popup-names", 1));
  tool({"type", "name 9876"});
  ASSERT_TRUE(until([&] { return list().model()->rowCount() == 1; }));
  tool({"key", "Return"});
  EXPECT_TRUE(reported("Album 9876"));
  EXPECT_EQ(openList(), nullptr);
}

TEST_F(PopupMenu, AListOfFewNamesIsNoLongerThanThey) {
  names("Album", 4);
  showActive();
  openAlbums();
  const QRect last = list().visualRect(list().model()->index(4, 0));
  EXPECT_TRUE(list().viewport()->rect().contains(last)) << "nobody has to scroll";
  EXPECT_LT(list().viewport()->height() - last.bottom(), last.height()) << "there is no empty row";
}

TEST_F(PopupMenu, ANameIsChosenByAClickOrByTheArrows) {
  names("Album", 30);
  showActive();
  openAlbums();
  const QRect row = list().visualRect(list().model()->index(3, 0));
  clickAt(list().viewport()->mapToGlobal(row.center()));
  EXPECT_TRUE(reported("Album 3"));
  openAlbums();
  tool({"key", "Down", "Down", "Return"});
  EXPECT_TRUE(reported("Album 2"));
  openAlbums();
  tool({"key", "Return"});
  EXPECT_TRUE(reported("Album 0")) << "the first entry";
}

TEST_F(PopupMenu, EscapeChoosesNothing) {
  names("Album", 3);
  showActive();
  openAlbums();
  tool({"key", "Escape"});
  EXPECT_TRUE(until([] { return openList() == nullptr; }));
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(PopupMenu, NothingThatIsNotFoundIsChosen) {
  names("Album", 3);
  showActive();
  openAlbums();
  tool({"type", "nowhere"});
  ASSERT_TRUE(until([&] { return list().model()->rowCount() == 0; }));
  tool({"key", "Return", "Escape"});
  EXPECT_TRUE(until([] { return openList() == nullptr; }));
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(PopupMenu, WhatBeginsWithTheTextComesFirstAndTheRefreshEntryIsNoName) {
  names("Album", 4);
  menus.caption("Album", 0, "*Refresh Albums*");
  menus.caption("Album", 1, "Best of Alba");
  menus.caption("Album", 2, "Normal");
  menus.caption("Album", 3, "Alba");
  menus.caption("Album", 4, "alb");
  showActive();
  openAlbums();
  tool({"type", "al"});
  ASSERT_TRUE(until([&] { return list().model()->rowCount() == 4; }));
  EXPECT_THAT(rows(), ElementsAre("Alba", "alb", "Best of Alba", "Normal"));
  tool({"key", "Return"});
  EXPECT_TRUE(reported("Album 3"));
}

TEST_F(PopupMenu, AmongTitlesTheEntireListIsNotLookedFor) {
  titles({"Listen", "Play"});
  showActive();
  view->popUpMedia(2);
  ASSERT_TRUE(until([] { return seen(openList()); }));
  tool({"type", "list"});
  ASSERT_TRUE(until([&] { return list().model()->rowCount() == 1; }));
  EXPECT_THAT(rows(), ElementsAre("Listen"));
  tool({"key", "BackSpace", "BackSpace", "BackSpace", "BackSpace"});
  EXPECT_TRUE(until([&] { return list().model()->rowCount() == 3; })) << "nothing is looked for any more";
}

TEST_F(PopupMenu, TitlesOfAWindowThatWasPutAwayMeanwhileStayClosed) {
  titles({"Dawn"});
  showActive();
  view->hide();
  view->popUpMedia(2);
  loop.pump();
  EXPECT_EQ(openList(), nullptr);
}

TEST_F(PopupMenu, AListGoesWithTheWindowThatIsHiddenFromElsewhere) {
  names("Album", 3);
  showActive();
  openAlbums();
  view->hide();
  EXPECT_TRUE(until([] { return openList() == nullptr; }));
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(PopupMenu, AMenuGoesWithTheWindowToo) {
  showActive();
  tool({"key", "alt+s"});
  ASSERT_TRUE(until([&] { return seen(menu("&Settings")); }));
  view->hide();
  EXPECT_TRUE(until([] { return QApplication::activePopupWidget() == nullptr; }));
}

TEST_F(PopupMenu, ANameMadeAnewMeanwhileIsNotChosen) {
  names("Album", 3);
  showActive();
  openAlbums();
  menus.caption("Album", 2, "Another");
  tool({"key", "Down", "Down", "Return"});
  EXPECT_TRUE(until([] { return openList() == nullptr; }));
  EXPECT_THAT(journal.lines(), IsEmpty());
  openAlbums();
  EXPECT_EQ(rows()[2], "Another");
}

TEST_F(PopupMenu, AClickIsToldWithItsOwnListEvenIfAnotherIsOpenedMeanwhile) {
  names("Album", 3);
  titles({"Dawn"});
  showActive();
  openAlbums();
  reports.onListClick = [&] { view->popUpMedia(2); };
  tool({"key", "Down", "Return"});
  EXPECT_TRUE(until([&] { return !journal.lines().empty(); }));
  EXPECT_THAT(journal.lines(), ElementsAre("Album 1"));
}

TEST_F(PopupMenu, TitlesStandBelowTheirHeading) {
  titles({"Dawn", "Dusk"});
  showActive();
  view->popUpMedia(2);
  ASSERT_TRUE(until([] { return seen(openList()); }));
  EXPECT_THAT(rows(), ElementsAre("(Play entire list)", "Dawn", "Dusk"));
  auto* heading = openList()->findChild<QLabel*>("Heading");
  EXPECT_EQ(heading->text(), "Album: Blue & Green");
  EXPECT_TRUE(heading->font().bold());
  EXPECT_TRUE(readable("popup-titles", *heading));
  EXPECT_TRUE(rowReadable("popup-titles", 2));
  tool({"key", "Down", "Down", "Return"});
  EXPECT_TRUE(reported("media 5"));
}

TEST_F(PopupMenu, ANameThatIsCutShortIsToldByATip) {
  titles({"Salt & <b>Pepper</b> " + std::string(200, 'x'), "Dawn"});
  showActive();
  view->popUpMedia(2);
  ASSERT_TRUE(until([] { return seen(openList()); }));
  const auto tip = [](int row) { return list().model()->index(row, 0).data(Qt::ToolTipRole).toString(); };
  QTextDocument read;
  ASSERT_TRUE(Qt::mightBeRichText(tip(1)));
  read.setHtml(tip(1));
  EXPECT_EQ(read.toPlainText().toStdString(), rows()[1]);
  EXPECT_EQ(tip(2), "");
}

TEST_F(PopupMenu, StrangeNamesAreShownInOneLine) {
  titles({std::string(10'000, 'x'), "a && b & c", "tab\tand\nline", "שלום", "-", "a\u202Eb\u2066c\u2069"});
  showActive();
  view->popUpMedia(2);
  ASSERT_TRUE(until([] { return seen(openList()); }));
  const auto shown = rows();
  EXPECT_EQ(shown[1], std::string(300, 'x') + "…");
  EXPECT_EQ(shown[2], "a && b & c");
  EXPECT_EQ(shown[3], "tab and line");
  EXPECT_EQ(shown[4], "שלום");
  EXPECT_EQ(shown[5], "-");
  EXPECT_EQ(shown[6], "a b c ") << "none turns the others round";
  for (int row = 1; row <= 5; ++row) EXPECT_TRUE(rowReadable("popup-strange", row)) << row;
  tool({"key", "Down", "Return"});
  EXPECT_TRUE(reported("media 4")) << "also what was cut short can be chosen";
}
