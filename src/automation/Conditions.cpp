#include "automation/Conditions.hpp"

#include <vector>

#include "base/Attempt.hpp"
#include "base/Text.hpp"

namespace automation {

namespace {

constexpr const char* kStatusTab = "Media Player Status";
constexpr const char* kModeTab = "Media Mode";

// Positions in a condition string.
constexpr std::size_t kTab = 1;
constexpr std::size_t kWord = 2;
constexpr std::size_t kAnswer = 3;

}  // namespace

std::string Conditions::ConditionUI(std::int16_t cond_num) {
  const std::string answers = "\r\t\t1\t0\tCondition:\tYes\tNo";
  if (cond_num == 1) return kStatusTab + ("\t1\t0\tStatus \tPlaying\tPaused\tMuted" + answers);
  if (cond_num == 2) return kModeTab + ("\t1\t0\tMode:\tShuffle Mode\tLoop Mode" + answers);
  return {};
}

std::string Conditions::ConditionUIFormat(const std::string& cond_str) {
  const std::vector<std::string> fields = base::Split(cond_str, '\x02');
  if (fields.size() <= kAnswer || (fields[kTab] != kStatusTab && fields[kTab] != kModeTab)) return {};
  return std::string(plugin::kName) + " " + fields[kWord] + ": " + fields[kAnswer];
}

bool Conditions::ConditionCheck(const std::string& cond_str) {
  if (!state_.Initialized) return false;
  const std::vector<std::string> fields = base::Split(cond_str, '\x02');
  if (fields.size() <= kAnswer) return false;
  bool measured = false;
  bool known = false;
  base::Attempt step;
  step([&] { known = measure(fields[kTab], fields[kWord], measured); });
  // Everything but the exact word "No" asks for "Yes".
  const bool wanted = fields[kAnswer] != "No";
  return known && measured == wanted;
}

bool Conditions::measure(const std::string& tab, const std::string& word, bool& answer) {
  if (tab == kStatusTab) {
    if (word == "Playing") return answer = calls_.IsPlaying(), true;
    if (word == "Paused") return answer = form_.wmp9().playState() == player::kPaused, true;
    if (word == "Muted") return answer = form_.settings().mute(), true;
  }
  // The dialog offers "Loop Mode" and "Shuffle Mode": a condition made in it matches neither word and never
  // holds. Hosts have stored such conditions, and a change here would make their events run.
  if (tab == kModeTab && (word == "Loop" || word == "Shuffle"))
    return answer = form_.settings().getMode(word), true;
  return false;
}

}  // namespace automation
