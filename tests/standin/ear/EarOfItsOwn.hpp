#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "standin/ear/EarProcess.hpp"
#include "standin/hearing/Network.hpp"
#include "support/Process.hpp"

namespace support {

inline ear::SpeechNetwork NetworkFor(const std::string& text) {
  const standin::Pattern pattern(text);
  return standin::NetworkOf(standin::Grammar({{1, pattern}}, nullptr));
}

/// A recogniser in a process of its own, of the program or of what a shell does in its place.
class EarOfItsOwn : public testing::Test {
 protected:
  using State = standin::Recogniser::State;
  using Heard = standin::Recogniser::Heard;
  using Kind = Heard::Kind;

  static standin::EarProcess::Options shell(const std::string& script) {
    return {.program = "/bin/sh", .arguments = {"-c", script}};
  }
  /// What a shell does to write these bytes.
  static std::string printing(const std::string& bytes) {
    std::string all = "printf '";
    for (const char c : bytes) {
      char octal[8]{};
      std::snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned>(static_cast<unsigned char>(c)));
      all += octal;
    }
    return all + "'; ";
  }
  static std::string ready() {
    return printing(
        ear::Framed(ear::MessageKind::kReady, ear::Encoded(ear::Learnt{.words = 1, .unspoken = {}})));
  }
  static std::string answering(const std::string& words) {
    const ear::Heard heard{.speech = true, .words = words, .thousandths = 900};
    return printing(ear::Framed(ear::MessageKind::kHeard, ear::Encoded(heard)));
  }

  bool eventually(const std::function<bool()>& condition) {
    return Eventually([&] {
      loop.turn(std::chrono::milliseconds(20));
      return condition();
    });
  }
  bool becomes(const standin::EarProcess& ear, State state) {
    return eventually([&] { return ear.status().state == state; });
  }
  /// What it hears in the sound; nothing within the limit of all waits.
  std::optional<Heard> heard(standin::EarProcess& ear, std::vector<std::int16_t> sound) {
    std::optional<Heard> told;
    ear.hear(std::move(sound), [&](const Heard& heard) { told = heard; });
    eventually([&] { return told.has_value(); });
    return told;
  }

  /// What is heard of a sound that has grown.
  std::optional<Heard> heard(std::unique_ptr<standin::Recogniser::Growing> sound) {
    std::optional<Heard> told;
    sound->end([&](const Heard& heard) { told = heard; });
    eventually([&] { return told.has_value(); });
    return told;
  }
  /// Says it in pieces, while the loop turns.
  void say(standin::Recogniser::Growing& sound, const std::vector<std::int16_t>& all) {
    for (std::size_t at = 0; at < all.size(); at += 4000) {
      sound.more({all.begin() + static_cast<std::ptrdiff_t>(at),
                  all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), at + 4000))});
      loop.turn(base::Milliseconds(0));
    }
  }

  bus::PollLoop loop;
  std::vector<std::int16_t> anything = std::vector<std::int16_t>(16000, 1);
};

}  // namespace support
