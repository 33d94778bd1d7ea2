// Lists of addresses under the names of music and of videos: what comes from a file opens that file only.

#include <gmock/gmock.h>

#include <algorithm>

#include "engine/common/Fixtures.hpp"
#include "engine/common/SmallServer.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/common/ToldByOutput.hpp"
#include "engine/decoder/MpvOutput.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A list of pieces of sound.
std::string Pieces(const std::string& address, const std::string& line = {}) {
  return "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:9\n#EXT-X-MEDIA-SEQUENCE:0\n" + line +
         "#EXTINF:5,\n" + address + "\n#EXT-X-ENDLIST\n";
}

/// A list of lists of pieces.
std::string Choices(const std::string& address, const std::string& line = {}) {
  return "#EXTM3U\n#EXT-X-VERSION:4\n" + line + "#EXT-X-STREAM-INF:BANDWIDTH=128000,CODECS=\"mp4a.40.2\"\n" +
         address + "\n";
}

std::string Dash(const std::string& address) {
  return "<?xml version=\"1.0\"?>\n<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" type=\"static\" "
         "mediaPresentationDuration=\"PT5S\" "
         "profiles=\"urn:mpeg:dash:profile:isoff-on-demand:2011\">\n<Period>"
         "<AdaptationSet mimeType=\"audio/mp4\"><Representation id=\"1\" bandwidth=\"128000\"><BaseURL>" +
         address + "</BaseURL></Representation></AdaptationSet></Period></MPD>\n";
}

/// What asks the receiver to listen or to connect for sound.
std::string Session(const std::string& port, const std::string& way) {
  return "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio " + port + " " + way +
         " 0\na=rtpmap:0 PCMU/8000\n";
}

class ADisguisedList : public PlayerTest {
 protected:
  ADisguisedList() {
    good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
    fs::create_directories(folder / "bad");
    const std::string away = neighbour / "away";
    const std::string quoted = "\"" + away + "\"";
    const std::string inner = "data:application/vnd.apple.mpegurl," + Pieces(away);
    disguise("list.mp3", "#EXTM3U\n" + away + "\n");
    disguise("list.m3u8", "#EXTM3U\n#EXTINF:5,x\n" + away + "\n");
    disguise("plain.m3u", away + "\n");
    disguise("pls.wma", "[playlist]\nFile1=" + away + "\nNumberOfEntries=1\n");
    disguise("reference.wmv", "[Reference]\nRef1=" + away + "\n");
    disguise("shortcut.wav", "[InternetShortcut]\nURL=" + away + "\n");
    disguise("asx.asf", "<asx version=\"3.0\"><entry><ref href=" + quoted + "/></entry></asx>\n");
    disguise("pieces.ts", Pieces(away));
    disguise("pieces.aac", Pieces(away));
    disguise("pieces.m3u8", Pieces(away));
    disguise("choices.mp4", Choices(away));
    disguise("tagged.mp3", Id3Tag(4, "") + Pieces(away));
    disguise("key.aac", Pieces("data:,x", "#EXT-X-KEY:METHOD=AES-128,URI=" + quoted + "\n"));
    disguise("map.mp4", Pieces("data:,x", "#EXT-X-MAP:URI=" + quoted + "\n"));
    disguise("second.avi",
             Choices("data:,x", "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"n\",URI=" + quoted + "\n"));
    disguise("inner.ts", Choices(inner));
    disguise("concat.avi", "ffconcat version 1.0\nfile '" + away + "'\n");
    disguise("concat2.aac", "ffconcat version 1.0\nfile " + away + "\noption safe 0\n");
    disguise("deep.avi", "ffconcat version 1.0\nfile 'pieces.ts'\nfile 'choices.mp4'\n");
    disguise("deeper.ts", Choices(folder / "bad/pieces.m3u8"));
    disguise("relative.ts", Choices("pieces.m3u8"));
    disguise("edl.wmv", "# mpv EDL v0\n" + away + "\n");
    disguise("edl.aac", "mplayer EDL file, version 2\n" + away + ",0,5\n");
    disguise("streams.ts", "# mpv EDL v0\n" + away + "\n!new_stream\n" + away + "\n");
    disguise("sheet.flac", "FILE " + quoted + " WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
    disguise("dash.mp4", Dash(away));
    disguise("dash.webm", Dash(away));
    disguise("session.ts", Session(neighbour.port(), "RTP/AVP/TCP"));
    disguise("session.avi", Session("0", "RTP/AVP"));
    disguise("rtsp.mov", "RTSPtext\nrtsp://127.0.0.1:" + neighbour.port() + "/away\n");
    disguise(
        "composition.mxf",
        "<?xml version=\"1.0\"?>\n<CompositionPlaylist xmlns=\"http://www.smpte-ra.org/schemas/2067-3/2016\">"
        "<Id>" +
            away + "</Id></CompositionPlaylist>\n");
  }

  void disguise(const std::string& name, const std::string& text) {
    writeText(folder / ("bad/" + name), text);
    disguises.push_back(folder / ("bad/" + name));
  }

  /// Plays them one behind the other, to the end.
  void play(const std::vector<std::string>& items) {
    std::string text = "#EXTM3U\n";
    for (const std::string& item : items) text += item + "\n";
    writeText(folder / "playlists/L.m3u8", text);
    startWith(1);
    player->currentPlaylist(player->playlistCollection().getByName("L")->item(0));
    ASSERT_EQ(player->currentPlaylist()->count(), static_cast<std::int32_t>(items.size()));
    player->controls().play();
    EXPECT_TRUE(untilState(player::kStopped));
  }
  /// Each followed by that item.
  [[nodiscard]] std::vector<std::string> between(const std::string& item) const {
    std::vector<std::string> items{item};
    for (const std::string& path : disguises) items.insert(items.end(), {path, item});
    return items;
  }

  SmallServer neighbour;
  std::string good;
  std::vector<std::string> disguises;
};

TEST_F(ADisguisedList, AsksNothingOfAnyServerAndEachIsToldAsFailed) {
  play(between(good));
  EXPECT_THAT(neighbour.asked(), IsEmpty());
  EXPECT_EQ(told.errors, static_cast<int>(disguises.size()));
}

TEST_F(ADisguisedList, BehindAStationAsksNothingEither) {
  neighbour.sends("/radio", Content(good), "audio/flac");
  play(between(neighbour / "radio"));
  const auto asked = neighbour.asked();
  EXPECT_EQ(std::count(asked.begin(), asked.end(), "/away"), 0);
  EXPECT_GE(std::count(asked.begin(), asked.end(), "/radio"), static_cast<long>(disguises.size()) + 1);
  EXPECT_EQ(told.errors, static_cast<int>(disguises.size()));
}

TEST_F(ADisguisedList, PlayedByItselfAsksNothing) {
  startWith(1);
  for (const std::string& path : disguises) {
    const int before = told.errors;
    player->URL(path);
    player->controls().play();
    ASSERT_TRUE(until([&] { return told.errors > before; })) << path;
    EXPECT_THAT(neighbour.asked(), IsEmpty()) << path;
  }
}

TEST_F(ADisguisedList, BeforeAStationAsksNothingEither) {
  neighbour.sends("/radio", Content(good), "audio/flac");
  for (std::size_t i = 0; i < disguises.size(); ++i) {
    writeText(folder / ("playlists/" + std::to_string(i) + ".m3u8"),
              "#EXTM3U\n" + disguises[i] + "\n" + (neighbour / "radio") + "\n");
  }
  startWith(1);
  for (std::size_t i = 0; i < disguises.size(); ++i) {
    const int before = told.errors;
    told.states.clear();
    player->currentPlaylist(player->playlistCollection().getByName(std::to_string(i))->item(0));
    player->controls().play();
    ASSERT_TRUE(untilState(player::kStopped)) << disguises[i];
    EXPECT_EQ(told.errors, before + 1) << disguises[i];
    const auto asked = neighbour.asked();
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "/away"), 0) << disguises[i];
    EXPECT_NE(std::count(asked.begin(), asked.end(), "/radio"), 0) << disguises[i];
  }
}

TEST_F(ADisguisedList, GainsNothingFromWhatIsAppendedBeforeItIsOpened) {
  neighbour.sends("/radio", Content(good), "audio/flac");
  ToldByOutput heard;
  MpvOutput output(
      loop, config, [](const std::string&, int) { return std::nullopt; }, [](const std::string&) {});
  output.listener(heard);
  EntryId entry = 0;
  for (const std::string& path : disguises) {
    output.load(++entry, path);
    const EntryId bad = entry;
    output.append(++entry, neighbour / "radio");
    EXPECT_TRUE(until([&] { return !heard.failedOnes.empty() && heard.failedOnes.back() == bad; })) << path;
    const auto asked = neighbour.asked();
    ASSERT_EQ(std::count(asked.begin(), asked.end(), "/away"), 0) << path;
  }
}

TEST_F(ADisguisedList, TakesNothingFromAStationThatStandsBeforeIt) {
  neighbour.sends("/radio", Content(good), "audio/flac");
  neighbour.sends("/list.m3u", "#EXTM3U\n" + (neighbour / "radio") + "\n", "audio/x-mpegurl");
  ToldByOutput heard;
  MpvOutput output(
      loop, config, [](const std::string&, int) { return std::nullopt; }, [](const std::string&) {});
  output.listener(heard);
  output.load(1, neighbour / "list.m3u");
  output.append(2, disguises.front());
  EXPECT_TRUE(until([&] { return !heard.failedOnes.empty(); }));
  EXPECT_THAT(heard.startedOnes, ElementsAre(1U));
  EXPECT_THAT(heard.failedOnes, ElementsAre(2U));
}

TEST_F(ADisguisedList, LeavesAStationFreeToLeadOnFromListToList) {
  neighbour.sends("/piece.aac", Content(good), "audio/flac");
  neighbour.sends("/pieces.m3u8", Pieces(neighbour / "piece.aac"), "application/vnd.apple.mpegurl");
  neighbour.sends("/first.m3u", "#EXTM3U\n" + (neighbour / "second.pls") + "\n", "audio/x-mpegurl");
  neighbour.sends("/second.pls", "[playlist]\nFile1=" + (neighbour / "pieces.m3u8") + "\nNumberOfEntries=1\n",
                  "audio/x-scpls");
  play({good, neighbour / "first.m3u", good, neighbour / "pieces.m3u8"});
  const auto asked = neighbour.asked();
  for (const char* path : {"/first.m3u", "/second.pls", "/pieces.m3u8", "/piece.aac"})
    EXPECT_NE(std::count(asked.begin(), asked.end(), path), 0) << path;
}

}  // namespace
}  // namespace engine::testing
