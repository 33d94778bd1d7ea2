#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "demo/Cover.hpp"
#include "house/CoverHouse.hpp"
#include "pictures/Picture.hpp"
#include "standin/coverservices/CoverServices.hpp"

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

constexpr const char* kServed = "/images/Media%20Player/WMPCoverSmall.jpg";
constexpr const char* kTag =
    R"(<img align=absmiddle src="images\Media Player\WMPCoverSmall.jpg"  width="75" height="75" border="0" ><br>)";

class AlbumWithACover : public support::CoverHouse {
 protected:
  void SetUp() override {
    engine::TrackTags tags;
    tags.title = "Inked";
    tags.artist = "The Painters";
    tags.album = "Framed";
    tags.track = 4;
    music.add("Inked", 20, tags, png);
    start();
  }

  const std::string png = engine::demo::CoverPng(5, 200);
};

}  // namespace

TEST_F(AlbumWithACover, IsOnItsDeviceAndServedWhileItPlaysAndGoesWithIt) {
  play("Framed");
  ASSERT_TRUE(support::Eventually([&] { return albumText() == std::string(kTag) + "Framed"; }))
      << albumText();
  EXPECT_EQ(house.get(kServed), png) << "the picture in the file serves as it is";

  play("Counting");
  ASSERT_TRUE(house.textBecomes("Title", "One"));
  EXPECT_TRUE(support::Eventually([&] { return house.get(kServed).empty(); }));
  EXPECT_THAT(albumText(), Not(HasSubstr("WMPCoverSmall")));

  play("Framed");
  ASSERT_TRUE(support::Eventually([&] { return house.get(kServed) == png; }));
  ASSERT_EQ(house.press("Status", "Stop"), 200);
  EXPECT_TRUE(house.textBecomes("Album", ""));
  EXPECT_TRUE(support::Eventually([&] { return house.get(kServed).empty(); }))
      << "so that no page shows the last album";
}

namespace {

/// The server's answers about covers.
class CoversOfTheHouse : public support::CoverHouse {
 protected:
  static engine::TrackTags tagsOf(const std::string& album) {
    engine::TrackTags tags;
    tags.title = "Song of " + album;
    tags.artist = "The Painters";
    tags.album = album;
    tags.track = 1;
    return tags;
  }
  void add(const std::string& album, const std::string& png = {}, const std::string& folder = {}) {
    std::filesystem::create_directories(music.path() + "/" + folder);
    music.add((folder.empty() ? folder : folder + "/") + album, 20, tagsOf(album), png);
  }
  /// The album in a file of another format.
  void addAs(const std::string& ending, const std::string& album, const std::string& png) {
    const std::string plain = music.path() + "/plain.wav";
    const std::string path = music.path() + "/" + album + "." + ending;
    engine::demo::WriteSound(plain, engine::demo::Tone(440, 20, 48000), engine::demo::FileFormat::kWav);
    const std::string command = "ffmpeg -loglevel error -y -i '" + plain + "' '" + path + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;  // NOLINT(cert-env33-c): the test's own words
    std::filesystem::remove(plain);
    engine::demo::WriteTags(path, tagsOf(album), png);
  }
  bool knows(const std::string& album) {
    std::string words = album;
    for (std::size_t at = words.find(' '); at != std::string::npos; at = words.find(' '))
      words.replace(at, 1, "%20");
    return support::Eventually([&] {
      return house.get("/api/library?category=Album&limit=1&fresh=1&group=" + words).find("Song of") !=
             std::string::npos;
    });
  }
  httplib::Result ask(const std::string& words, const httplib::Headers& headers = {}) {
    return house.client().Get("/api/cover" + words, headers);
  }
  static std::string typeOf(const httplib::Result& answer) {
    return answer ? answer->get_header_value("Content-Type") : "no answer";
  }
  /// The width of an album's picture; 0 where it is drawn.
  int widthOf(const std::string& album, int size = 1024) {
    const auto answer = ask("?album=" + album + "&size=" + std::to_string(size));
    return typeOf(answer) == "image/jpeg" ? pictures::SizeOf(answer->body).width : 0;
  }
};

TEST_F(CoversOfTheHouse, AreReadFromFilesOfAllFormats) {
  add("Flac", engine::demo::CoverPng(1, 301));
  addAs("mp3", "Mp3", engine::demo::CoverPng(1, 302));
  addAs("m4a", "M4a", engine::demo::CoverPng(1, 303));
  addAs("ogg", "Ogg", engine::demo::CoverPng(1, 304));
  addAs("opus", "Opus", engine::demo::CoverPng(1, 305));
  start();
  int width = 301;
  for (const char* album : {"Flac", "Mp3", "M4a", "Ogg", "Opus"}) {
    ASSERT_TRUE(knows(album)) << album;
    EXPECT_EQ(widthOf(album), width++) << album;
    EXPECT_EQ(widthOf(album, 256), 256) << album;
    // And the plug-in's own search finds it when the album is played.
    play(album);
    EXPECT_TRUE(support::Eventually([&] {
      const std::string text = albumText();
      return text.find("WMPCoverSmall") != std::string::npos && text.ends_with(album);
    })) << album
        << house.device("Album");
  }
}

TEST_F(CoversOfTheHouse, AreKeptByContentAndTheirAddressByKeyIsForEver) {
  add("Framed", engine::demo::CoverPng(5, 400));
  start();
  ASSERT_TRUE(knows("Framed"));
  const auto first = ask("?album=Framed&artist=The%20Painters&size=256");
  ASSERT_EQ(first->status, 200);
  EXPECT_EQ(first->get_header_value("Cache-Control"), "private, no-cache");
  const std::string mark = first->get_header_value("ETag");
  EXPECT_EQ(ask("?album=Framed&size=256", {{"If-None-Match", mark}})->status, 304);

  play("Framed");
  ASSERT_TRUE(house.textBecomes("Title", "Song of Framed"));
  const auto told = support::JsonOf(ask("/key?playing")->body);
  EXPECT_EQ(told.value("album", ""), "Framed");
  EXPECT_EQ(told.value("title", ""), "Song of Framed");
  const std::string key = told.value("key", "");
  for (const std::string size : {"256", "1024"}) {
    const auto lasting = ask("?key=" + key + "&size=" + size);
    ASSERT_EQ(lasting->status, 200);
    EXPECT_EQ(lasting->get_header_value("Cache-Control"), "private, max-age=31536000, immutable");
    EXPECT_EQ(ask("?playing&size=" + size)->body, lasting->body);
  }
  EXPECT_EQ(ask("?key=" + std::string(32, '0') + "&size=256")->status, 404);
  EXPECT_EQ(ask("?key=..%2F..%2Fhouse.db&size=256")->status, 404);
  EXPECT_EQ(ask("?album=Framed&size=300")->status, 400);
  EXPECT_EQ(ask("?album=Framed")->status, 400);
  EXPECT_EQ(ask("?size=256")->status, 400);
}

TEST_F(CoversOfTheHouse, AreDrawnWhereThereIsNone) {
  add("Nothing Inside");
  lay("cover.jpg", "a text under the name of a picture");
  start();
  ASSERT_TRUE(knows("Nothing Inside"));
  for (const std::string album : {"Nothing%20Inside", "Never%20Heard%20Of"}) {
    const auto drawn = ask("?album=" + album + "&size=256");
    ASSERT_EQ(drawn->status, 200);
    EXPECT_EQ(typeOf(drawn), "image/svg+xml");
    EXPECT_THAT(drawn->body, HasSubstr(album[2] == 't' ? ">NI<" : ">NH<"));
    EXPECT_EQ(
        ask("?album=" + album + "&size=256", {{"If-None-Match", drawn->get_header_value("ETag")}})->status,
        304);
  }
  EXPECT_EQ(support::JsonOf(ask("/key?album=Nothing%20Inside")->body).value("key", "-"), "");
}

TEST_F(CoversOfTheHouse, FollowAFoldersPictureThatChangesWhileTheHouseRuns) {
  add("Changing", engine::demo::CoverPng(5, 400), "folder");
  start();
  ASSERT_TRUE(knows("Changing"));
  EXPECT_EQ(widthOf("Changing"), 400) << "the one in the file";
  lay("folder/Folder.JPG", engine::demo::CoverPng(6, 500));
  EXPECT_EQ(widthOf("Changing"), 500);
  lay("folder/cover.png", engine::demo::CoverPng(7, 600));
  EXPECT_EQ(widthOf("Changing"), 600);
  lay("folder/cover.png", engine::demo::CoverPng(7, 610));
  EXPECT_EQ(widthOf("Changing"), 610) << "the same name with another picture";
  std::filesystem::remove(music.path() + "/folder/cover.png");
  std::filesystem::remove(music.path() + "/folder/Folder.JPG");
  EXPECT_EQ(widthOf("Changing"), 400);
}

TEST_F(CoversOfTheHouse, TakeTheUsersOwnChoiceBeforeAllOthers) {
  add("Chosen", engine::demo::CoverPng(5, 400), "folder");
  lay("folder/cover.png", engine::demo::CoverPng(6, 500));
  start();
  ASSERT_TRUE(knows("Chosen"));
  const std::filesystem::path own = house.folder() / "data" / "vantorix" / "player" / "covers";
  std::filesystem::create_directories(own);
  std::ofstream(own / "chosen.png", std::ios::binary) << engine::demo::CoverPng(7, 600);
  EXPECT_EQ(widthOf("Chosen"), 600);
  std::ofstream(own / "The Painters - CHOSEN.png", std::ios::binary) << engine::demo::CoverPng(7, 610);
  EXPECT_EQ(widthOf("Chosen"), 610) << "that of the artist's album before that of any album of this name";
}

TEST_F(CoversOfTheHouse, AreTheSameAfterAStartAndWithoutAPlaceToKeepThem) {
  add("Framed", engine::demo::CoverPng(5, 400));
  start();
  ASSERT_TRUE(knows("Framed"));
  const auto kept = house.data() / "covers";
  EXPECT_EQ(widthOf("Framed"), 400);
  EXPECT_TRUE(std::filesystem::exists(kept / "marks"));
  const std::string key = support::JsonOf(ask("/key?album=Framed")->body).value("key", "");
  const std::string picture = ask("?key=" + key + "&size=256")->body;
  house.server().signal(SIGTERM);
  house.server().wait();
  start();
  EXPECT_EQ(ask("?key=" + key + "&size=256")->body, picture) << "by its key, before anybody asks for it";
  ASSERT_TRUE(knows("Framed"));
  EXPECT_EQ(support::JsonOf(ask("/key?album=Framed")->body).value("key", ""), key);
  EXPECT_EQ(widthOf("Framed"), 400);
  std::filesystem::remove_all(kept);
  std::ofstream(kept) << "a file where the folder was";
  EXPECT_EQ(widthOf("Framed"), 400);
  EXPECT_EQ(widthOf("Framed", 256), 256);
}

/// A track of a disc, in a house that names itself for the covers of discs.
class ADiscOfTheHouse : public support::CoverHouse {
 protected:
  void SetUp() override {
    music.add("Silence", 20, discTags());
    house.configurePlayer("[network]\nmetadata = http://localhost\ncover = http://localhost/cover/\n");
    std::filesystem::create_directories(house.data() / "config");
    std::ofstream(house.data() / "config" / "covers.ini")
        << "[services]\nmetadata=" << services.address() << "\ncovers=" << services.address() << "\n";
    start();
  }

  support::CoverServices services;
};

TEST_F(ADiscOfTheHouse, IsNothingThatStrangersCanAskForByWayOfAnotherServer) {
  ASSERT_EQ(house.post("/api/covers/services", {{"on", true}}), 200);
  const std::string release = std::string("/cover/?large=") + support::CoverServices::kRelease;
  for (const std::string& path : {std::string("/redir/GetMDRCD.asp?cd=2+96+12C+20D"), release})
    for (const char* header : {"X-Forwarded-For", "Forwarded", "X-Real-IP", "Via"})
      EXPECT_EQ(house.client().Get(path, {{header, "for=203.0.113.7"}})->status, 403)
          << path << " " << header;
  EXPECT_TRUE(services.asked().empty());
}

TEST_F(ADiscOfTheHouse, GetsItsCoverFromTheServicesOnceTheOwnerHasSwitchedThemOn) {
  services.stored = engine::demo::CoverPng(9, 420);
  EXPECT_EQ(house.client().Get("/redir/GetMDRCD.asp?cd=2+96+12C+20D")->status, 404);
  EXPECT_TRUE(services.asked().empty()) << "off until it is switched on";
  ASSERT_EQ(house.post("/api/covers/services", {{"on", true}}), 200);

  play("Disc");
  ASSERT_TRUE(showsCover()) << house.log();
  EXPECT_EQ(services.asked().size(), 3U);
  EXPECT_EQ(house.get("/images/Media%20Player/WMPCoverLarge.jpg"), services.stored);
  const auto shown = house.client().Get("/api/cover?playing&size=1024");
  EXPECT_EQ(shown->get_header_value("Content-Type"), "image/jpeg");
  EXPECT_EQ(pictures::SizeOf(shown->body).width, 420);
}

}  // namespace
