#pragma once
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "standin/events/Rule.hpp"

namespace standin {

/// Which events are triggered by what comes from the house, found by what it is: it makes no difference how
/// many others there are.
class TriggerIndex {
 public:
  /// A trigger of an event, by its place among the event's triggers.
  struct Entry {
    std::int32_t event = 0;
    std::size_t trigger = 0;
    bool operator==(const Entry&) const = default;
  };

  /// Takes the event's triggers, in place of those that it had. Null or a rule that is off has none.
  void put(std::int32_t event, const Rule* rule);

  /// Those of the plug-in's trigger as it tells it: fields separated by code 2, and "*" as the second stands
  /// for whatever is stored there. Each event once.
  [[nodiscard]] std::vector<Entry> ofPlugin(const std::string& composed) const;
  /// Those that look at the device.
  [[nodiscard]] const std::vector<Entry>& ofDevice(std::int32_t ref) const;
  [[nodiscard]] const std::vector<Entry>& ofStart() const { return start_; }
  /// True when scripts may trigger the event.
  [[nodiscard]] bool byScript(std::int32_t event) const { return scripts_.contains(event); }

 private:
  struct Stored {
    std::string second;  ///< the field that "*" stands for
    Entry entry;
    bool operator==(const Stored&) const = default;
  };
  struct Places {
    std::vector<std::string> plugin;
    std::vector<std::int32_t> devices;
  };
  void drop(std::int32_t event);

  std::unordered_map<std::string, std::vector<Stored>> plugin_;  ///< by the text without its second field
  std::unordered_map<std::int32_t, std::vector<Entry>> devices_;
  std::vector<Entry> start_;
  std::set<std::int32_t> scripts_;
  std::unordered_map<std::int32_t, Places> places_;  ///< where an event stands
};

}  // namespace standin
