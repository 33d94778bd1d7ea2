#pragma once
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/Loop.hpp"

namespace standin {

/// What the plug-in can put into words.
enum class PluginPart { kTrigger, kCondition, kAction };

/// The plug-in's words for its own stored texts. They never change for one text, so they are asked for once,
/// many at a time, and kept. Until they are known, or where the plug-in has none, the fields of the text
/// itself are shown. On the loop's thread.
class PluginWords {
 public:
  struct Wanted {
    PluginPart part = PluginPart::kTrigger;
    std::string stored{};
  };
  /// Words in the order of what was asked, as far as it came; empty where there are none. `gone` when the
  /// plug-in couldn't be asked about the others.
  struct Answer {
    std::vector<std::string> words{};
    bool gone = false;
  };
  using Told = std::function<void(const Answer& answer)>;
  /// Asks the plug-in and calls `told` once, at once or later.
  using Ask = std::function<void(const std::vector<Wanted>& wanted, const Told& told)>;

  struct Limits {
    std::size_t batch = 100;                               ///< texts of one question
    std::size_t bytes = std::size_t{32} << 20U;            ///< of all that is kept
    base::Milliseconds unused = std::chrono::minutes(10);  ///< what goes when there is too little room
    base::Milliseconds again = std::chrono::seconds(5);    ///< between questions to a plug-in that is gone
  };
  PluginWords(base::Loop& loop, Ask ask) : PluginWords(loop, std::move(ask), Limits()) {}
  PluginWords(base::Loop& loop, Ask ask, Limits limits);

  /// At once. What isn't known is asked for on a later turn of the loop.
  std::string of(PluginPart part, const std::string& stored);
  /// The plug-in is there again: what it couldn't be asked for is asked for soon.
  void askAgain();
  /// Called when all that was asked for has been told, and is different from what was shown before.
  std::function<void()> onNews = [] {};
  /// What is shown without the plug-in: the fields behind the two that the house puts first.
  static std::string bare(const std::string& stored);

 private:
  struct Known {
    std::string words{};
    bool told = false;           ///< by the plug-in
    base::Milliseconds used{0};  ///< when they were last shown
  };
  bool makeRoom(std::size_t bytes);
  void askNext();
  void hear(const std::vector<std::string>& keys, const Answer& answer);

  base::Loop& loop_;
  Ask ask_;
  Limits limits_;
  std::unordered_map<std::string, Known> known_;  ///< by part and text
  std::deque<std::string> waiting_;               ///< keys of what is still to be asked
  std::size_t bytes_ = 0;
  base::Milliseconds cleared_{0};  ///< when room was last made
  bool asking_ = false;
  bool news_ = false;
  std::unique_ptr<base::Timer> timer_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  ///< known to questions under way
};

}  // namespace standin
