#include "standin/eventrun/Rounds.hpp"

namespace standin {

std::shared_ptr<Chain> Rounds::fresh() const {
  auto chain = std::make_shared<Chain>();
  chain->since = loop_.now();
  return chain;
}

bool Rounds::sounds(const Echo& echo) const {
  const base::Milliseconds now = loop_.now();
  return echo.chain && now < echo.until && now - echo.chain->since < limits_.age;
}

std::shared_ptr<Chain> Rounds::chainOf(const Echo& echo) const { return sounds(echo) ? echo.chain : fresh(); }

std::shared_ptr<Chain> Rounds::ofPlugin() const { return chainOf(plugin_); }

std::shared_ptr<Chain> Rounds::ofScript() const { return chainOf(script_); }

std::shared_ptr<Chain> Rounds::ofDevice(std::int32_t ref, bool plugins) const {
  const auto set = devices_.find(ref);
  if (set != devices_.end() && sounds(set->second)) return set->second.chain;
  if (plugins && sounds(plugin_)) return plugin_.chain;
  return chainOf(running_);
}

void Rounds::acted(const std::shared_ptr<Chain>& chain, const Reach& reach, bool ended) {
  const Echo echo{chain, loop_.now() + limits_.echo};
  if (reach.player) plugin_ = echo;
  if (reach.device != 0) {
    std::erase_if(devices_, [this](const auto& each) { return !sounds(each.second); });
    devices_[reach.device] = echo;
  }
  if (!reach.script) return;
  script_ = echo;
  running_ = ended ? Echo{} : echo;
}

bool Rounds::admits(Chain& chain, std::int32_t event) {
  if (++chain.rounds[event] <= limits_.most) return true;
  const auto forget = [&](Echo& echo) {
    if (echo.chain.get() == &chain) echo = {};
  };
  for (Echo* each : {&plugin_, &script_, &running_}) forget(*each);
  for (auto& [ref, echo] : devices_) forget(echo);
  return false;
}

}  // namespace standin
