#include "desktop/Display.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>

#include <QtCore/QLibraryInfo>
#include <QtCore/QPluginLoader>
#include <QtCore/QString>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "files/Descriptor.hpp"

namespace desktop {

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool WaylandAnswers() {
  std::string path = Variable("WAYLAND_DISPLAY");
  if (path.empty()) return false;
  if (path.front() != '/') path = Variable("XDG_RUNTIME_DIR") + "/" + path;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const files::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return socket.get() >= 0 &&
         ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

/// A plug-in file may be missing, or a library that it needs.
bool Loads(const QString& plugin) {
  QPluginLoader loader(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms/lib" + plugin + ".so");
  return loader.load();
}

}  // namespace

void Display::Close::operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }

Display::Display(std::string platform, Connection connection)
    : platform_(std::move(platform)), connection_(std::move(connection)) {}

Display::Connection Display::connectX() {
  if (Variable("DISPLAY").empty()) return nullptr;
  Connection connection(xcb_connect(nullptr, nullptr));
  if (xcb_connection_has_error(connection.get()) != 0) return nullptr;
  return connection;
}

std::optional<Display> Display::reach() {
  // Whoever names a platform without a screen wants none.
  const std::string wanted = Variable("QT_QPA_PLATFORM");
  if (wanted.rfind("offscreen", 0) == 0 || wanted.rfind("minimal", 0) == 0) return std::nullopt;
  // X goes first: only there may a window say where it stands.
  if (auto connection = connectX(); connection && Loads("qxcb")) return Display("xcb", std::move(connection));
  if (WaylandAnswers() && Loads("qwayland-generic")) return Display("wayland", nullptr);
  return std::nullopt;
}

}  // namespace desktop
