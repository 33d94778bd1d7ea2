#include "standin/rules/PluginWords.hpp"

#include <algorithm>
#include <utility>

namespace standin {
namespace {

constexpr base::Milliseconds kSoon(1);
constexpr std::size_t kOfAnEntry = 200;  // bytes that it takes besides its texts, about

std::string KeyOf(PluginPart part, const std::string& stored) {
  return static_cast<char>('0' + static_cast<int>(part)) + stored;
}

}  // namespace

PluginWords::PluginWords(base::Loop& loop, Ask ask, Limits limits)
    : loop_(loop), ask_(std::move(ask)), limits_(limits), timer_(loop.makeTimer(kSoon, [this] {
        timer_->enabled(false);
        askNext();
      })) {}

std::string PluginWords::bare(const std::string& stored) {
  std::string words;
  std::size_t begin = 0;
  for (int field = 0; begin <= stored.size(); ++field) {
    const std::size_t end = std::min(stored.find('\2', begin), stored.size());
    if (field >= 2 && end > begin) {
      if (!words.empty()) words += ", ";
      words.append(stored, begin, end - begin);
    }
    begin = end + 1;
  }
  // A text of another form is shown whole.
  if (words.empty()) words = stored;
  std::replace_if(
      words.begin(), words.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  return words;
}

std::string PluginWords::of(PluginPart part, const std::string& stored) {
  std::string key = KeyOf(part, stored);
  const auto found = known_.find(key);
  if (found != known_.end()) {
    found->second.used = loop_.now();
    return found->second.words.empty() ? bare(stored) : found->second.words;
  }
  // The words will be about as long as the text. Without room they are not asked for again and again.
  const std::size_t bytes = 2 * stored.size() + kOfAnEntry;
  if (makeRoom(bytes)) {
    bytes_ += bytes;
    known_.emplace(key, Known{.used = loop_.now()});
    waiting_.push_back(std::move(key));
    if (!asking_ && !timer_->enabled()) {
      timer_->interval(kSoon);
      timer_->enabled(true);
    }
  }
  return bare(stored);
}

void PluginWords::askAgain() {
  if (asking_ || waiting_.empty()) return;
  timer_->interval(kSoon);
  timer_->enabled(true);
}

bool PluginWords::makeRoom(std::size_t bytes) {
  const auto fits = [&] { return bytes_ + bytes <= limits_.bytes; };
  const base::Milliseconds now = loop_.now();
  // Not at every text that there is no room for: each time all are looked through.
  if (fits() || now - cleared_ < limits_.unused) return fits();
  cleared_ = now;
  for (auto each = known_.begin(); each != known_.end();) {
    const Known& known = each->second;
    if (!known.told || now - known.used < limits_.unused) {
      ++each;
    } else {
      bytes_ -= std::min(bytes_, 2 * (each->first.size() - 1) + kOfAnEntry);
      each = known_.erase(each);
    }
  }
  return fits();
}

void PluginWords::askNext() {
  if (asking_ || waiting_.empty()) return;
  std::vector<std::string> keys;
  std::vector<Wanted> wanted;
  while (!waiting_.empty() && keys.size() < limits_.batch) {
    keys.push_back(std::move(waiting_.front()));
    waiting_.pop_front();
    wanted.push_back({static_cast<PluginPart>(keys.back()[0] - '0'), keys.back().substr(1)});
  }
  asking_ = true;
  ask_(wanted, [this, keys, alive = std::weak_ptr<bool>(alive_)](const Answer& answer) {
    if (!alive.expired()) hear(keys, answer);
  });
}

void PluginWords::hear(const std::vector<std::string>& keys, const Answer& answer) {
  asking_ = false;
  const std::size_t told = std::min(keys.size(), answer.words.size());
  for (std::size_t i = 0; i < told; ++i) {
    const auto found = known_.find(keys[i]);
    if (found == known_.end()) continue;
    Known& known = found->second;
    known.words = answer.words[i];
    known.told = true;
    news_ = news_ || (!known.words.empty() && known.words != bare(keys[i].substr(1)));
  }
  if (answer.gone) {
    waiting_.insert(waiting_.begin(), keys.begin() + static_cast<std::ptrdiff_t>(told), keys.end());
  }
  if (!waiting_.empty()) {
    timer_->interval(answer.gone ? limits_.again : kSoon);
    timer_->enabled(true);
  }
  if ((waiting_.empty() || answer.gone) && std::exchange(news_, false)) onNews();
}

}  // namespace standin
