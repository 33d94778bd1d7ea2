#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/FakeVoice.hpp"
#include "standin/hearing/VoiceCommands.hpp"
#include "standin/hostobjects/TopObjects.hpp"
#include "support/BusDaemon.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// Hears what the test chooses, when the test chooses.
class FakeRecogniser : public standin::Recogniser {
 public:
  void learn(ear::SpeechNetwork network) override { learnt.push_back(std::move(network)); }
  void hear(std::vector<std::int16_t> sound, Told told) override {
    sounds.push_back(std::move(sound));
    asked.push_back(std::move(told));
  }
  void retry() override { ++retried; }
  [[nodiscard]] Status status() const override { return {.state = State::kReady}; }

  std::vector<ear::SpeechNetwork> learnt;
  std::vector<std::vector<std::int16_t>> sounds;  ///< all that it was given
  std::deque<Told> asked;
  int retried = 0;
};

/// A house with one event that plays, and a plug-in that writes down what it is told. Time stands still but
/// for the test's own.
class HearingHouse : public testing::Test {
 protected:
  using Kind = standin::Understanding::Kind;
  using Heard = standin::Recogniser::Heard;
  using Understanding = standin::Understanding;
  using Choice = Understanding::Choice;
  using Understood = std::optional<Understanding>;

  HearingHouse() {
    device = house.devices.create("Lamp").ref;
    house.devices.put(device, &standin::Device::hc, std::string("A"));
    house.devices.put(device, &standin::Device::dc, std::string("1"));
    event = house.events.create("Play VR").id;
    house.events.addDevice(event, device, standin::kFuncVoice);
    house.events.put(event, &standin::Event::vcmd, std::string("Play (Night Shift|Night Shirt)"));
    connection.claimName("org.vantorix.Host");
    top.showOn(shelf);
    keeper.start();
  }
  void SetUp() override {
    ASSERT_TRUE(eventually([&] {
      passed += std::chrono::milliseconds(20);
      return keeper.state() == standin::PluginPhase::kReady;
    }));
  }
  void TearDown() override { keeper.stop(); }
  bool eventually(const std::function<bool()>& condition) {
    return Eventually([&] {
      loop.turn(std::chrono::milliseconds(10));
      return condition();
    });
  }

  /// What becomes of what somebody types.
  Understanding say(const std::string& text, const standin::Speaker& who = {"ann"}) {
    Understood understood;
    commands->say(who, text, [&](const Understanding& told) { understood = told; });
    EXPECT_TRUE(understood) << text;
    return understood.value_or(Understanding());
  }
  /// Somebody begins to speak.
  void speak(Understood& understood, const std::string& who = "ann") {
    commands->listen({who}, std::vector<std::int16_t>(16000, 1),
                     [&](const Understanding& told) { understood = told; });
  }
  /// The recogniser answers who has waited longest.
  void hear(const std::string& words, double confidence) {
    answer({.kind = Heard::Kind::kWords, .words = words, .confidence = confidence});
  }
  void answer(const Heard& heard) {
    ASSERT_FALSE(ear.asked.empty());
    const standin::Recogniser::Told told = std::move(ear.asked.front());
    ear.asked.pop_front();
    told(heard);
  }
  /// What becomes of what somebody says.
  Understanding spoken(const std::string& words, double confidence, const std::string& who = "ann") {
    Understood understood;
    speak(understood, who);
    hear(words, confidence);
    EXPECT_TRUE(understood) << words;
    return understood.value_or(Understanding());
  }
  /// The commands that the plug-in was given.
  std::vector<std::string> done() {
    std::vector<std::string> all;
    const std::string start = "SetIO Lamp A 1 13 0 0 0 after ";
    for (const std::string& call : plugin.calls())
      if (call.starts_with(start)) all.push_back(call.substr(start.size()));
    return all;
  }
  /// Has the house ask which of two was meant.
  void question(const std::string& who = "ann") {
    const Understanding told = say("play night shit", {who});
    EXPECT_EQ(told.kind, Kind::kUnclear);
    EXPECT_THAT(told.choices, testing::ElementsAre(Choice{"Play Night Shift", "Play Night Shift"},
                                                   Choice{"Play Night Shirt", "Play Night Shirt"}));
  }

  BusDaemon bus;
  TempFolder folder;
  const std::chrono::steady_clock::time_point began = std::chrono::steady_clock::now();
  std::chrono::milliseconds passed{0};
  bus::PollLoop loop{[this] { return began + passed; }};
  bus::Connection connection{loop, bus.address()};
  standin::House house{folder.path() / "data"};
  standin::BusShelf shelf{connection};
  standin::HouseObjects objects{house, shelf};
  FakeVoice voice;
  standin::Speech speech{loop, house, voice};
  standin::LoopWaits waits{loop, speech};
  standin::TopObjects top{house, objects, waits};
  FakePlugin plugin{bus.address()};
  standin::PluginKeeper keeper{loop, connection, house, top.callback};
  standin::PlayerLibrary library{loop, connection, keeper};
  FakeRecogniser ear;
  std::optional<standin::VoiceCommands> commands{
      std::in_place, standin::VoiceCommands::Parts{loop, house, objects, keeper, library, speech, ear}};
  std::int32_t device = 0;
  std::int32_t event = 0;
};

}  // namespace support
