#pragma once
#include <chrono>
#include <functional>
#include <string>

#include "standin/house/LiveFeed.hpp"

namespace standin {

/// What a page's stream is sent, piece by piece, for as long as its session lives. It takes its place in the
/// feed when it is made; from there on it may be on another thread.
class LiveStream {
 public:
  struct Page {
    std::string session;  ///< tells the browsers apart
    std::string last{};   ///< the event that the page has heard last, if any
    LiveFeed::Audience audience = LiveFeed::Audience::kAll;  ///< `kOwner` where the owner reads
  };
  struct Times {
    std::chrono::milliseconds heartbeat{5000};  ///< of a quiet house
    std::chrono::milliseconds sessionCheck{
        15000};  ///< between two looks whether the session has grown too old
  };
  /// `known` tells whether the session still lives.
  LiveStream(LiveFeed& feed, const Page& page, std::function<bool()> known)
      : LiveStream(feed, page, std::move(known), Times()) {}
  LiveStream(LiveFeed& feed, const Page& page, std::function<bool()> known, Times times);

  /// False when there was no place left.
  [[nodiscard]] bool admitted() const { return reader_.admitted(); }
  /// Waits for the next piece; an empty text is the end. Nothing is in it that was told behind the end of the
  /// session, unless it has ended by its age alone.
  std::string next();

 private:
  using Clock = std::chrono::steady_clock;

  LiveFeed::Reader reader_;
  std::function<bool()> known_;
  Times times_;
  bool begun_ = false;
  Clock::time_point checked_ = Clock::now();
};

}  // namespace standin
