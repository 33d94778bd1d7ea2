#include "standin/house/LiveFeed.hpp"

namespace standin {

LiveFeed::LiveFeed(std::size_t kept, std::size_t mostReaders) : kept_(kept), mostReaders_(mostReaders) {}

void LiveFeed::tell(const std::string& kind, const std::string& data) {
  {
    const std::lock_guard lock(mutex_);
    events_.push_back("event: " + kind + "\ndata: " + data + "\n\n");
    if (events_.size() > kept_) {
      events_.pop_front();
      ++first_;
    }
  }
  told_.notify_all();
}

void LiveFeed::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  told_.notify_all();
}

LiveFeed::Reader::Reader(LiveFeed& feed) : feed_(feed) {
  const std::lock_guard lock(feed_.mutex_);
  admitted_ = feed_.readers_ < feed_.mostReaders_;
  if (admitted_) ++feed_.readers_;
  next_ = feed_.first_ + feed_.events_.size();
}

LiveFeed::Reader::~Reader() {
  const std::lock_guard lock(feed_.mutex_);
  if (admitted_) --feed_.readers_;
}

std::string LiveFeed::Reader::wait(std::chrono::milliseconds limit) {
  std::unique_lock lock(feed_.mutex_);
  const auto end = [&] { return feed_.first_ + feed_.events_.size(); };
  feed_.told_.wait_for(lock, limit, [&] { return feed_.closed_ || next_ < end(); });
  if (feed_.closed_) return {};
  if (next_ == end()) return ": still here\n\n";
  std::string out;
  if (next_ < feed_.first_) {
    out = "event: reload\ndata: {}\n\n";
    next_ = end();
  }
  for (; next_ < end(); ++next_) out += feed_.events_[next_ - feed_.first_];
  return out;
}

}  // namespace standin
