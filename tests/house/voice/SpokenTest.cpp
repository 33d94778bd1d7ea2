// Somebody speaks to a real house, and the music does as it was told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/fakes/Spoken.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using support::RealHouse;
using ::testing::HasSubstr;

namespace {

class SpokenTo : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    // The first look at the music folder goes on beside the start.
    ASSERT_TRUE(support::Eventually([&] {
      house.post("/api/command",
                 {{"ref", house.device("Quick Album").value("ref", 0)}, {"command", "value"}, {"value", 1}});
      return house.get("/api/voice").find("Counting") != std::string::npos;
    })) << house.log();
  }
  /// The understanding of a sound.
  RealHouse::Json understanding(const std::vector<std::int16_t>& sound) {
    const auto answer = house.client().Post("/api/voice/listen", {{"Origin", house.url()}},
                                            ear::SoundContent(sound), "audio/l16;rate=16000");
    return answer ? support::JsonOf(answer->body) : RealHouse::Json();
  }

  support::SmallMusic music;
  support::TempFolder programs;
  RealHouse house{{.music = music.path(),
                   .environment = {"PATH=" + programs.path().string() + ":" + std::getenv("PATH")}}};
};

TEST_F(SpokenTo, AnAlbumThatIsSaidPlays) {
  const std::vector<std::int16_t> sound = support::Spoken("play album counting");
  ASSERT_FALSE(sound.empty());
  // It hears by what it knew before until it has learnt the album.
  RealHouse::Json told;
  EXPECT_TRUE(support::Eventually([&] {
    told = understanding(sound);
    return told.value("heard", "") == "play album counting";
  })) << told;
  // Where the ear isn't sure it asks back, and is answered.
  if (told.value("kind", "") == "unclear") {
    EXPECT_EQ(told["choices"][0]["command"], "Play Album Counting");
    EXPECT_EQ(house.say("first"), 200);
  } else {
    EXPECT_EQ(told.value("kind", ""), "done") << told;
    EXPECT_EQ(told.value("says", ""), "Playing Counting by The Testers");
  }
  EXPECT_TRUE(house.textBecomes("Title", "One"));
  EXPECT_THAT(house.log(), HasSubstr("Voice: play album counting"));
}

/// A program takes the place of the one that records the room: somebody there says a sentence, again and
/// again until it is heard.
TEST_F(SpokenTo, TheRoomIsHeardOnceThatIsWished) {
  const std::vector<std::int16_t> sentence = support::Spoken("play album counting");
  ASSERT_FALSE(sentence.empty());
  std::vector<std::int16_t> sound(32000 + sentence.size() + 24000);
  for (std::size_t i = 0; i < sound.size(); ++i) {
    const std::size_t at = i < 32000 ? sentence.size() : i - 32000;
    sound[i] = static_cast<std::int16_t>((at < sentence.size() ? sentence[at] : 0) +
                                         static_cast<int>(i * 7919 % 21) - 10);
  }
  const std::string file = (programs.path() / "room").string();
  const std::string program = (programs.path() / "parec").string();
  std::ofstream(file, std::ios::binary) << ear::SoundContent(sound);
  std::ofstream(program) << "#!/bin/sh\nexec cat " << file << "\n";
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  EXPECT_EQ(support::JsonOf(house.get("/api/voice/room")).value("state", ""), "off");
  RealHouse::Json told;
  // The program ends behind its sentence, as a microphone that is pulled out does: it is started again.
  EXPECT_TRUE(support::Eventually([&] {
    house.post("/api/voice/room", {{"on", true}});
    told = support::JsonOf(house.get("/api/voice/room"));
    return told.contains("last") && told["last"].value("heard", "") == "play album counting";
  })) << told;
  if (told["last"].value("kind", "") == "unclear") {
    EXPECT_EQ(house.say("Play Album Counting"), 200);
  } else {
    EXPECT_EQ(told["last"].value("says", ""), "Playing Counting by The Testers") << told;
  }
  EXPECT_TRUE(house.textBecomes("Title", "One"));
  EXPECT_EQ(house.post("/api/voice/room", {{"on", false}}), 200);
  EXPECT_EQ(support::JsonOf(house.get("/api/voice/room")).value("state", ""), "off");
}

TEST_F(SpokenTo, SilenceIsNobody) {
  EXPECT_EQ(understanding(std::vector<std::int16_t>(32000, 0)).value("kind", ""), "silence");
  const RealHouse::Json state = support::JsonOf(house.get("/api/voice"));
  EXPECT_EQ(state["recogniser"]["state"], "ready");
  EXPECT_EQ(state["recogniser"]["missing"], "");
}

}  // namespace
