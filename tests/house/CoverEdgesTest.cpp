// The cover search's bounds, in a house of real processes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

#include "demo/Cover.hpp"
#include "house/CoverHouse.hpp"
#include "house/CoverWeb.hpp"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kEnd = ": Found cover art";
constexpr const char* kNoEnd = ": Unable to retrieve cover art";

class CoverEdges : public support::CoverHouse {
 protected:
  void SetUp() override {
    engine::TrackTags tags = discTags();
    tags.collectionId = "{1234}";
    music.add("Silence", 20, tags);
    house.configurePlayer("[network]\nmetadata = " + web.metadata() + "\ncover = " + web.covers() + "\n");
  }
  void start(const std::string& settings = {}) {
    std::filesystem::create_directories(house.data() / "config");
    std::ofstream(house.data() / "config" / "vxif_WMP.ini") << "[Settings]\nDebugMessages=True\n" + settings;
    CoverHouse::start();
  }
  /// What the log says of the search, from one of its searches on.
  std::vector<std::string> told() {
    const std::string head = "Media Player";
    std::vector<std::string> lines;
    std::istringstream log(house.log());
    for (std::string line; std::getline(log, line);) {
      const std::size_t at = line.find(head);
      if (at == std::string::npos) continue;
      const std::string text = line.substr(at + head.size());
      for (const char* word : {"cover art", "picture found", "picture failed", "lbum ID#", "local file",
                               "network connection", "website", "image"})
        if (text.find(word) != std::string::npos) {
          lines.push_back(text);
          break;
        }
    }
    return lines;
  }
  std::int64_t searches() {
    const auto lines = told();
    return std::count(lines.begin(), lines.end(), kEnd) + std::count(lines.begin(), lines.end(), kNoEnd);
  }
  /// Plays the disc and waits for the end of the search.
  void search() {
    if (std::exchange(played_, true)) {
      ASSERT_EQ(house.press("Status", "Stop"), 200);
      ASSERT_TRUE(house.textBecomes("Album", ""));
    }
    const std::int64_t before = searches();
    play("Disc");
    ASSERT_TRUE(support::Eventually([&] { return searches() > before; })) << house.log();
  }
  std::string served(const std::string& size) {
    return house.get("/images/Media%20Player/WMPCover" + size + ".jpg");
  }
  bool fileThere(const std::string& size) {
    const auto answer = house.client().Get("/images/Media%20Player/WMPCover" + size + ".jpg");
    return answer && answer->status == 200;
  }
  /// A good picture of exactly so many bytes.
  static std::string picture(std::size_t bytes) {
    std::string png = engine::demo::CoverPng(1, 8);
    png.resize(bytes, ' ');
    return png;
  }
  static std::string answer(const std::string& large, const std::string& small) {
    return "<METADATA>                                <largeCoverParams>" + large +
           "</largeCoverParams><smallCoverParams>" + small + "</smallCoverParams>";
  }
  void expectNoCover() {
    EXPECT_THAT(albumText(), Not(HasSubstr("WMPCover")));
    EXPECT_THAT(albumText(), HasSubstr("Disc"));
    EXPECT_FALSE(fileThere("Large"));
    EXPECT_FALSE(fileThere("Small"));
  }

  support::CoverWeb web;

 private:
  bool played_ = false;
};

TEST_F(CoverEdges, PicturesBesideTheMusicAreTakenAndNobodyIsAsked) {
  web.says(answer("large", "small"), {});
  lay("AlbumArt_{1234}_Large.jpg", engine::demo::CoverPng(3, 220));
  lay("AlbumArt_{1234}_Small.jpg", engine::demo::CoverPng(3, 80));
  start();
  search();
  EXPECT_THAT(web.asked(), IsEmpty());
  // The player itself gives the large one out as the file's picture, so that the search need not go on.
  EXPECT_THAT(told(), ElementsAre(": Locating embedded cover art", kEnd));
  EXPECT_TRUE(showsCover());
  EXPECT_TRUE(served("Large") == engine::demo::CoverPng(3, 220));
  EXPECT_TRUE(served("Small") == engine::demo::CoverPng(3, 220));
}

TEST_F(CoverEdges, AnAnswerOf49CharactersIsFetchedTwiceAndOneOf50Once) {
  start();
  web.says(std::string(49, 'x'), {});
  search();
  EXPECT_THAT(web.asked(), ElementsAre("metadata", "metadata"));
  EXPECT_THAT(told(), ElementsAre(": Locating embedded cover art", ": No embedded picture found",
                                  ": Locating local cover art", ": No local file found",
                                  ": Locating remote cover art", "Could not find website", kNoEnd));
  expectNoCover();
  web.says(std::string(50, 'x'), {});
  search();
  EXPECT_THAT(web.asked(), ElementsAre("metadata"));
  EXPECT_EQ(told().at(told().size() - 2), "Could not find image location");
}

TEST_F(CoverEdges, AnAddressOf43CharactersIsEnoughForTheLargePictureAlone) {
  start();
  web.says(answer("four", "four"), {{"four", picture(600)}});
  search();
  EXPECT_THAT(web.asked(), ElementsAre("metadata", "four"));
  EXPECT_EQ(told().back(), kEnd);
  expectNoCover();
  web.says(answer("fou", "fives"), {{"fou", picture(600)}, {"fives", picture(600)}});
  search();
  EXPECT_THAT(web.asked(), ElementsAre("metadata"));
  web.says(answer("four", "fives"), {{"four", picture(600)}, {"fives", picture(601)}});
  search();
  EXPECT_THAT(web.asked(), ElementsAre("metadata", "four", "fives"));
  EXPECT_TRUE(showsCover());
  EXPECT_TRUE(served("Large") == picture(600));
  EXPECT_TRUE(served("Small") == picture(601));
}

TEST_F(CoverEdges, APictureOf500BytesIsEnoughForTheLargeOneAlone) {
  start();
  web.says(answer("large", "small"), {{"large", picture(500)}, {"small", picture(500)}});
  search();
  EXPECT_THAT(web.asked(), ElementsAre("metadata", "large", "small"));
  EXPECT_EQ(told().back(), kEnd);
  expectNoCover();
  web.says(answer("large", "small"), {{"large", picture(499)}, {"small", picture(600)}});
  search();
  EXPECT_EQ(told().at(told().size() - 2), "Could not find image");
  EXPECT_EQ(told().back(), kNoEnd);
  web.says(answer("large", "small"), {{"large", picture(500)}, {"small", picture(501)}});
  search();
  EXPECT_TRUE(showsCover());
}

TEST_F(CoverEdges, WithoutTheLargeMarkerTheAnswerIsReadFromItsEighteenthCharacterOn) {
  start();
  web.says("12345678901234567ABCD<smallCoverParams>small</smallCoverParams>", {{"small", picture(600)}});
  search();
  EXPECT_THAT(web.asked(), ElementsAre("metadata", "ABCD"));
  EXPECT_EQ(told().at(told().size() - 2), "Could not find image");
  expectNoCover();
}

TEST_F(CoverEdges, WhatIsNoPictureIsNotSaved) {
  start();
  web.says(answer("large", "small"), {{"large", std::string(600, 'x')}, {"small", picture(600)}});
  search();
  EXPECT_EQ(told().at(told().size() - 2), "Could not save image");
  expectNoCover();
}

TEST_F(CoverEdges, SwitchedOffNothingIsSearched) {
  start("ShowCoverArt=False\n");
  web.says(answer("large", "small"), {{"large", picture(600)}, {"small", picture(600)}});
  ASSERT_TRUE(support::Eventually([&] {
    return house.post("/api/play", {{"category", "Album"}, {"name", "Disc"}}) == 200;
  }));
  ASSERT_TRUE(house.textBecomes("Title", "Silence"));
  ASSERT_TRUE(house.textBecomes("Album", "Disc"));
  // A second of the title: far behind the moment at which a search would have begun.
  ASSERT_TRUE(support::Eventually(
      [&] { return support::JsonOf(house.get("/api/player")).value("position", 0.0) > 1; }));
  EXPECT_THAT(told(), IsEmpty());
  EXPECT_THAT(web.asked(), IsEmpty());
}

}  // namespace
