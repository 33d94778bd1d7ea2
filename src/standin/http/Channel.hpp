#pragma once
#include <httplib.h>

#include <cstddef>

namespace standin {

/// Bytes over a connection's socket, in the clear or not. Nothing here waits.
class Channel {
 public:
  Channel() = default;
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;
  Channel(Channel&&) = delete;
  Channel& operator=(Channel&&) = delete;
  virtual ~Channel() = default;

  /// How a step ended: it has moved bytes, or takes a socket that can be read or written, or can't any more.
  enum class State { kMoved, kReads, kWrites, kEnded };
  struct Step {
    State state = State::kEnded;
    std::size_t count = 0;  ///< more than 0 where it has moved bytes
  };
  /// What has to come before the first byte; asked for again until it has moved (0 bytes).
  virtual Step begin() = 0;
  virtual Step receive(char* into, std::size_t size) = 0;
  virtual Step send(const char* from, std::size_t size) = 0;
  /// Whether something can be received though the socket has nothing to read.
  [[nodiscard]] virtual bool holds() const = 0;
  /// Tells the peer that nothing more is sent. No failure.
  virtual void endSending() = 0;
};

/// A socket as it is.
class PlainChannel : public Channel {
 public:
  explicit PlainChannel(socket_t socket) : socket_(socket) {}
  Step begin() override { return {.state = State::kMoved}; }
  Step receive(char* into, std::size_t size) override;
  Step send(const char* from, std::size_t size) override;
  [[nodiscard]] bool holds() const override { return false; }
  void endSending() override;

 private:
  socket_t socket_;
};

}  // namespace standin
