// The house speaks over music that really plays, and what leaves the player is listened to.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "demo/Sound.hpp"
#include "demo/Tags.hpp"
#include "standin/ear/NoRecogniser.hpp"
#include "standin/hearing/VoiceCommands.hpp"
#include "standin/hostobjects/HostWaits.hpp"
#include "standin/hostobjects/TopObjects.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/voice/Quiet.hpp"
#include "standin/voice/SoundCard.hpp"
#include "standin/voice/Speech.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace {

// More than what is on its way from the player to the card: a pipe, what the player has ready for it, and
// what its thread for the sound writes until it lets the one that stops it have its turn; and a small part of
// the title.
constexpr std::uint64_t kOnItsWay = std::uint64_t{2} << 20U;
constexpr std::uint64_t kSomeWords = std::uint64_t{256} << 10U;

/// Words that last as long as they are told to.
class Words : public standin::VoiceOutput {
 public:
  void say(const std::string& text) override { words(text); }
  void hush() override {}
  std::function<void(const std::string& text)> words;
};

/// The server's parts around speech, in this process, with the plug-in as its own.
class SpeechOverMusic : public testing::Test {
 protected:
  SpeechOverMusic() {
    engine::TrackTags tags;
    tags.title = "Long";
    tags.artist = tags.album = "Ann";
    tags.track = 1;
    const std::string path = (music.path() / "Long.flac").string();
    engine::demo::WriteSound(path, engine::demo::Tone(220, 900, 8000), engine::demo::FileFormat::kFlac);
    engine::demo::WriteTags(path, tags);
  }
  void TearDown() override { keeper.stop(); }
  void start(const std::string& whileSpeaking) {
    house.settings.save("vxif_WMP.ini", "Settings", "WhileSpeaking", whileSpeaking);
    connection.claimName("org.vantorix.Host");
    top.showOn(shelf);
    keeper.start();
    ASSERT_TRUE(turnUntil([&] { return keeper.state() == standin::PluginPhase::kReady; }));
    press("Restart");
    ASSERT_TRUE(turnUntil([&] { return card.loudBehind(kOnItsWay); }));
  }
  bool turnUntil(const std::function<bool()>& done) {
    return support::TurnUntil(loop, done, std::chrono::minutes(3));
  }
  void press(const std::string& button) {
    keeper.command([&](base::Object& vxif) { vxif.invoke("ButtonPress", button); },
                   [](const std::string& failure) { EXPECT_EQ(failure, ""); });
  }
  std::string status() {
    for (const auto& [ref, device] : house.devices.all())
      if (device.name == "Status") return device.text.substr(device.text.find('>') + 1);
    return {};
  }
  [[nodiscard]] std::string command() const {
    const std::string home = folder.path().string();
    return "/usr/bin/env -u DISPLAY -u WAYLAND_DISPLAY VANTORIX_MUSIC='" + music.path().string() +
           "' VANTORIX_AUDIO=pcm:" + pipe + " XDG_DATA_HOME=" + home + "/data XDG_CONFIG_HOME=" + home +
           "/config XDG_MUSIC_DIR=" + home + " " VXIF_PROGRAM;
  }
  /// Two texts, the second of which is asked for before the first has ended. Returns when both are over.
  void speakTwo(const std::function<void(const std::string& text)>& listen) {
    voice.words = [&](const std::string& text) {
      spoken.push_back(text);
      listen(text);
    };
    speech.speak("One", false);
    speech.speak("Two", true);
    EXPECT_EQ(spoken, (std::vector<std::string>{"One", "Two"}));
  }

  support::TempFolder folder;
  support::TempFolder music;
  const std::string pipe = (folder.path() / "sound").string();
  support::SoundCard card{pipe};
  support::BusDaemon bus{{{"org.vantorix.vxif_WMP9", command()}}};
  bus::PollLoop loop;
  bus::Connection connection{loop, bus.address()};
  standin::House house{folder.path() / "server"};
  standin::BusShelf shelf{connection};
  standin::HouseObjects objects{house, shelf};
  Words voice;
  std::vector<std::string> spoken;
  standin::Speech speech{loop, house, voice};
  standin::LoopWaits waits{loop, speech};
  standin::TopObjects top{house, objects, waits};
  standin::PluginKeeper keeper{loop, connection, house, top.callback};
  standin::PlayerLibrary library{loop, connection, keeper};
};

class CommandsOverMusic : public SpeechOverMusic {
 protected:
  /// What becomes of the player when "anna" has said it while "ben" speaks, and the house itself, too.
  void say(const std::string& text) {
    quiet.begin("anna");
    ASSERT_TRUE(turnUntil([&] { return status() == "Paused"; })) << status();
    quiet.begin("ben");
    bool answered = false;
    bool said = false;
    std::atomic<bool> speaks = false;
    voice.words = [&](const std::string&) {
      speaks = true;
      std::unique_lock lock(mutex);
      silent.wait(lock, [&] { return over; });
    };
    speech.speak("The house speaks", false, [&](const std::string&) { said = true; });
    ASSERT_TRUE(turnUntil([&] { return speaks.load(); }));
    commands.say({"anna"}, text, [&](const standin::Understanding& understood) {
      answered = true;
      EXPECT_EQ(understood.kind, standin::Understanding::Kind::kDone) << understood.says;
    });
    EXPECT_TRUE(turnUntil([&] { return answered; }));
    quiet.end("anna");
    quiet.end("ben");
    {
      const std::lock_guard lock(mutex);
      over = true;
    }
    silent.notify_all();
    EXPECT_TRUE(turnUntil([&] { return said; }));
  }

  void staysSilent() {
    ASSERT_TRUE(card.runsDry(kOnItsWay));
    const std::uint64_t before = card.heard();
    EXPECT_TRUE(card.runsDry(0));
    EXPECT_EQ(card.heard(), before);
    EXPECT_NE(status(), "Playing");
  }

  std::mutex mutex;
  std::condition_variable silent;
  bool over = false;
  standin::Quiet quiet{loop, speech.events()};
  standin::NoRecogniser ear{"There is none"};
  standin::VoiceCommands commands{{loop, house, objects, keeper, library, speech, ear}};
};

}  // namespace

TEST_F(SpeechOverMusic, PausesItOverBothTextsAndLetsItGoOnBehindTheLast) {
  start("Pause");
  std::uint64_t before = 0;
  std::uint64_t after = 0;
  speakTwo([&](const std::string& text) {
    if (text == "One") {
      EXPECT_TRUE(card.runsDry(kOnItsWay));
      before = card.heard();
    } else {
      EXPECT_TRUE(card.runsDry(0));
      after = card.heard();
    }
  });
  EXPECT_EQ(after, before) << "music between or under the texts";
  EXPECT_TRUE(turnUntil([&] { return card.loudBehind(after + kSomeWords); }));
  EXPECT_TRUE(turnUntil([&] { return status() == "Playing"; })) << status();
}

TEST_F(SpeechOverMusic, MutesItAndLetsItBeHeardBehindTheLastWord) {
  start("Mute");
  std::uint64_t silentFrom = 0;
  speakTwo([&](const std::string& text) {
    if (text == "One") {
      EXPECT_TRUE(card.hears(kOnItsWay));
      silentFrom = card.heard();
    }
    EXPECT_TRUE(card.hears(kSomeWords));  // it goes on without a sound
    EXPECT_FALSE(card.loudBehind(silentFrom));
  });
  EXPECT_TRUE(turnUntil([&] { return card.loudBehind(silentFrom); }));
}

TEST_F(SpeechOverMusic, LeavesItAsItIsWhereTheSettingSaysSo) {
  start("No Action");
  speakTwo([&](const std::string&) {
    EXPECT_TRUE(card.hears(kOnItsWay));
    const std::uint64_t mark = card.heard();
    EXPECT_TRUE(card.hears(kSomeWords));
    EXPECT_TRUE(card.loudBehind(mark));
  });
}

TEST_F(SpeechOverMusic, LeavesItPausedWhereTheUserHasPausedIt) {
  start("Pause");
  press("Pause");
  ASSERT_TRUE(turnUntil([&] { return status() == "Paused"; }));
  ASSERT_TRUE(card.runsDry(kOnItsWay));
  const std::uint64_t before = card.heard();
  speakTwo([](const std::string&) {});
  EXPECT_TRUE(card.runsDry(0));
  EXPECT_EQ(card.heard(), before);
}

TEST_F(CommandsOverMusic, WhatIsStoppedWhileOthersSpeakStaysStopped) {
  start("Pause");
  say("player stop");
  EXPECT_TRUE(turnUntil([&] { return status() == "Stopped"; })) << status();
  staysSilent();
}

TEST_F(CommandsOverMusic, WhatIsPausedWhileOthersSpeakStaysPaused) {
  start("Pause");
  say("player pause");
  EXPECT_TRUE(turnUntil([&] { return status() == "Paused"; })) << status();
  staysSilent();
}
