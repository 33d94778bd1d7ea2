#pragma once
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "bus/Connection.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/scripts/ScriptHouse.hpp"

namespace standin {

/// The objects that one run of a script has met, under the handles that its thread knows them by. Calls to
/// the plug-in wait their turn among the others to it. All use is on the loop's thread.
class ScriptObjects {
 public:
  ScriptObjects(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, base::ObjectRef host,
                const PluginKeeper::Address& address = {});

  using Work = std::function<base::Value(base::Object& object)>;
  using Done = std::function<void(const base::Value& result, const base::Failure* failure)>;
  /// Has `work` do something with the object; its result, made of handles, goes to `done`, at once or later.
  void with(std::int32_t handle, Work work, Done done);
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
  std::map<std::int32_t, base::ObjectRef> objects_;
  std::map<std::int32_t, std::set<std::string>> fields_;  ///< of objects of other processes, in lower case
};

}  // namespace standin
