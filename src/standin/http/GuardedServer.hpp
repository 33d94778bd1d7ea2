#pragma once
#include <httplib.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "standin/http/GuardedStream.hpp"
#include "standin/http/Tls.hpp"

namespace standin {

/// A connection of the web's that is open now.
struct WebConnection {
  socket_t socket = INVALID_SOCKET;
  Waits waits = Waits::kNot;
  bool ended = false;  ///< to make room
};

/// The connections that are open, so that room can be made and all can be ended. Thread-safe.
class WebConnections {
 public:
  using Entry = std::list<WebConnection>::iterator;

  Entry add(socket_t socket);
  void remove(Entry entry);
  void waits(Entry entry, Waits value);
  [[nodiscard]] std::size_t count() const;
  [[nodiscard]] bool ending() const;
  /// Ends the oldest one that waits long for its peer. Where there is none it is the next one that does,
  /// unless one has gone by itself before. Who has only just come is heard.
  void makeRoom();
  /// Whether one is still to make room.
  [[nodiscard]] bool owesRoom() const;
  /// Has `work` done on this thread, with the connection that it is about closed unheard.
  void shed(const std::function<void()>& work);
  /// Whether that is going on, on this thread.
  [[nodiscard]] bool shedsHere() const;
  /// Ends what is read, now and of connections yet to come; what is being answered may go on.
  void endReading();
  /// Ends them all.
  void endAll();

 private:
  static void end(WebConnection& connection);

  mutable std::mutex mutex_;
  std::list<WebConnection> open_;  ///< the oldest first
  int owed_ = 0;                   ///< so many are still to make room
  bool ending_ = false;
  std::atomic<std::thread::id> shedder_{};
};

/// A web server that no peer can hold up: by sending slowly or without end, by not reading, or by opening
/// more and more connections.
class GuardedServer : public httplib::Server {
 public:
  GuardedServer() : GuardedServer(WebLimits()) {}
  explicit GuardedServer(const WebLimits& limits);

  /// From now on https is spoken, and nothing else. Before it listens.
  void speakAs(std::unique_ptr<TlsIdentity> identity) { identity_ = std::move(identity); }
  [[nodiscard]] bool speaksTls() const { return identity_ != nullptr; }

  /// Takes the port, any free one for 0. The port; 0 or less when it isn't to be had.
  int bind(const std::string& address, int port);

  /// Stops listening and ends all connections; answers under way have a moment left.
  void stopNow();

 private:
  bool process_and_close_socket(socket_t socket) override;
  bool serve(socket_t socket, WebConnections::Entry entry);
  /// Looks at the first byte, and answers one that is none of TLS.
  bool firstIsTls(socket_t socket, const std::function<void(Waits)>& waits);

  WebLimits limits_;
  std::unique_ptr<TlsIdentity> identity_;
  WebConnections connections_;
};

}  // namespace standin
