#pragma once
#include <functional>
#include <memory>
#include <vector>

#include "standin/eventrun/EngineParts.hpp"

namespace standin {

/// Asks the conditions of a rule, one after the other and each of them, so that history can tell what all of
/// them saw. One that can't be asked doesn't hold, negated or not; when the plug-in hangs it is not asked
/// again.
class Asking : public std::enable_shared_from_this<Asking> {
 public:
  /// `holds`: what the conditions say together. Without conditions they allow it.
  using Asked = std::function<void(bool holds, const std::vector<SeenCondition>& seen)>;
  /// `event`: whose rule it is.
  Asking(const EngineParts& parts, std::int32_t event, std::shared_ptr<const Rule> rule, Asked asked);

  /// `asked` is called once, within this call or later, unless it is cancelled before.
  void begin();
  /// Nobody wants to know any more.
  void cancel() { asked_ = nullptr; }

 private:
  void next();
  void ask(const Condition& condition);
  void see(std::string saw, bool holds);
  void askPlugin(const PluginCondition& asked, bool negated);
  void seeDevice(const DeviceCondition& asked, bool negated);
  void seeEvent(const EventCondition& asked, bool negated);
  [[nodiscard]] bool together() const;

  EngineParts parts_;
  std::int32_t event_;
  std::shared_ptr<const Rule> rule_;
  Asked asked_;
  std::vector<SeenCondition> seen_;
  bool going_ = false;
  std::string hangs_;  ///< what the plug-in has failed with after a long time
};

/// In words, which conditions said no; empty when they allowed it.
std::string Objection(const std::vector<SeenCondition>& seen, bool any);

}  // namespace standin
