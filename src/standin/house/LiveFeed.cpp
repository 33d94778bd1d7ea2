#include "standin/house/LiveFeed.hpp"

#include <algorithm>
#include <charconv>
#include <random>
#include <utility>

namespace standin {

LiveFeed::LiveFeed(Limits limits) : name_(std::to_string(std::random_device()())), limits_(limits) {}

void LiveFeed::tell(const std::string& kind, const std::string& data, Audience audience) {
  {
    const std::lock_guard lock(mutex_);
    const bool whole = kind.size() + data.size() <= limits_.longest;
    events_.push_back({"id: " + nameOf(first_ + events_.size()) +
                           (whole ? "\nevent: " + kind + "\ndata: " + data : "\nevent: reload\ndata: {}") +
                           "\n\n",
                       audience});
    bytes_ += events_.back().text.size();
    while (events_.size() > limits_.kept || bytes_ > limits_.bytes) {
      bytes_ -= events_.front().text.size();
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

std::size_t LiveFeed::readers() const {
  const std::lock_guard lock(mutex_);
  return readers_;
}

std::size_t LiveFeed::readersOf(const std::string& session) const {
  const std::lock_guard lock(mutex_);
  const auto found = ofSession_.find(session);
  return found == ofSession_.end() ? 0 : found->second;
}

bool LiveFeed::hasPlace(const std::string& session, Audience audience) const {
  const std::size_t forGuests = limits_.readers - std::min(limits_.forOwner, limits_.readers);
  const auto mine = ofSession_.find(session);
  return readers_ < limits_.readers && (audience == Audience::kOwner || guests_ < forGuests) &&
         (mine == ofSession_.end() || mine->second < limits_.ofSession);
}

LiveFeed::Reader::Reader(LiveFeed& feed, std::string session, const std::string& last, Audience audience)
    : feed_(feed), session_(std::move(session)), audience_(audience) {
  const std::lock_guard lock(feed.mutex_);
  admitted_ = feed.hasPlace(session_, audience_);
  if (admitted_) {
    ++feed.readers_;
    if (audience_ != Audience::kOwner) ++feed.guests_;
    ++feed.ofSession_[session_];
  }
  const std::uint64_t end = feed.first_ + feed.events_.size();
  next_ = end;
  if (last.empty()) return;
  std::uint64_t heard = 0;
  const std::string mark = feed.name_ + ".";
  const bool ours = last.starts_with(mark);
  if (ours) std::from_chars(last.data() + mark.size(), last.data() + last.size(), heard);
  behind_ = !ours || heard >= end || heard + 1 < feed.first_;
  if (!behind_) next_ = heard + 1;
}

LiveFeed::Reader::~Reader() {
  const std::lock_guard lock(feed_.mutex_);
  if (!admitted_) return;
  --feed_.readers_;
  if (audience_ != Audience::kOwner) --feed_.guests_;
  if (--feed_.ofSession_[session_] == 0) feed_.ofSession_.erase(session_);
}

std::string LiveFeed::Reader::wait(std::chrono::milliseconds limit) {
  std::unique_lock lock(feed_.mutex_);
  const auto end = [&] { return feed_.first_ + feed_.events_.size(); };
  feed_.told_.wait_for(lock, limit, [&] {
    while (next_ >= feed_.first_ && next_ < end() && !mayHear(feed_.events_[next_ - feed_.first_])) ++next_;
    return feed_.closed_ || behind_ || next_ < end();
  });
  if (feed_.closed_) return {};
  if (behind_ || next_ < feed_.first_) {
    behind_ = false;
    next_ = end();
    const std::string upToHere = next_ == 0 ? std::string() : "id: " + feed_.nameOf(next_ - 1) + "\n";
    return upToHere + "event: reload\ndata: {}\n\n";
  }
  if (next_ == end()) return "event: alive\ndata: {}\n\n";
  std::string out;
  for (; next_ < end(); ++next_) {
    const Told& event = feed_.events_[next_ - feed_.first_];
    if (mayHear(event)) out += event.text;
  }
  return out;
}

}  // namespace standin
