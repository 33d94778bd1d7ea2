#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "database/Database.hpp"
#include "standin/events/Rule.hpp"
#include "standin/house/EventStore.hpp"

namespace standin {

/// All there is of an event: what it does, and what the plug-in has made of it for those who speak to it.
struct WholeEvent {
  RuledEvent rule{};
  Event event{};
};

/// One change of an event, with what it takes to undo it and to see whether it still can be undone.
struct RuleStep {
  enum class Kind { kMake, kChange, kSwitch, kDelete };
  std::int64_t id = 0;
  Kind kind = Kind::kChange;
  std::int32_t event = 0;
  std::optional<WholeEvent> before{};  ///< none of an event that was made
  std::optional<WholeEvent> after{};   ///< none of one that was deleted
};

/// For storing. Of an event that stays, only its rule counts and is kept.
std::string TextOf(const RuleStep& step);
/// Without the number. Throws number 57 for a text that is none of these.
RuleStep StepOfText(const std::string& text);
/// “name”
std::string InQuotes(const std::string& name);
/// "Deletion of “Good night”".
std::string WordsOf(const RuleStep& step);

/// What has been done to the events' rules, for undo and redo: one order for the whole house. To be called
/// inside the transaction that makes the change. The oldest steps are forgotten when there are too many.
class RuleSteps {
 public:
  struct Limits {
    std::int64_t steps = 200;
    std::int64_t bytes = std::int64_t{32} << 20U;  ///< the newest is kept in any case
  };
  explicit RuleSteps(database::Database& database) : RuleSteps(database, Limits()) {}
  RuleSteps(database::Database& database, Limits limits) : database_(database), limits_(limits) {}

  /// A new step; what was undone before it can't be redone any longer.
  void add(const RuleStep& step);
  /// The step is undone now, or done again, in the form given.
  void turned(const RuleStep& step, bool undone);
  void drop(std::int64_t id);

  /// The step that would be undone, or redone, next. One that can't be read any longer is forgotten.
  std::optional<RuleStep> toUndo();
  std::optional<RuleStep> toRedo();

 private:
  std::optional<RuleStep> next(const char* sql);

  database::Database& database_;
  Limits limits_;
};

}  // namespace standin
