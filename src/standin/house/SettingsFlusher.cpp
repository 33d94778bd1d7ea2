#include "standin/house/SettingsFlusher.hpp"

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kInterval = std::chrono::seconds(2);
constexpr int kMostLooks = 30;

}  // namespace

SettingsFlusher::SettingsFlusher(base::Loop& loop, House& house)
    : house_(house), timer_(loop.makeTimer(kInterval, [this] { look(); })) {
  timer_->enabled(true);
}

void SettingsFlusher::look() {
  const std::size_t size = house_.settings.journalSize();
  const bool idle = size == seen_;
  seen_ = size;
  if (size == 0 || (!idle && ++looks_ < kMostLooks)) return;
  looks_ = 0;
  flushNow();
}

void SettingsFlusher::flushNow() {
  try {
    if (house_.settings.pending()) house_.settings.flush();
    complained_ = false;
  } catch (const base::Failure& failure) {
    // The journal holds everything; one line is enough until it works again.
    if (!complained_) house_.log.write("Error", "The settings stay in the journal: " + failure.description());
    complained_ = true;
  }
}

}  // namespace standin
