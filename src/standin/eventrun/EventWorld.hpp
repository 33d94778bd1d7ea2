#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "standin/eventrun/DeviceFacts.hpp"
#include "standin/events/Rule.hpp"

namespace standin {

/// An action under way. Its end breaks it off: nothing of it is done or told after that.
class Deed {
 public:
  Deed() = default;
  Deed(const Deed&) = delete;
  Deed& operator=(const Deed&) = delete;
  Deed(Deed&&) = delete;
  Deed& operator=(Deed&&) = delete;
  virtual ~Deed() = default;
};

/// What events see of the house and do in it. Nothing blocks: what takes time answers later, in bounded time,
/// whether or not those who are asked still live.
class EventWorld {
 public:
  EventWorld() = default;
  EventWorld(const EventWorld&) = delete;
  EventWorld& operator=(const EventWorld&) = delete;
  EventWorld(EventWorld&&) = delete;
  EventWorld& operator=(EventWorld&&) = delete;
  virtual ~EventWorld() = default;

  /// With a failure the answer is of no account.
  using Checked = std::function<void(const std::string& failure, bool holds)>;
  /// Asks the plug-in for one of its conditions. `checked` is called once, at once or later.
  virtual void check(const std::string& stored, Checked checked) = 0;
  /// Nothing when there is no such device.
  [[nodiscard]] virtual std::optional<DeviceFacts> device(std::int32_t ref) const = 0;

  /// The text is empty, or says what has gone wrong.
  using Done = std::function<void(const std::string& failure)>;
  /// Begins an action; never one that waits or fires an event, which the engine does itself. `done` is called
  /// once, within this call or later. Nothing is answered for what can't be broken off.
  virtual std::unique_ptr<Deed> carryOut(const Action& action, Done done) = 0;

  /// A line for the house's log.
  virtual void note(const std::string& kind, const std::string& text) = 0;
};

}  // namespace standin
