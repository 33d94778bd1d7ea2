// Rows of playlists, played by the player itself.
#include <gtest/gtest.h>

#include <fstream>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using support::RealHouse;
using Json = RealHouse::Json;

namespace {

/// Rows of a playlist that another program has written: a title of the library, titles from elsewhere.
class PlaylistRows : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::filesystem::path lists = std::filesystem::path(music.path()) / "Playlists";
    std::filesystem::create_directories(lists);
    std::ofstream(lists / "Radio.m3u8") << "#EXTM3U\n#PLAYLIST:Radio\n"
                                        << music.path() << "/Two.flac\n"
                                        << "#EXTINF:60,Ann - Outside\n"
                                        << elsewhere.path() << "/One.flac\n"
                                        << "#EXTINF:60,Ben - Twin\n"
                                        << elsewhere.path() << "/Two.flac\n"
                                        << "#EXTINF:60,Cas - Twin\n"
                                        << elsewhere.path() << "/Three.flac\n";
    ASSERT_TRUE(house.startReady()) << house.server().output();
    ASSERT_TRUE(support::Eventually([&] {
      const std::string answer = house.get("/api/playlist?fresh=1&offset=0&limit=10&group=Radio");
      if (answer.empty()) return false;
      page = support::JsonOf(answer);
      return page.value("names", Json()) == Json({"Two", "Outside", "Twin", "Twin"});
    })) << page;
  }
  int play(std::size_t at) {
    return house.post("/api/play", {{"category", "PlayList"},
                                    {"name", "Radio"},
                                    {"at", at},
                                    {"title", page.at("names").at(at)},
                                    {"mark", page.at("titles").at(at).at("mark")}});
  }

  support::SmallMusic music{60};
  support::SmallMusic elsewhere{60};
  RealHouse house{{.music = music.path()}};
  Json page;
};

}  // namespace

TEST_F(PlaylistRows, FromElsewhereKeepTheNamesThatTheListGivesThem) {
  EXPECT_EQ(play(1), 200);
  EXPECT_TRUE(house.textBecomes("Title", "Outside"));
  EXPECT_TRUE(house.textBecomes("Artist", "Ann"));
  EXPECT_EQ(play(0), 200);
  EXPECT_TRUE(house.textBecomes("Title", "Two"));
  EXPECT_TRUE(house.textBecomes("Artist", "The Testers"));
}

TEST_F(PlaylistRows, OfOneNameArePlayedEachForItself) {
  EXPECT_EQ(play(3), 200);
  EXPECT_TRUE(house.textBecomes("Artist", "Cas"));
  EXPECT_EQ(house.text("Title"), "Twin");
  EXPECT_EQ(play(2), 200);
  EXPECT_TRUE(house.textBecomes("Artist", "Ben"));
}

TEST_F(PlaylistRows, AreAddedToAnotherListUnderTheirNames) {
  EXPECT_EQ(play(1), 200);
  ASSERT_TRUE(house.textBecomes("Title", "Outside"));
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const base::ObjectRef script = connection.proxy("org.vantorix.vxif_WMP9", "/scriptclass");
  script->invoke("AddToPlayList", "", "", "", "Kept");
  const std::string kept = house.get("/api/playlist?fresh=1&offset=0&limit=10&group=Kept");
  EXPECT_EQ(support::JsonOf(kept).at("names"), Json({"Outside"}));
  EXPECT_EQ(support::JsonOf(kept).at("titles").at(0).at("artist"), "Ann");
  EXPECT_EQ(support::JsonOf(house.get("/api/library?category=Album&offset=0&limit=10")).at("names"),
            Json({"Counting"}))
      << "the library keeps none of it";
}
