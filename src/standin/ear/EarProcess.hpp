#pragma once
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "standin/ear/EarChild.hpp"
#include "standin/ear/Recogniser.hpp"

namespace standin {

/// A recogniser in a process of its own. What can be said is learnt by a new process while the one before it
/// goes on hearing, and takes its place when it is ready. One that hangs, dies or talks nonsense is told to
/// those who wait for it, and started again: by itself after a pause that grows, or when somebody speaks or
/// asks for it.
class EarProcess : public Recogniser {
 public:
  struct Options {
    std::filesystem::path program;
    std::vector<std::string> arguments{};
    base::Milliseconds learns = std::chrono::seconds(60);  ///< longer it may not take to learn
    base::Milliseconds hears = std::chrono::seconds(30);   ///< nor to hear one sound
    base::Milliseconds pause = std::chrono::seconds(5);    ///< after a failure nobody starts it earlier
    /// It starts again by itself after that pause, twice as long each time, and at most this. With a pause of
    /// 0 it doesn't.
    base::Milliseconds longestPause = std::chrono::minutes(10);
  };
  EarProcess(bus::PollLoop& loop, Options options);
  ~EarProcess() override;
  EarProcess(const EarProcess&) = delete;
  EarProcess& operator=(const EarProcess&) = delete;
  EarProcess(EarProcess&&) = delete;
  EarProcess& operator=(EarProcess&&) = delete;

  void learn(ear::SpeechNetwork network) override;
  void hear(std::vector<std::int16_t> sound, Told told) override;
  /// One at a time goes to the process while it is spoken, so that it is heard sooner; others are kept.
  std::unique_ptr<Growing> begin() override;
  void retry() override;
  [[nodiscard]] Status status() const override { return status_; }
  /// Of the one that hears now; -1 where there is none.
  [[nodiscard]] pid_t process() const { return now_ ? now_->child->process() : -1; }

 private:
  class Flowing;
  struct Sound {
    std::vector<std::int16_t> samples;
    Told told;
  };
  struct Ear {
    std::uint64_t number = 0;
    std::unique_ptr<EarChild> child;
    std::deque<Told> asked;
  };
  static constexpr std::size_t kMostWaiting = 8;

  /// Whether that one hears now.
  [[nodiscard]] bool hears(std::uint64_t number) const { return now_ && now_->number == number; }
  void startNext();
  [[nodiscard]] bool full() const;
  void ask(Sound sound);
  void await(Told told);
  /// Whether that was its answer.
  bool nextTold(const ear::Message& message);
  bool nowTold(Ear& ear, const ear::Message& message);
  void ended(Ear& ear, const std::string& why);
  void failed(const std::string& why);
  /// Has failed so lately that it isn't started again now.
  [[nodiscard]] bool rests() const;
  void enter(State state, std::string missing = {}, std::string stale = {});
  /// It may be at work now.
  void bury(std::unique_ptr<Ear> ear);

  bus::PollLoop& loop_;
  Options options_;
  Status status_;
  std::optional<std::string> network_;  ///< as it goes to a process
  std::unique_ptr<Ear> now_;
  std::unique_ptr<Ear> next_;
  std::vector<std::unique_ptr<Ear>> leaving_;  ///< with answers still to come
  std::deque<Sound> waiting_;                  ///< for the first process to be ready
  Flowing* flowing_ = nullptr;                 ///< the sound that goes to the process as it is spoken
  std::uint64_t ears_ = 0;                     ///< that have been started
  std::optional<base::Milliseconds> failedAt_;
  base::Milliseconds pause_;
  std::unique_ptr<base::Timer> again_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  ///< for processes that are buried after it
};

}  // namespace standin
