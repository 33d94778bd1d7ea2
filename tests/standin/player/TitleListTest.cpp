// How a group's titles are shown: which of them, in what order, under which heads.
#include "standin/player/TitleList.hpp"

#include <gtest/gtest.h>

namespace {

using standin::IsBy;
using standin::MarkOf;
using standin::Title;
using standin::TitleList;
using Lines = std::vector<std::string>;

Title Song(const std::string& name, const std::string& artist, std::int32_t track = 0,
           const std::string& albumArtist = {}) {
  return {name,   "/music/" + artist + "/" + name,
          artist, albumArtist.empty() ? artist : albumArtist,
          "Hits", "Pop",
          track,  0};
}

/// Titles by name, heads in brackets.
Lines Shown(const TitleList& list, const TitleList::Choice& choice) {
  Lines lines;
  for (const TitleList::Row& row : list.rows(choice)) {
    const bool head = row.place == TitleList::Row::kHead;
    lines.push_back(head ? "[" + row.artist + "]" : list.all().at(static_cast<std::size_t>(row.place)).name);
  }
  return lines;
}

TEST(TitleList, ShowsAlbumsOfOneNameUnderTheirArtists) {
  const TitleList list({Song("Innuendo", "Queen", 1), Song("Zoo Station", "U2", 1), Song("One", "U2", 3),
                        Song("Radio", "Queen", 3)});
  EXPECT_EQ(Shown(list, {.byAlbumArtist = true}),
            (Lines{"[Queen]", "Innuendo", "Radio", "[U2]", "Zoo Station", "One"}));
  EXPECT_EQ(Shown(list, {}), (Lines{"Innuendo", "Zoo Station", "One", "Radio"})) << "in the list's own order";
}

TEST(TitleList, ShowsOneAlbumWithoutHeads) {
  const TitleList own({Song("A", "Joni", 1), Song("B", "Joni", 2)});
  EXPECT_EQ(Shown(own, {.byAlbumArtist = true}), (Lines{"A", "B"}));
  const TitleList various({Song("A", "Joni", 1, "Various"), Song("B", "Björk", 1, "Various")});
  EXPECT_EQ(Shown(various, {.byAlbumArtist = true}), (Lines{"A", "B"}));
}

TEST(TitleList, TakesACompilationWithoutAnAlbumArtistForOneAlbum) {
  const TitleList list({Song("A", "Joni", 1), Song("B", "Björk", 2), Song("C", "Queen", 3)});
  EXPECT_EQ(Shown(list, {.byAlbumArtist = true}), (Lines{"A", "B", "C"}));
  const TitleList unnumbered({Song("A", "Joni"), Song("B", "Björk")});
  EXPECT_EQ(Shown(unnumbered, {.byAlbumArtist = true}), (Lines{"[Björk]", "B", "[Joni]", "A"}));
}

TEST(TitleList, FindsTheWordsOfTitleArtistAndAlbumTogether) {
  const TitleList list({Song("Suzanne", "Leonard Cohen"), Song("Suzanne", "Nina Simone")});
  EXPECT_EQ(list.rows({.sought = "cohen SUZANNE hits"}).size(), 1U);
  EXPECT_EQ(list.rows({.sought = "cohen SUZANNE hits"})[0].place, 0);
  EXPECT_EQ(list.rows({.sought = "suzanne"}).size(), 2U);
  EXPECT_TRUE(list.rows({.sought = "dylan"}).empty());
}

TEST(TitleList, ShowsWhatAnArtistHasInIt) {
  const TitleList list({Song("A", "Queen", 1), Song("B", "U2", 1), Song("C", "Guest", 2, "Queen")});
  EXPECT_EQ(Shown(list, {.by = "QUEEN", .byAlbumArtist = true}), (Lines{"A", "C"}))
      << "one album needs no head";
  EXPECT_EQ(Shown(list, {.by = "Guest"}), Lines{"C"});
  EXPECT_TRUE(IsBy(Song("B", "U2"), "u2"));
  EXPECT_FALSE(IsBy(Song("B", "U2"), ""));
}

TEST(TitleMark, TellsEqualNamesApartAndShowsNoSource) {
  EXPECT_EQ(MarkOf("Intro", "/a"), MarkOf("Intro", "/a"));
  EXPECT_NE(MarkOf("Intro", "/a"), MarkOf("Intro", "/b"));
  EXPECT_NE(MarkOf("Intro/", "a"), MarkOf("Intro", "/a"));
  EXPECT_EQ(MarkOf("", "").size(), 16U);
}

}  // namespace
