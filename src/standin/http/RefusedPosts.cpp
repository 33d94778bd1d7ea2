#include "standin/http/RefusedPosts.hpp"

#include <numeric>

namespace standin {
namespace {

constexpr std::array<const char*, 3> kWords{" from another origin", " with a foreign host name",
                                            " without session"};

}  // namespace

RefusedPosts::RefusedPosts(base::Loop& loop, HouseLog& log, base::Milliseconds pause)
    : loop_(loop), log_(log), timer_(loop.makeTimer(pause, [this] { pauseIsOver(); })) {}

RefusedPosts::~RefusedPosts() { tell(); }

void RefusedPosts::count(PostRefusal why) {
  const std::lock_guard lock(mutex_);
  ++counts_.at(static_cast<std::size_t>(why));
  if (begun_) return;
  begun_ = true;
  loop_.post([this] { begin(); });
}

void RefusedPosts::begin() {
  tell();
  timer_->enabled(true);
}

void RefusedPosts::pauseIsOver() {
  if (tell()) return;  // and the next pause has begun
  timer_->enabled(false);
  const std::lock_guard lock(mutex_);
  begun_ = std::accumulate(counts_.begin(), counts_.end(), std::size_t{0}) > 0;
  if (begun_) loop_.post([this] { begin(); });  // one has come since
}

bool RefusedPosts::tell() {
  Counts counts{};
  {
    const std::lock_guard lock(mutex_);
    counts.swap(counts_);
  }
  const std::size_t all = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
  if (all == 0) return false;
  std::string line = std::to_string(all) + (all == 1 ? " post" : " posts") + " refused: ";
  bool first = true;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts.at(i) == 0) continue;
    if (!first) line += ", ";
    first = false;
    line += std::to_string(counts.at(i)) + kWords.at(i);
  }
  log_.write("Warning", line);
  return true;
}

}  // namespace standin
