#pragma once
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

namespace standin {

/// What happens in the house, on its way to the open pages. One thread tells, many wait. The last events are
/// kept; a page that falls behind them is told to load everything anew.
class LiveFeed {
 public:
  explicit LiveFeed(std::size_t kept = 1024, std::size_t mostReaders = 24);

  /// `kind` is one word, `data` one line.
  void tell(const std::string& kind, const std::string& data);
  /// Ends all waits, now and later.
  void close();

  /// A place among the readers, taken for as long as the object lives.
  class Reader {
   public:
    explicit Reader(LiveFeed& feed);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    Reader(Reader&&) = delete;
    Reader& operator=(Reader&&) = delete;

    /// False when there was no place left.
    [[nodiscard]] bool admitted() const { return admitted_; }
    /// Waits for events and answers them in the form of an event stream; a remark when `limit` has passed;
    /// an empty text once the feed is closed.
    std::string wait(std::chrono::milliseconds limit);

   private:
    LiveFeed& feed_;
    bool admitted_ = false;
    std::uint64_t next_ = 0;
  };

 private:
  std::mutex mutex_;
  std::condition_variable told_;
  std::deque<std::string> events_;
  std::uint64_t first_ = 0;  ///< number of the oldest event kept
  std::size_t kept_;
  std::size_t mostReaders_;
  std::size_t readers_ = 0;
  bool closed_ = false;
};

}  // namespace standin
