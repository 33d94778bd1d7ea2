#pragma once
#include <httplib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "standin/http/BodyFrame.hpp"
#include "standin/http/Channel.hpp"
#include "standin/http/RequestHead.hpp"

namespace standin {

/// What one connection may take.
struct WebLimits {
  std::size_t connections = 96;  ///< at once; beyond that the one that has kept us waiting longest goes
  std::size_t queued = 256;      ///< that wait for a thread; one more is closed unheard
  std::size_t threads = 96;
  std::size_t head = 64U << 10U;         ///< bytes of a request before its body
  std::size_t body = 4U << 20U;          ///< bytes of a request's body, as sent
  std::size_t leftOver = 32U << 20U;     ///< bytes of a refused body that are still taken, unread
  std::chrono::seconds whole{20};        ///< for a request to be there in full
  std::chrono::seconds idle{2};          ///< between two requests
  std::chrono::milliseconds brief{500};  ///< for a peer, in all of a request and its answer, before it is
                                         ///< one that keeps us waiting
  std::chrono::seconds drained{5};       ///< for the rest of a refused body
  std::chrono::seconds answered{15};     ///< for each piece of an answer to be taken
  int requests = 100;                    ///< on one connection
};

/// Whether something is to be read of a peer.
enum class Waits {
  kNot,
  kBriefly,  ///< as for everybody
  kLong,     ///< it keeps us waiting, or has been answered and may come again
};

/// Whether the socket is ready for one of the events, as `poll` has them, before the time is over.
bool ReadyBefore(std::chrono::steady_clock::time_point end, socket_t socket, short events);

/// What is left of the time that a peer is waited for before it is one that keeps us waiting.
using Patience = std::chrono::steady_clock::duration;

/// What `step` gets of a peer before the end, which it is given; `waits` is told how long it takes. The time
/// goes off the patience, so that many short waits count like a long one.
template <class Step>
auto Awaited(std::chrono::steady_clock::time_point end, Patience& patience,
             const std::function<void(Waits)>& waits, const Step& step) {
  using Clock = std::chrono::steady_clock;
  const auto begin = Clock::now();
  waits(patience > Patience::zero() ? Waits::kBriefly : Waits::kLong);
  auto got = step(std::min(end, begin + patience));
  const auto now = Clock::now();
  patience -= std::min(patience, now - begin);
  if (!got && now < end) {
    waits(Waits::kLong);
    got = step(end);
  }
  waits(Waits::kNot);
  return got;
}

/// One request after the other and their answers on a socket, within the limits.
class GuardedStream : public httplib::Stream {
 public:
  /// `waits` is told when it begins and ends to wait for its peer. All must outlive it.
  GuardedStream(socket_t socket, Channel& channel, const WebLimits& limits, std::function<void(Waits)> waits);

  [[nodiscard]] bool is_readable() const override;
  [[nodiscard]] bool is_writable() const override;
  ssize_t read(char* into, std::size_t size) override;
  ssize_t write(const char* data, std::size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  [[nodiscard]] socket_t socket() const override { return socket_; }

  /// What comes before the first request; false when the peer doesn't get there.
  bool begin();
  /// Waits for the next request on the same connection, and takes its head. One that is not to be passed on
  /// is answered here. False then, and when none comes; behind a body that was not read to its end nothing
  /// can be understood any more.
  bool next();
  /// Answers, and nothing more on this connection.
  void refuse(const HeadRefusal& why);
  void refuse(const HeadRefusal& why, std::string_view type, std::string_view text);
  /// Takes what a peer goes on sending of a body that nobody has read, so that the answer reaches it: a
  /// connection closed with bytes unread is reset, and takes the answer along.
  void drainBody();

 private:
  using Time = std::chrono::steady_clock::time_point;
  /// How much the step has moved of what it is about, before the end; nothing where the peer doesn't get
  /// there.
  template <class Step>
  std::optional<std::size_t> taken(Time end, const Step& step);
  bool fill();
  /// The head of the next request, up to the empty line; answers one that is not understood.
  bool takeHead();

  socket_t socket_;
  Channel& channel_;
  const WebLimits& limits_;
  std::function<void(Waits)> waits_;
  Time end_;
  Patience patience_;  ///< for one request and its answer
  std::array<char, 4096> buffer_{};
  std::size_t used_ = 0;
  std::size_t filled_ = 0;
  std::string head_;
  std::size_t headRead_ = 0;
  BodyFrame body_;
  bool ended_ = false;     ///< the peer has, or has taken too long
  bool answered_ = false;  ///< something
  bool refused_ = false;
};

}  // namespace standin
