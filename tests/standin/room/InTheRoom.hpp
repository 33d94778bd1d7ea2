#pragma once
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "ear/Messages.hpp"
#include "files/Descriptor.hpp"
#include "standin/fakes/Spoken.hpp"
#include "standin/hearing/HearingHouse.hpp"
#include "standin/room/RoomMicrophone.hpp"

namespace support {

/// A house with a microphone in its room, and a player there that makes room when it is asked to.
class InTheRoom : public HearingHouse {
 public:
  static constexpr std::size_t kRate = 16000;

 protected:
  using Sound = std::vector<std::int16_t>;
  using CaptureProgram = standin::CaptureProgram;
  using RoomMicrophone = standin::RoomMicrophone;
  using State = RoomMicrophone::State;

  InTheRoom() {
    ::mkfifo(pipe().c_str(), 0600);
    // Kept open by this side, too, so that it has no end.
    sound_ = files::Descriptor(::open(pipe().c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  }
  void SetUp() override {
    HearingHouse::SetUp();
    house.eventSinks = {
        {8, std::make_shared<TableOf>(
                "vxif", std::vector<base::Member>{{"VXEvent",
                                                   base::MemberKind::kOperation,
                                                   {{"parms", base::Type::kArray}},
                                                   base::Type::kNone,
                                                   [this](base::Args& args) {
                                                     const bool on = args[0].array()[1] == base::Value(true);
                                                     players.emplace_back(on ? "quiet" : "as before");
                                                     return base::Value();
                                                   }}})}};
  }
  [[nodiscard]] std::string pipe() const { return (folder.path() / "microphone").string(); }
  static CaptureProgram program(const std::string& script) { return {"sh", {"-c", script}, "dash"}; }
  void listen(std::vector<CaptureProgram> wanted) {
    programs = std::move(wanted);
    room.emplace(RoomMicrophone::Parts{loop, house, *commands, quiet, speech, programs});
    room->on(true);
  }
  /// By a microphone that gives what the test feeds it.
  void listen() {
    listen({program("exec cat " + pipe())});
    feed(stillness(2));
  }
  /// Returns when it has come to the house.
  void feed(const Sound& sound) {
    passed += std::chrono::milliseconds(sound.size() * 1000 / kRate);
    const std::uint64_t wanted = room->status().samples + sound.size();
    std::string bytes = ear::SoundContent(sound);
    ASSERT_TRUE(eventually([&] {
      const ssize_t written = ::write(sound_.get(), bytes.data(), bytes.size());
      if (written > 0) bytes.erase(0, static_cast<std::size_t>(written));
      return room->status().samples >= wanted;
    }));
  }
  static Sound stillness(double seconds) {
    static std::minstd_rand random(3);
    Sound all(static_cast<std::size_t>(seconds * kRate));
    for (std::int16_t& each : all) each = static_cast<std::int16_t>(static_cast<int>(random() % 41) - 20);
    return all;
  }
  /// Somebody says a sentence, and then nothing.
  void sayAloud() {
    static const Sound sentence = Spoken("play night shift");
    ASSERT_FALSE(sentence.empty());
    Sound noisy = stillness(static_cast<double>(sentence.size()) / kRate);
    for (std::size_t i = 0; i < noisy.size(); ++i)
      noisy[i] = static_cast<std::int16_t>(noisy[i] + sentence[i] / 2);
    feed(noisy);
    feed(stillness(2));
  }
  bool askedFor(std::size_t sounds) {
    return eventually([&] { return ear.sounds.size() >= sounds; });
  }
  bool becomes(State state) {
    return eventually([&] { return room->status().state == state; });
  }
  /// Time goes on, and what is due happens.
  void wait(std::chrono::seconds time) {
    passed += time;
    loop.turn(std::chrono::milliseconds(0));
  }

  standin::Quiet quiet{loop, speech.events()};
  std::vector<CaptureProgram> programs;
  std::optional<RoomMicrophone> room;
  std::vector<std::string> players;

 private:
  files::Descriptor sound_;
};

}  // namespace support
