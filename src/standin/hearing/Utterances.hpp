#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "standin/hearing/VoiceCommands.hpp"

namespace standin {

/// What is being said, in pieces as it is spoken: one a session, and a few in all. One of which no piece
/// comes for a while is forgotten. On the loop's thread.
class Utterances {
 public:
  static constexpr base::Milliseconds kForgotten = std::chrono::seconds(10);
  static constexpr std::size_t kMost = 8;

  Utterances(bus::PollLoop& loop, VoiceCommands& voice) : loop_(loop), voice_(voice) {}
  Utterances(const Utterances&) = delete;
  Utterances& operator=(const Utterances&) = delete;
  Utterances(Utterances&&) = delete;
  Utterances& operator=(Utterances&&) = delete;
  ~Utterances() = default;

  // They throw, with words for the user: number 53 for what is not known (any more), 5 for a piece that is
  // missing, after which all of it is forgotten, 6 where too many speak at once.

  /// Answers a number that is never used again. What the session has begun before is forgotten.
  std::uint64_t begin(const Speaker& who);
  /// `at`: how many samples have come before it.
  void more(const Speaker& who, std::uint64_t number, std::uint64_t at,
            const std::vector<std::int16_t>& piece);
  /// `samples`: how many it has in all.
  void end(const Speaker& who, std::uint64_t number, std::uint64_t samples,
           const VoiceCommands::Answered& answered);

 private:
  struct Utterance {
    std::uint64_t number = 0;
    std::uint64_t samples = 0;
    std::unique_ptr<Recogniser::Growing> sound;
    std::unique_ptr<base::Timer> forgotten;
  };
  using Entry = std::map<std::string, Utterance>::iterator;
  Entry known(const Speaker& who, std::uint64_t number);
  void need(Entry entry, std::uint64_t at);

  bus::PollLoop& loop_;
  VoiceCommands& voice_;
  std::uint64_t last_ = 0;
  std::map<std::string, Utterance> all_;  ///< by session
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
