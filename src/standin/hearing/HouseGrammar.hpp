#pragma once
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "standin/grammar/Grammar.hpp"
#include "standin/hearing/Network.hpp"
#include "standin/hearing/Worker.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// The grammar of all events of the house. It is made aside, from copies, one at a time: whoever asks
/// meanwhile is answered by the one before, and what is wanted when it is ready is the next. Where one can't
/// be made, the one before stays. All use is on the loop's thread.
class HouseGrammar {
 public:
  /// What was made of the patterns as they were at one moment.
  struct Made {
    std::uint64_t revision = 0;
    Grammar grammar;
    Audible audible;
  };
  using MadeRef = std::shared_ptr<const Made>;
  struct Entry {
    std::int32_t event = 0;
    std::shared_ptr<const Pattern> pattern;
  };

  HouseGrammar(House& house, Worker& worker) : house_(house), worker_(worker) {}
  ~HouseGrammar();
  HouseGrammar(const HouseGrammar&) = delete;
  HouseGrammar& operator=(const HouseGrammar&) = delete;
  HouseGrammar(HouseGrammar&&) = delete;
  HouseGrammar& operator=(HouseGrammar&&) = delete;

  /// Has it made of the patterns as they are now, unless it is, or when the one that is being made is ready.
  void want();
  /// The last that was made; null where there is none yet.
  [[nodiscard]] const MadeRef& made() const { return made_; }
  /// Wants it, and calls `then` now or, where nothing has been made yet, when the first one is or can't be.
  void ask(std::function<void()> then);
  /// Wants it; where nothing has been made yet it is made here and now. Null where it can't be.
  const MadeRef& now();
  /// Calls `then` as soon as questions are answered by the patterns as they are now, or can't be: at once
  /// where nobody has asked anything yet.
  void whenFollowed(std::function<void()> then);
  /// Called when another one has been made.
  std::function<void()> onMade = [] {};

  /// Of the events with a pattern as they are now, by their number.
  const std::vector<Entry>& entries();
  /// What a person should know of an event's pattern beside its faults.
  [[nodiscard]] std::vector<std::string> troubles(std::int32_t event) const;
  /// The library's own name for one that stands in a pattern; the same where it has no other.
  [[nodiscard]] std::string libraryName(const std::string& category, const std::string& words) const;
  /// Grows with every change of a pattern.
  [[nodiscard]] std::uint64_t revision() const { return house_.events.patternsRevision(); }

 private:
  struct Wanted;
  [[nodiscard]] std::shared_ptr<const Wanted> wanted();
  static MadeRef Make(const Wanted& wanted, const std::atomic<bool>& ended);
  void start();
  void take(std::uint64_t revision, MadeRef made, const std::exception_ptr& failure);

  House& house_;
  Worker& worker_;
  std::uint64_t entriesRevision_ = 0;
  std::vector<Entry> entries_;
  MadeRef made_;
  bool making_ = false;
  bool again_ = false;  ///< something newer is wanted than what is being made
  std::vector<std::function<void()>> asking_;
  std::vector<std::pair<std::uint64_t, std::function<void()>>> following_;
  std::shared_ptr<std::atomic<bool>> ended_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace standin
