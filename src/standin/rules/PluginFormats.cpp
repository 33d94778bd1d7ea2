#include "standin/rules/PluginFormats.hpp"

#include <array>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr std::array kOperations{"TriggerUIFormat", "ConditionUIFormat", "ActionUIFormat"};

/// Empty where the plug-in can't say; throws only when it is gone.
std::string AskedFor(base::Object& vxif, const PluginWords::Wanted& wanted) {
  try {
    return base::ToText(vxif.invoke(kOperations.at(static_cast<std::size_t>(wanted.part)), wanted.stored));
  } catch (const base::Failure& failure) {
    if (failure.number() == base::number::kHostGone) throw;
    return {};
  }
}

}  // namespace

PluginWords::Ask FormatsOf(PluginKeeper& plugin) {
  return [&plugin](const std::vector<PluginWords::Wanted>& wanted, const PluginWords::Told& told) {
    const auto answer = std::make_shared<PluginWords::Answer>();
    plugin.command(
        [wanted, answer](base::Object& vxif) {
          for (const PluginWords::Wanted& each : wanted) answer->words.push_back(AskedFor(vxif, each));
        },
        [answer, told](const std::string& failure) {
          answer->gone = !failure.empty();
          told(*answer);
        });
  };
}

}  // namespace standin
