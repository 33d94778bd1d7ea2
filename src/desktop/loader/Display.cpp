#include "desktop/loader/Display.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "files/Descriptor.hpp"

namespace desktop {

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

/// How long a screen is waited for: one on another machine, or one that hangs, would let nobody hear music.
constexpr std::chrono::seconds kLongestConnecting(5);

/// Nothing when X does not answer, or not in time. Closing a connection that has an error frees it.
Connection ConnectX() {
  const std::string name = Variable("DISPLAY");
  if (name.empty()) return nullptr;
  // The library waits without a limit, and nothing ends its wait but the other side.
  auto promise = std::make_shared<std::promise<Connection>>();
  auto made = promise->get_future();
  std::thread([promise, name] {
    promise->set_value(Connection(xcb_connect(name.c_str(), nullptr)));
  }).detach();
  if (made.wait_for(kLongestConnecting) != std::future_status::ready) return nullptr;
  Connection connection = made.get();
  if (xcb_connection_has_error(connection.get()) != 0) return nullptr;
  return connection;
}

/// Negative when Wayland does not answer.
files::Descriptor ConnectWayland() {
  std::string path = Variable("WAYLAND_DISPLAY");
  if (path.empty()) return files::Descriptor(-1);
  if (path.front() != '/') path = Variable("XDG_RUNTIME_DIR") + "/" + path;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return files::Descriptor(-1);
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  files::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const auto* name = reinterpret_cast<const sockaddr*>(&address);
  if (socket.get() < 0 || ::connect(socket.get(), name, sizeof address) != 0) return files::Descriptor(-1);
  return socket;
}

}  // namespace

struct Display::Way {
  Connection x;
  files::Descriptor wayland{-1};
};

Display::Display(Kind kind, std::unique_ptr<Way> way) : kind_(kind), way_(std::move(way)) {}
Display::~Display() = default;
Display::Display(Display&&) noexcept = default;
Display& Display::operator=(Display&&) noexcept = default;

std::optional<Display> Display::reach(Kind kind) {
  // Whoever names a platform without a screen wants none.
  const std::string wanted = Variable("QT_QPA_PLATFORM");
  if (wanted.rfind("offscreen", 0) == 0 || wanted.rfind("minimal", 0) == 0) return std::nullopt;
  auto way = std::make_unique<Way>();
  if (kind == Kind::kX)
    way->x = ConnectX();
  else
    way->wayland = ConnectWayland();
  if (!way->x && way->wayland.get() < 0) return std::nullopt;
  return Display(kind, std::move(way));
}

int Display::descriptor() const {
  return way_->x ? xcb_get_file_descriptor(way_->x.get()) : way_->wayland.get();
}

// Nothing is asked on this way, so that what comes is told to everybody, such as a change of the keyboard's
// layout. It is thrown away.
bool Display::gone() const {
  std::array<char, 4096> piece{};
  ssize_t got = 0;
  do {
    got = ::recv(descriptor(), piece.data(), piece.size(), MSG_DONTWAIT);
  } while (got > 0 || (got < 0 && errno == EINTR));
  return got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
}

}  // namespace desktop
