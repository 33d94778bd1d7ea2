#pragma once
#include <memory>

#include "standin/eventrun/EventWorld.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// Calls to the plug-in that end in bounded time, whatever becomes of the plug-in. A call whose turn comes
/// after that, or after whoever wanted it has lost interest, is not made any more.
class PluginCalls {
 public:
  PluginCalls() = default;
  PluginCalls(const PluginCalls&) = delete;
  PluginCalls& operator=(const PluginCalls&) = delete;
  PluginCalls(PluginCalls&&) = delete;
  PluginCalls& operator=(PluginCalls&&) = delete;
  virtual ~PluginCalls() = default;

  /// `done` is called once, on a later turn of the loop, unless what is answered ends before; nothing happens
  /// within this call. A command must not touch what may have ended while it was carried out.
  [[nodiscard]] virtual std::unique_ptr<Deed> call(PluginKeeper::Command command, EventWorld::Done done) = 0;
  /// The same, for whom nothing takes the interest away. `done` may be empty.
  virtual void callAnyway(PluginKeeper::Command command, EventWorld::Done done) = 0;
};

}  // namespace standin
