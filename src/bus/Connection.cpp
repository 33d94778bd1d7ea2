#include "bus/Connection.hpp"

#include "base/Failure.hpp"
#include "bus/Errors.hpp"
#include "bus/Link.hpp"
#include "bus/RemoteObject.hpp"

namespace bus {

namespace {

constexpr std::int32_t kDoNotQueue = 4;
constexpr std::int32_t kPrimaryOwner = 1;
constexpr std::int32_t kAlreadyOwner = 4;

}  // namespace

Connection::Connection(PollLoop& loop, const std::string& address) : link_(Link::connect(loop, address)) {}

Connection::~Connection() { link_->close(); }

void Connection::claimName(const std::string& name) {
  const Message reply = link_->callDaemon("RequestName", {name, kDoNotQueue});
  const auto answer = base::ToInt32(Read(reply.get(), *link_));
  if (answer != kPrimaryOwner && answer != kAlreadyOwner)
    throw base::Failure(base::number::kKeyInUse, "The name " + name + " is taken");
  link_->addOwnName(name);
}

std::string Connection::uniqueName() const { return link_->uniqueName(); }

void Connection::exportObject(const std::string& path, base::ObjectRef object) {
  link_->exports().add(path, std::move(object));
}

void Connection::withdraw(const std::string& path) { link_->exports().withdraw(path); }

base::ObjectRef Connection::proxy(const std::string& name, const std::string& path) {
  if (sd_bus_service_name_is_valid(name.c_str()) <= 0 || sd_bus_object_path_is_valid(path.c_str()) <= 0)
    throw base::Failure(base::number::kInvalidArgument, "No object of the bus: " + name + " " + path);
  return std::make_shared<RemoteObject>(link_, name, path, false);
}

void Connection::startService(const std::string& name) {
  try {
    link_->callDaemonLong("StartServiceByName", {name, std::int32_t{0}});
  } catch (const base::Failure& failure) {
    if (!link_->alive()) throw;
    throw base::Failure(base::number::kCannotCreate, failure.description());
  }
}

bool Connection::hasOwner(const std::string& name) {
  const Message reply = link_->callDaemon("NameHasOwner", {name});
  return base::ToBoolean(Read(reply.get(), *link_));
}

std::uint32_t Connection::processOf(const std::string& name) {
  try {
    const Message reply = link_->callDaemon("GetConnectionUnixProcessID", {name});
    return static_cast<std::uint32_t>(base::ToDouble(Read(reply.get(), *link_)));
  } catch (const base::Failure&) {
    return 0;
  }
}

void Connection::replyWithin(std::optional<base::Milliseconds> limit) { link_->replyWithin(limit); }

void Connection::waitLongFor(const std::string& name) { link_->waitLongFor(name); }

bool Connection::servesStranger() const { return link_->servesStranger(); }

void Connection::onNameLost(const std::string& name, std::function<void()> gone) {
  link_->onNameLost(name, std::move(gone));
}

void Connection::onDisconnect(std::function<void()> gone) { link_->onDisconnect(std::move(gone)); }

std::string Connection::peerOf(const base::Object& object) {
  const auto* remote = dynamic_cast<const RemoteObject*>(&object);
  return remote == nullptr ? std::string() : remote->name();
}

std::string Connection::pathOf(const base::Object& object) {
  const auto* remote = dynamic_cast<const RemoteObject*>(&object);
  return remote == nullptr ? std::string() : remote->path();
}

std::string Connection::introspect(const std::string& name, const std::string& path) {
  return link_->introspect(name, path);
}

}  // namespace bus
