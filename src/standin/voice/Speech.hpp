#pragma once
#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "bus/PollLoop.hpp"
#include "standin/house/House.hpp"
#include "standin/voice/AudioEvents.hpp"
#include "standin/voice/VoiceOutput.hpp"

namespace standin {

/// The house's speech: one text after the other, with an audio event before and after each to whoever has
/// asked for them, so that a player can make room. Where a text waits, its event comes before the end of the
/// one that is said: a player that counts them is not heard between the two. All use is on the loop's thread.
class Speech {
 public:
  Speech(bus::PollLoop& loop, House& house, VoiceOutput& voice)
      : Speech(loop, house, voice, std::chrono::minutes(2)) {}
  /// `longest`: what takes more time than that is cut short.
  Speech(bus::PollLoop& loop, House& house, VoiceOutput& voice, base::Milliseconds longest);
  ~Speech();
  Speech(const Speech&) = delete;
  Speech& operator=(const Speech&) = delete;
  Speech(Speech&&) = delete;
  Speech& operator=(Speech&&) = delete;

  /// Writes the text to the log and says it when those before it have been said. With `wait` it returns
  /// after that; everything else goes on meanwhile.
  void speak(const std::string& text, bool wait);
  /// Told why a text was not heard; the empty text where it was.
  using Said = std::function<void(const std::string& failure)>;
  /// The same without waiting: `said` is called when it has been said, or at once where it is only written to
  /// the log, unless the speech itself ends before. With `tone`, that comes first. To say nothing never
  /// fails.
  void speak(const std::string& text, bool tone, const Said& said);
  /// From when a text is to be said until nothing more is.
  [[nodiscard]] bool speaking() const { return busy_; }
  /// For others that need the room's ear.
  [[nodiscard]] AudioEvents& events() { return events_; }

 private:
  struct Order {
    std::string text;
    bool tone = false;
    Said said{};
    bool told = false;  ///< the event before it
    bool over = false;
  };
  std::shared_ptr<Order> take(Order order);
  void beginSoon();
  void begin();
  void say(const Order& order);  ///< on the thread
  void said(const std::string& failure);

  bus::PollLoop& loop_;
  House& house_;
  AudioEvents events_;
  VoiceOutput& voice_;
  base::Milliseconds longest_;
  std::deque<std::shared_ptr<Order>> orders_;
  bool busy_ = false;  ///< a text is being said, or its events are being told
  std::string toldFailure_;
  std::thread thread_;
  std::atomic<bool> saying_ = false;  ///< the thread is at a text
  std::unique_ptr<base::Timer> cut_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
