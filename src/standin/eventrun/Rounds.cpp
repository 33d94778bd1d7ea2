#include "standin/eventrun/Rounds.hpp"

namespace standin {

std::shared_ptr<Chain> Rounds::fresh() const {
  auto chain = std::make_shared<Chain>();
  chain->since = loop_.now();
  return chain;
}

std::shared_ptr<Chain> Rounds::incoming() const {
  const base::Milliseconds now = loop_.now();
  if (echo_ && now < heardUntil_ && now - echo_->since < limits_.age) return echo_;
  return fresh();
}

void Rounds::acted(const std::shared_ptr<Chain>& chain) {
  echo_ = chain;
  heardUntil_ = loop_.now() + limits_.echo;
}

bool Rounds::admits(Chain& chain, std::int32_t event) {
  if (++chain.rounds[event] <= limits_.most) return true;
  echo_.reset();
  return false;
}

}  // namespace standin
