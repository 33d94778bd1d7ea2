// What the editor's logic and its view have between them: a keyed tree, a keyed list, a drop box.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/FailureNumber.hpp"
#include "ui/editor/DropBox.hpp"
#include "ui/editor/Shadow.hpp"

using support::FailureNumberOf;
using support::LinesOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::editor::DropBox;
using ui::editor::ItemRef;
using ui::editor::KeyedList;
using ui::editor::KeyedTree;
using ui::editor::NodeRef;

namespace {

constexpr const char* kSound = ui::editor::image::kSound;

/// A tree, and a view's own idea of it that is made of what the view is told alone.
class TreeModel : public ::testing::Test {
 protected:
  TreeModel() { tree.watch(&shadow); }
  void TearDown() override { EXPECT_EQ(shadow.lines(), LinesOf(tree)); }

  NodeRef root(const std::string& key) { return tree.add(key, key, kSound); }
  NodeRef below(const std::string& parent, const std::string& text) {
    return tree.add(parent, parent + text, text, kSound);
  }

  KeyedTree tree;
  support::TreeShadow shadow{tree};
};

class ListModel : public ::testing::Test {
 protected:
  ListModel() { list.watch(&shadow); }
  void TearDown() override { EXPECT_EQ(shadow.lines, LinesOf(list)); }

  ItemRef append(const std::string& text) { return list.add(list.count() + 1, "key " + text, text, kSound); }

  KeyedList list;
  support::ListShadow shadow{list};
};

}  // namespace

TEST_F(TreeModel, ANodeIsTheLastChildOrTakesItsSortedPlace) {
  root("Album");
  tree.sorted(root("Artist"), true);
  for (const char* name : {"delta", "Bravo", "alpha", "Charlie"}) {
    below("Album", name);
    below("Artist", name);
  }
  EXPECT_THAT(LinesOf(tree), ElementsAre("Album", "  delta", "  Bravo", "  alpha", "  Charlie", "Artist",
                                         "  alpha", "  Bravo", "  Charlie", "  delta"));
}

TEST_F(TreeModel, KeysAreUniqueWithoutRegardToCase) {
  root("Album");
  const NodeRef blue = below("Album", "Blue");
  EXPECT_EQ(FailureNumberOf([&] { below("Album", "BLUE"); }), 35602);
  EXPECT_EQ(FailureNumberOf([&] { below("Genre", "Folk"); }), 35601);
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(tree.find("AlbumGreen")); }), 35601);
  EXPECT_EQ(tree.find("albumblue"), blue);
  EXPECT_EQ(tree.size(), 2U);
}

TEST_F(TreeModel, AKeyMayBeChanged) {
  root("Album");
  const NodeRef blue = below("Album", "Blue");
  below("Album", "Green");
  EXPECT_EQ(FailureNumberOf([&] { tree.key(blue, "albumGREEN"); }), 35602);
  EXPECT_EQ(blue->key(), "AlbumBlue");
  tree.key(blue, "ALBUMBLUE");
  EXPECT_EQ(blue->key(), "ALBUMBLUE");
  tree.key(blue, "AlbumRed");
  EXPECT_EQ(tree.find("AlbumRed"), blue);
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(tree.find("AlbumBlue")); }), 35601);
}

TEST_F(TreeModel, WhatIsRemovedGoesWithAllBelowIt) {
  root("Album");
  const NodeRef blue = below("Album", "Blue");
  const NodeRef sky = tree.add("AlbumBlue", "AlbumBlueSky", "Sky", kSound);
  tree.remove(blue);
  EXPECT_THAT(LinesOf(tree), ElementsAre("Album"));
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(tree.find("AlbumBlueSky")); }), 35601);
  EXPECT_EQ(FailureNumberOf([&] { tree.remove(blue); }), 35601);
  EXPECT_FALSE(sky->held());
  EXPECT_EQ(sky->text(), "Sky") << "whoever holds it reads what it said last";
  EXPECT_EQ(sky->fullPath(), "Album\\Blue\\Sky");
  below("Album", "Blue");
}

TEST_F(TreeModel, AnotherIsSelectedForOneThatIsRemoved) {
  const NodeRef album = root("Album");
  for (const char* name : {"A", "B", "C"}) below("Album", name);
  tree.selectedItem(tree.find("AlbumB"));
  tree.remove(tree.find("AlbumB"));
  EXPECT_EQ(tree.selectedItem()->text(), "C");
  tree.remove(tree.find("AlbumC"));
  EXPECT_EQ(tree.selectedItem()->text(), "A");
  tree.removeChildren(album);
  EXPECT_EQ(tree.selectedItem(), album);
  tree.remove(album);
  EXPECT_EQ(tree.selectedItem(), nullptr);
}

TEST_F(TreeModel, AHighlightGoesWithItsNode) {
  tree.dropHighlight(root("Album"));
  tree.remove(tree.find("Album"));
  EXPECT_EQ(tree.dropHighlight(), nullptr);
  EXPECT_EQ(shadow.highlights, 2);
}

TEST_F(TreeModel, AChangedTextTakesItsSortedPlace) {
  tree.sorted(root("PlayList"), true);
  for (const char* name : {"A", "B", "C", "D"}) below("PlayList", name);
  tree.text(tree.find("PlayListA"), "Cc");
  EXPECT_THAT(LinesOf(tree), ElementsAre("PlayList", "  B", "  C", "  Cc", "  D"));
  tree.text(tree.find("PlayListD"), "a");
  EXPECT_THAT(LinesOf(tree), ElementsAre("PlayList", "  a", "  B", "  C", "  Cc"));
  tree.text(tree.find("PlayListC"), "ca");
  EXPECT_THAT(LinesOf(tree), ElementsAre("PlayList", "  a", "  B", "  ca", "  Cc"));
}

TEST_F(TreeModel, AFillIsShownAtOneGo) {
  tree.sorted(root("All Audio"), true);
  shadow.inserts = 0;
  {
    const KeyedTree::Filling outer(tree);
    const KeyedTree::Filling filling(tree);
    root("Album");
    for (const char* name : {"delta", "Bravo", "alpha", "Charlie"}) {
      below("All Audio", name);
      below("Album", name);
    }
    EXPECT_THAT(LinesOf(tree), ElementsAre("All Audio"));
    EXPECT_EQ(KeyedTree::childCount(tree.find("Album")), 4U);
    EXPECT_EQ(KeyedTree::children(tree.find("Album")).front()->text(), "delta");
    tree.remove(tree.find("AlbumBravo"));
  }
  EXPECT_THAT(LinesOf(tree), ElementsAre("All Audio", "  alpha", "  Bravo", "  Charlie", "  delta", "Album",
                                         "  delta", "  alpha", "  Charlie"));
  EXPECT_EQ(shadow.inserts, 3);
}

TEST_F(TreeModel, AFillJoinsWhatIsThere) {
  tree.sorted(root("All Audio"), true);
  for (const char* name : {"b", "d"}) below("All Audio", name);
  {
    const KeyedTree::Filling filling(tree);
    for (const char* name : {"e", "c", "a"}) below("All Audio", name);
  }
  EXPECT_THAT(LinesOf(tree), ElementsAre("All Audio", "  a", "  b", "  c", "  d", "  e"));
}

TEST_F(TreeModel, SortingLaterSortsWhatIsThere) {
  const NodeRef album = root("Album");
  for (const char* name : {"b", "c", "a"}) below("Album", name);
  tree.sorted(album, true);
  EXPECT_THAT(LinesOf(tree), ElementsAre("Album", "  a", "  b", "  c"));
  EXPECT_EQ(tree.rowOf(*tree.find("Albumc")), 2U);
}

TEST_F(TreeModel, ClearedItIsEmptyAndTakesTheSameKeysAgain) {
  tree.selectedItem(root("Album"));
  below("Album", "Blue");
  tree.clear();
  EXPECT_THAT(LinesOf(tree), IsEmpty());
  EXPECT_EQ(tree.size(), 0U);
  EXPECT_EQ(tree.selectedItem(), nullptr);
  root("Album");
  below("Album", "Blue");
}

TEST_F(TreeModel, TheViewIsToldOfExpansionAndSelectionOnce) {
  const NodeRef album = root("Album");
  for (int i = 0; i < 2; ++i) {
    tree.expanded(album, true);
    tree.selectedItem(album);
  }
  EXPECT_EQ(shadow.expansions, 1);
  EXPECT_EQ(shadow.selections, 1);
}

TEST_F(ListModel, ItemsAreFoundByPositionAndByKey) {
  append("a");
  append("c");
  const ItemRef b = list.add(2, "key b", "b", kSound);
  EXPECT_EQ(list.indexOf(*b), 2U);
  EXPECT_EQ(list.indexOf(*list.find("KEY C")), 3U);
  EXPECT_EQ(list.item(1)->text(), "a");
  EXPECT_EQ(FailureNumberOf([&] { append("B"); }), 35602);
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(list.find("key d")); }), 35601);
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(list.item(0)); }), 9);
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(list.item(4)); }), 9);
  EXPECT_EQ(FailureNumberOf([&] { list.add(5, "key e", "e", kSound); }), 9);
  EXPECT_EQ(list.count(), 3U);
}

TEST_F(ListModel, ARemovedItemHasNoPosition) {
  append("a");
  const ItemRef b = append("b");
  append("c");
  list.selectedItem(b);
  list.dropHighlight(b);
  list.remove(2);
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(list.indexOf(*b)); }), 35601);
  EXPECT_EQ(FailureNumberOf([&] { list.remove(3); }), 9);
  EXPECT_EQ(list.selectedItem(), nullptr);
  EXPECT_EQ(list.dropHighlight(), nullptr);
  EXPECT_EQ(list.indexOf(*list.find("key c")), 2U);
  append("b");
}

TEST_F(ListModel, AFillIsShownAtOneGo) {
  append("a");
  shadow.inserts = 0;
  {
    const KeyedList::Filling filling(list);
    append("b");
    const ItemRef c = append("c");
    list.text(c, "C");
    EXPECT_THAT(LinesOf(list), ElementsAre("a"));
    EXPECT_EQ(list.count(), 3U);
  }
  EXPECT_EQ(shadow.inserts, 1);
  {
    const KeyedList::Filling filling(list);
    append("d");
    list.add(1, "key 0", "0", kSound);
    append("e");
    list.remove(2);
  }
  EXPECT_THAT(LinesOf(list), ElementsAre("0", "b", "C", "d", "e"));
  list.clear();
  EXPECT_THAT(LinesOf(list), IsEmpty());
}

TEST_F(ListModel, KeysAndTextsChange) {
  const ItemRef a = append("a");
  append("b");
  EXPECT_EQ(FailureNumberOf([&] { list.key(a, "KEY B"); }), 35602);
  list.key(a, "key z");
  EXPECT_EQ(list.find("key z"), a);
  list.text(a, "z");
  EXPECT_EQ(LinesOf(list).front(), "z");
}

TEST_F(ListModel, ItHasOneColumn) {
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(list.columnWidth()); }), 9);
  list.addColumn("Evening", 4755);
  list.columnWidth(9600);
  EXPECT_EQ(list.columnCaption(), "Evening");
  EXPECT_EQ(list.columnWidth(), 9600);
  EXPECT_EQ(shadow.columns, 2);
}

TEST(DropBoxModel, KeepsItsNamesInOrder) {
  DropBox box;
  for (const char* name : {"Winter", "autumn", "Spring"}) box.add(name);
  EXPECT_EQ(box.newIndex(), 1);
  EXPECT_EQ(box.entry(0), "autumn");
  EXPECT_EQ(box.entry(2), "Winter");
  EXPECT_EQ(box.count(), 3U);
  EXPECT_EQ(FailureNumberOf([&] { static_cast<void>(box.entry(3)); }), 9);
}

TEST(DropBoxModel, AFillIsToldAtOneGo) {
  DropBox box;
  int changes = 0;
  box.changed = [&] { ++changes; };
  {
    const DropBox::Filling outer(box);
    const DropBox::Filling filling(box);
    for (const char* name : {"Winter", "autumn"}) box.add(name);
    EXPECT_EQ(box.entry(0), "autumn");
    EXPECT_EQ(changes, 0);
  }
  EXPECT_EQ(changes, 1);
  box.clear();
  EXPECT_EQ(changes, 2);
}

TEST(DropBoxModel, AWrittenListIndexClicksAndStaysWithItsName) {
  DropBox box;
  int clicks = 0;
  box.Click = [&] { ++clicks; };
  for (const char* name : {"Winter", "Spring"}) box.add(name);
  EXPECT_EQ(box.listIndex(), -1);
  EXPECT_EQ(box.text(), "");
  box.listIndex(1);
  box.listIndex(1);
  EXPECT_EQ(clicks, 2);
  box.add("Autumn");
  EXPECT_EQ(box.listIndex(), 2);
  EXPECT_EQ(box.text(), "Winter");
  box.remove(0);
  EXPECT_EQ(box.text(), "Winter");
  box.remove(1);
  EXPECT_EQ(box.listIndex(), -1) << "what was chosen is gone";
  EXPECT_EQ(box.newIndex(), -1);
  EXPECT_EQ(FailureNumberOf([&] { box.listIndex(1); }), 9);
  EXPECT_EQ(clicks, 2);
}
