#include "standin/eventrun/Rounds.hpp"

namespace standin {
namespace {

int TimesAmong(const Cause& causes, std::int32_t event) {
  int times = 0;
  for (const Cause* each = &causes; each != nullptr; each = each->before.get())
    if (each->event == event) ++times;
  return times;
}

}  // namespace

CausePtr Rounds::fresh() const {
  auto chain = std::make_shared<Chain>();
  chain->since = loop_.now();
  return std::make_shared<Cause>(Cause{.chain = std::move(chain)});
}

bool Rounds::sounds(const Echo& echo) const {
  const base::Milliseconds now = loop_.now();
  return echo.cause && now < echo.until && now - echo.cause->chain->since < limits_.age;
}

CausePtr Rounds::causeOf(const Echo& echo) const { return sounds(echo) ? echo.cause : fresh(); }

CausePtr Rounds::ofPlugin() const { return causeOf(plugin_); }

CausePtr Rounds::ofScript() const { return causeOf(script_); }

CausePtr Rounds::ofDevice(std::int32_t ref, bool plugins) const {
  const auto set = devices_.find(ref);
  if (set != devices_.end() && sounds(set->second)) return set->second.cause;
  if (plugins && sounds(plugin_)) return plugin_.cause;
  return causeOf(running_);
}

void Rounds::acted(const CausePtr& cause, const Reach& reach, bool ended) {
  const Echo echo{cause, loop_.now() + limits_.echo};
  if (reach.player) plugin_ = echo;
  if (reach.device != 0) {
    std::erase_if(devices_, [this](const auto& each) { return !sounds(each.second); });
    devices_[reach.device] = echo;
  }
  if (!reach.script) return;
  script_ = echo;
  running_ = ended ? Echo{} : echo;
}

CausePtr Rounds::admit(const CausePtr& cause, std::int32_t event) {
  Chain& chain = *cause->chain;
  if (!chain.cut && chain.evaluations < limits_.evaluations && TimesAmong(*cause, event) < limits_.most) {
    ++chain.evaluations;
    return std::make_shared<Cause>(Cause{.chain = cause->chain, .before = cause, .event = event});
  }
  chain.cut = true;
  const auto forget = [&](Echo& echo) {
    if (echo.cause && echo.cause->chain.get() == &chain) echo = {};
  };
  for (Echo* each : {&plugin_, &script_, &running_}) forget(*each);
  for (auto& [ref, echo] : devices_) forget(echo);
  return nullptr;
}

}  // namespace standin
