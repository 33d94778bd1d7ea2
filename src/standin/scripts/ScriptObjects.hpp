#pragma once
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "bus/Connection.hpp"
#include "scripting/Messages.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// The objects that one run of a script has met, under the handles that its process knows them by. Calls to
/// the plug-in wait their turn among the others to it. All use is on the loop's thread.
class ScriptObjects {
 public:
  ScriptObjects(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, base::ObjectRef host,
                const PluginKeeper::Address& address = {});

  using Work = std::function<base::Value(base::Object& object)>;
  using Done = std::function<void(const base::Value& result, const base::Failure* failure)>;
  /// Has `work` do something with the object; its result, made of handles, goes to `done`, at once or later.
  void with(std::int32_t handle, Work work, Done done);
  /// Nothing more is begun for the script: what still waits for its turn fails.
  void close() { closed_ = true; }
  /// The seconds where that is the host's `WaitSecs`. A script has its own way to wait: on the loop each wait
  /// would hold up those that began before it, even when nobody waits for it any longer.
  [[nodiscard]] std::optional<double> waitIn(const scripting::Ask& ask) const;
  /// True when the object knows a field of that name.
  bool isField(base::Object& object, std::int32_t handle, const std::string& name);
  /// The same value with the objects themselves in place of handles.
  [[nodiscard]] base::Value unwrapped(const base::Value& value) const;
  [[nodiscard]] base::Args unwrappedAll(const base::Args& args) const;

 private:
  base::Value wrapped(const base::Value& value);

  bus::PollLoop& loop_;
  bus::Connection& connection_;
  PluginKeeper& plugin_;
  const base::ObjectRef host_;
  bool closed_ = false;
  std::map<std::int32_t, base::ObjectRef> objects_;
  std::map<std::int32_t, std::set<std::string>> fields_;  ///< of objects of other processes, in lower case
};

}  // namespace standin
