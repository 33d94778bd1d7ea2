#pragma once
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>

namespace standin {

/// What happens in the house, on its way to the open pages. One thread tells, many wait. The last events are
/// kept: a page whose stream was cut hears what it has missed, and one that falls behind them is told to load
/// everything anew.
class LiveFeed {
 public:
  struct Limits {
    std::size_t kept = 1024;                      ///< events
    std::size_t bytes = std::size_t{8} << 20U;    ///< of all that are kept
    std::size_t longest = std::size_t{1} << 20U;  ///< bytes of an event; a longer one has all pages load anew
    std::size_t readers = 24;                     ///< in all
    std::size_t ofSession = 8;  ///< readers of one session, so that one browser leaves room for others
    std::size_t forOwner = 8;   ///< of all readers, places that are the owner's alone
  };
  LiveFeed() : LiveFeed(Limits()) {}
  explicit LiveFeed(Limits limits);

  /// Who may hear something; the owner hears what is for all, too.
  enum class Audience { kAll, kOwner };
  /// `kind` is one word, `data` one line.
  void tell(const std::string& kind, const std::string& data, Audience audience = Audience::kAll);
  /// Ends all waits, now and later.
  void close();
  /// How many listen now.
  [[nodiscard]] std::size_t readers() const;
  /// How many of a session's do.
  [[nodiscard]] std::size_t readersOf(const std::string& session) const;

  struct Told {
    std::string text;
    Audience audience = Audience::kAll;
  };
  /// A place among the readers, taken for as long as the object lives.
  class Reader {
   public:
    /// `session` tells the browsers apart. `last` names the event that the page has heard last, as the feed
    /// named it; empty for a page that has heard none. `audience`: `kOwner` where the owner reads.
    explicit Reader(LiveFeed& feed, std::string session = {}, const std::string& last = {},
                    Audience audience = Audience::kAll);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    Reader(Reader&&) = delete;
    Reader& operator=(Reader&&) = delete;

    /// False when there was no place left.
    [[nodiscard]] bool admitted() const { return admitted_; }
    /// Waits for events and answers them in the form of an event stream; an event "alive" when `limit` has
    /// passed, so that a page can tell a quiet house from a dead connection; an empty text once the feed is
    /// closed.
    std::string wait(std::chrono::milliseconds limit);

   private:
    [[nodiscard]] bool mayHear(const Told& event) const {
      return event.audience == Audience::kAll || audience_ == Audience::kOwner;
    }

    LiveFeed& feed_;
    std::string session_;
    Audience audience_;
    bool admitted_ = false;
    bool behind_ = false;  ///< what it has missed is no longer known
    std::uint64_t next_ = 0;
  };

 private:
  /// With the lock held.
  [[nodiscard]] bool hasPlace(const std::string& session, Audience audience) const;
  [[nodiscard]] std::string nameOf(std::uint64_t event) const { return name_ + "." + std::to_string(event); }

  mutable std::mutex mutex_;
  std::condition_variable told_;
  std::deque<Told> events_;
  std::size_t bytes_ = 0;    ///< of the events
  std::uint64_t first_ = 0;  ///< number of the oldest event kept
  const std::string name_;   ///< of this feed: events of another run of the server are not its own
  Limits limits_;
  std::map<std::string, std::size_t> ofSession_;
  std::size_t readers_ = 0;
  std::size_t guests_ = 0;  ///< of the readers, those who aren't the owner
  bool closed_ = false;
};

}  // namespace standin
