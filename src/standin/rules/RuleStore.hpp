#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "standin/events/RuleSource.hpp"
#include "standin/house/House.hpp"
#include "standin/rules/RuleSteps.hpp"

namespace standin {

/// The rules of the house's events, in memory and in the database. Every change is stored whole, with the
/// step that undoes it, when its call returns, and told to the listeners then. Name and group are the event's
/// own: the plug-in may change them too.
///
/// What can't be done throws and changes nothing: number 53 for an event that has no rule or is gone, 3197
/// where somebody else's change stands in the way, 457 for a name that another event has, 6 for more events
/// than there is room for, and what databases throw.
class RuleStore : public RuleSource {
 public:
  static constexpr std::size_t kMost = 20'000;

  explicit RuleStore(House& house) : RuleStore(house, RuleSteps::Limits()) {}
  RuleStore(House& house, RuleSteps::Limits limits);
  ~RuleStore() override;
  RuleStore(const RuleStore&) = delete;
  RuleStore& operator=(const RuleStore&) = delete;
  RuleStore(RuleStore&&) = delete;
  RuleStore& operator=(RuleStore&&) = delete;

  [[nodiscard]] const std::map<std::int32_t, RuledEvent>& all() const override { return rules_; }
  [[nodiscard]] const RuledEvent* byId(std::int32_t id) const override;
  [[nodiscard]] std::optional<Place> place() const override { return place_; }
  void onChange(Heard heard) override { listeners_.push_back(std::move(heard)); }

  /// A new event of the house; number and version are given here.
  const RuledEvent& make(const RuledEvent& event);
  /// In place of the one with its number, if that still has the version named.
  const RuledEvent& change(const RuledEvent& event);
  /// Whatever the version.
  const RuledEvent& turn(std::int32_t id, bool on);
  /// Removes the event itself, with what the plug-in has made of it.
  void remove(std::int32_t id, std::int64_t version);

  /// What `undo` and `redo` would do: "Deletion of “Good night”", empty for nothing.
  [[nodiscard]] const std::string& toUndo() const { return next_.undo; }
  [[nodiscard]] const std::string& toRedo() const { return next_.redo; }
  struct Turned {
    std::int32_t event = 0;
    std::string words{};  ///< of the step
  };
  /// Takes back the last step, or does it again, if what is there is what the step has left. An event comes
  /// back with its number, and with all that it had. Throws number 53 when there is no step.
  Turned undo() { return turnStep(true); }
  Turned redo() { return turnStep(false); }
  /// Forgets the step that stands in the way of older ones.
  void skipUndo();
  void skipRedo();

  void setPlace(const std::optional<Place>& place);

 private:
  /// In words.
  struct NextSteps {
    std::string undo{};
    std::string redo{};
  };
  [[nodiscard]] const RuledEvent& need(std::int32_t id) const;
  void mustBeFree(const std::string& name, std::int32_t except) const;
  Turned turnStep(bool undo);
  void turnInto(RuleStep& step, bool undo);
  std::int32_t insert(const WholeEvent& whole);
  void rewrite(const RuledEvent& event, std::int64_t version);
  [[nodiscard]] WholeEvent wholeOf(std::int32_t id) const;
  void load();
  void loadPlace();
  std::optional<RuledEvent> read(const Event& event);
  NextSteps nextSteps();
  void skip(const std::optional<RuleStep>& step);
  const RuledEvent* commit(database::Transaction& whole, std::int32_t id);
  void renamed(std::int32_t id);
  void tell(std::int32_t id);

  House& house_;
  RuleSteps steps_;
  std::map<std::int32_t, RuledEvent> rules_;
  std::optional<Place> place_;
  NextSteps next_;
  std::vector<Heard> listeners_;
};

}  // namespace standin
