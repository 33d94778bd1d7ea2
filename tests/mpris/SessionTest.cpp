#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "OnTheBus.hpp"
#include "files/Descriptor.hpp"

using mpris::MediaControls;
using mpris_test::BusUser;
using mpris_test::OnTheBus;
using ::testing::ElementsAre;
using ::testing::Lt;
using namespace std::chrono_literals;

namespace {

class TheSession : public OnTheBus {
 protected:
  /// The last volume that was told; -1 where none was.
  double volumeTold() {
    for (; heard_ < user->signals().size(); ++heard_) {
      const auto& signal = user->signals()[heard_];
      const char* interface = nullptr;
      if (sd_bus_message_read(signal.get(), "s", &interface) < 0) continue;
      if (sd_bus_message_enter_container(signal.get(), 'a', "{sv}") <= 0) continue;
      const char* key = nullptr;
      while (sd_bus_message_enter_container(signal.get(), 'e', "sv") > 0) {
        sd_bus_message_read(signal.get(), "s", &key);
        if (std::string_view(key) == "Volume")
          sd_bus_message_read(signal.get(), "v", "d", &volume_);
        else
          sd_bus_message_skip(signal.get(), "v");
        sd_bus_message_exit_container(signal.get());
      }
    }
    return volume_;
  }

 private:
  std::size_t heard_ = 0;
  double volume_ = -1;
};

/// A socket at which nobody answers as a bus does.
class Listener {
 public:
  explicit Listener(const std::filesystem::path& folder) : path_((folder / "silent").string()) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.copy(address.sun_path, sizeof address.sun_path - 1);
    if (::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket_.get(), 5) != 0)
      throw std::runtime_error("no socket");
  }
  [[nodiscard]] std::string address() const { return "unix:path=" + path_; }
  /// Closes on whoever has come.
  void turnAway() const { const files::Descriptor come(::accept(socket_.get(), nullptr, nullptr)); }

 private:
  files::Descriptor socket_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
  std::string path_;
};

}  // namespace

TEST_F(TheSession, ThePlayerIsSeenOnceThePlugInsStartIsOver) {
  player.ready = false;
  bus.emplace();
  controls.emplace(parts());
  user.emplace(loop, bus->address());
  for (int i = 0; i < 20; ++i) {
    clock.skip(200ms);
    loop.pump();
  }
  EXPECT_FALSE(user->sees(MediaControls::kBusName));
  EXPECT_EQ(lookedFor, 0);
  player.ready = true;
  ASSERT_TRUE(appears());
  EXPECT_TRUE(user->sees(MediaControls::kBusName));
}

TEST_F(TheSession, WhatIsWantedReachesThePlayerByName) {
  appear();
  EXPECT_EQ(user->call(kPlayer, "PlayPause").error(), "");
  EXPECT_EQ(user->call(kPlayer, "Next").error(), "");
  EXPECT_EQ(user->call(kProperties, "Set", "ssv", kPlayer, "Volume", "d", 0.25).error(), "");
  EXPECT_EQ(user->call(nullptr, "Stop").error(), "") << "a caller need not name the interface";
  EXPECT_THAT(player.journal.lines(), ElementsAre("PausePlayer", "PlayNext", "Volume = 25", "StopPlayer"));
}

TEST_F(TheSession, PropertiesAreReadInTheTypesOfTheInterface) {
  appear();
  player.now["position"] = 12.5;
  EXPECT_EQ(user->get(kPlayer, "PlaybackStatus").text(), "Playing");
  EXPECT_EQ(user->get(kRoot, "Identity").text(), "Vantorix Media Player");
  EXPECT_EQ(user->get(kRoot, "DesktopEntry").text(), "vantorix-media-player");
  std::int64_t position = 0;
  EXPECT_GT(sd_bus_message_read(user->get(kPlayer, "Position").message.get(), "v", "x", &position), 0);
  EXPECT_EQ(position, 12'500'000);
  for (const char* interface : {kRoot, kPlayer, kPlaylists}) {
    const auto all = user->call(kProperties, "GetAll", "s", interface);
    EXPECT_EQ(all.error(), "");
    EXPECT_STREQ(sd_bus_message_get_signature(all.message.get(), 1), "a{sv}");
  }
  const auto metadata = user->get(kPlayer, "Metadata");
  char type = 0;
  const char* contents = nullptr;
  sd_bus_message_peek_type(metadata.message.get(), &type, &contents);
  EXPECT_STREQ(contents, "a{sv}");
}

TEST_F(TheSession, WhatChangesIsTold) {
  appear();
  player.now["volume"] = 80;
  controls->changed();
  EXPECT_TRUE(user->until([&] {
    clock.skip(30ms);
    return volumeTold() == 0.8;
  }));
}

TEST_F(TheSession, WhatFitsNoMethodIsRefusedWithTheBusesOwnErrors) {
  appear();
  const std::string name = "org.freedesktop.DBus.Error.";
  EXPECT_EQ(user->call(kPlayer, "Seek", "i", 5).error(), name + "InvalidArgs");
  EXPECT_EQ(user->call(kPlayer, "Seek").error(), name + "InvalidArgs");
  EXPECT_EQ(user->call(kPlayer, "Next", "s", "x").error(), name + "InvalidArgs");
  EXPECT_EQ(user->call(kPlayer, "SetPosition", "sx", "/a", std::int64_t{1}).error(), name + "InvalidArgs");
  EXPECT_EQ(user->call(kPlayer, "Leap").error(), name + "UnknownMethod");
  EXPECT_EQ(user->call("org.example.Player", "Next").error(), name + "UnknownInterface");
  EXPECT_EQ(user->callAt("/org/example", kPlayer, "Next").error(), name + "UnknownObject");
  EXPECT_EQ(user->get(kPlayer, "Colour").error(), name + "UnknownProperty");
  EXPECT_EQ(user->get("org.example.Player", "Volume").error(), name + "UnknownInterface");
  EXPECT_EQ(user->call(kProperties, "GetAll", "s", "org.example").error(), name + "UnknownInterface");
  EXPECT_EQ(user->call(kProperties, "Set", "ssv", kPlayer, "Volume", "s", "loud").error(),
            name + "InvalidArgs");
  EXPECT_EQ(user->call(kProperties, "Set", "ssv", kPlayer, "Volume", "as", 1, "loud").error(),
            name + "InvalidArgs");
  EXPECT_EQ(user->call(kProperties, "Set", "ssv", kPlayer, "Volume", "v", "v", "d", 0.5).error(),
            name + "InvalidArgs");
  EXPECT_EQ(user->call(kProperties, "Set", "ssv", kPlayer, "PlaybackStatus", "s", "Playing").error(),
            name + "PropertyReadOnly");
  EXPECT_EQ(user->call(kPlayer, "OpenUri", "s", ("http://" + std::string(20'000, 'a')).c_str()).error(),
            name + "InvalidArgs");
  EXPECT_EQ(user->call(kPlayer, "OpenUri", "s", "nothing").error(), name + "NotSupported");
  EXPECT_TRUE(player.journal.lines().empty());
  EXPECT_EQ(user->get(kPlayer, "PlaybackStatus").text(), "Playing");
}

TEST_F(TheSession, PingAndTheWayToTheObjectAreAnswered) {
  appear();
  EXPECT_EQ(user->call("org.freedesktop.DBus.Peer", "Ping").error(), "");
  EXPECT_THAT(user->callAt("/", "org.freedesktop.DBus.Introspectable", "Introspect").text(),
              ::testing::HasSubstr("<node name=\"org\"/>"));
  EXPECT_THAT(user->callAt("/org/mpris", "org.freedesktop.DBus.Introspectable", "Introspect").text(),
              ::testing::HasSubstr("<node name=\"MediaPlayer2\"/>"));
}

TEST_F(TheSession, ThousandsOfCallsAreAllAnsweredAndOthersHaveTheirTurns) {
  appear();
  constexpr int kCalls = 5000;
  int replies = 0;
  for (int i = 0; i < kCalls; ++i) user->send(kPlayer, "Next", replies);
  int turns = 0;
  std::function<void()> again = [&] {
    ++turns;
    if (replies < kCalls) loop.post(again);
  };
  loop.post(again);
  ASSERT_TRUE(user->until([&] { return replies == kCalls; }));
  EXPECT_EQ(player.journal.count("PlayNext"), static_cast<std::size_t>(kCalls));
  EXPECT_GT(turns, kCalls / 2);
}

TEST_F(TheSession, CallsAreNeverServedWithinEachOther) {
  appear();
  int depth = 0;
  int deepest = 0;
  player.onAct = [&](const std::string&) {
    deepest = std::max(deepest, ++depth);
    for (int i = 0; i < 5; ++i) loop.pump();
    --depth;
  };
  int replies = 0;
  for (int i = 0; i < 300; ++i) user->send(kPlayer, "Next", replies);
  ASSERT_TRUE(user->until([&] { return replies == 300; }));
  EXPECT_EQ(deepest, 1);
}

TEST_F(TheSession, ABusThatTakesNothingIsNotWaitedForAndTheLatestIsToldBehind) {
  appear();
  bus->stand();
  int last = -1;
  int blockedFor = 0;
  for (int i = 0; i < 200'000 && blockedFor < 50; ++i) {
    const int before = player.nowRead;
    player.now["volume"] = i % 100;
    last = i % 100;
    controls->changed();
    clock.skip(30ms);
    loop.pump();
    blockedFor = player.nowRead == before ? blockedFor + 1 : 0;
  }
  EXPECT_EQ(blockedFor, 50) << "what can't be told isn't even looked at";
  bus->goOn();
  EXPECT_TRUE(user->until([&] {
    clock.skip(30ms);
    return volumeTold() == last / 100.0;
  }));
  EXPECT_TRUE(controls->seen());
}

TEST_F(TheSession, WithoutABusItIsLookedForAtGrowingPauses) {
  controls.emplace(parts());
  for (int second = 0; second < 1200; ++second) {
    clock.skip(500ms);
    loop.pump();
  }
  EXPECT_GE(lookedFor, 10);
  EXPECT_LE(lookedFor, 20) << "in ten minutes";
  bus.emplace();
  EXPECT_TRUE(appears());
}

TEST_F(TheSession, ABusThatGoesIsFoundAgain) {
  appear();
  for (int i = 0; i < 3; ++i) {
    user.reset();
    bus->kill();
    ASSERT_TRUE(mpris_test::TurnUntil(loop, [&] { return !controls->seen(); }));
    bus.reset();
    for (int j = 0; j < 10; ++j) {
      clock.skip(1s);
      loop.pump();
    }
    bus.emplace();
    ASSERT_TRUE(appears());
    user.emplace(loop, bus->address());
    EXPECT_EQ(user->get(kPlayer, "PlaybackStatus").text(), "Playing");
  }
}

TEST_F(TheSession, ABusThatGoesInTheMiddleOfACallHarmsNothing) {
  appear();
  player.onAct = [&](const std::string&) {
    bus->kill();
    for (int i = 0; i < 50; ++i) loop.pump();
  };
  int replies = 0;
  for (int i = 0; i < 10; ++i) user->send(kPlayer, "Next", replies);
  EXPECT_TRUE(user->until([&] { return player.journal.has("PlayNext") && !controls->seen(); }));
  player.onAct = nullptr;
  user.reset();
  bus.reset();
  bus.emplace();
  EXPECT_TRUE(appears());
}

TEST_F(TheSession, WhoNeverAnswersIsNotWaitedFor) {
  const support::TempFolder folder;
  const Listener silent(folder.path());
  auto in = parts();
  in.address = [&] {
    ++lookedFor;
    return silent.address();
  };
  controls.emplace(in);
  EXPECT_TRUE(mpris_test::TurnUntil(loop, [&] {
    clock.skip(200ms);
    return lookedFor == 1;
  }));
  bool turned = false;
  loop.post([&] { turned = true; });
  loop.pump();
  EXPECT_TRUE(turned);
  silent.turnAway();
  EXPECT_TRUE(mpris_test::TurnUntil(loop, [&] {
    clock.skip(200ms);
    return lookedFor == 2;
  })) << "it is tried again";
  EXPECT_FALSE(controls->seen());
}

TEST_F(TheSession, AnotherUsersBusIsNotTaken) {
  bus.emplace();
  auto in = parts();
  in.user = ::geteuid() + 1;
  controls.emplace(in);
  EXPECT_TRUE(mpris_test::TurnUntil(loop, [&] {
    clock.skip(200ms);
    return lookedFor == 3;
  }));
  user.emplace(loop, bus->address());
  EXPECT_FALSE(controls->seen());
  EXPECT_FALSE(user->sees(MediaControls::kBusName));
}

TEST_F(TheSession, ASecondHouseOfTheUserHasANameOfItsOwn) {
  appear();
  mpris_test::RecordingPlayer other;
  other.plays("Two");
  auto in = parts();
  in.script = other.script;
  MediaControls second(in);
  ASSERT_TRUE(mpris_test::TurnUntil(loop, [&] {
    clock.skip(200ms);
    return second.seen();
  }));
  user->name += ".instance" + std::to_string(::getpid());
  EXPECT_EQ(user->call(kPlayer, "Next").error(), "");
  EXPECT_THAT(other.journal.lines(), ElementsAre("PlayNext"));
  EXPECT_TRUE(player.journal.lines().empty());
}
