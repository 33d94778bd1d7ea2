#include "bus/Link.hpp"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <system_error>

#include "base/Failure.hpp"
#include "bus/Errors.hpp"
#include "bus/Paths.hpp"
#include "bus/RemoteObject.hpp"
#include "bus/Serve.hpp"

namespace bus {

using base::Milliseconds;

namespace {

constexpr std::chrono::microseconds kReplyTimeout = std::chrono::minutes(30);
constexpr Milliseconds kLongestWait = std::chrono::minutes(1);
constexpr const char* kDaemon = "org.freedesktop.DBus";
constexpr const char* kDaemonPath = "/org/freedesktop/DBus";

/// Counts a call for as long as it is served.
class Served {
 public:
  explicit Served(int& depth) : depth_(depth) { ++depth_; }
  ~Served() { --depth_; }
  Served(const Served&) = delete;
  Served& operator=(const Served&) = delete;
  Served(Served&&) = delete;
  Served& operator=(Served&&) = delete;

 private:
  int& depth_;
};

[[noreturn]] void ThrowGone() { throw base::Failure(base::number::kHostGone); }

void CheckConnected(int result, const std::string& address) {
  if (result >= 0) return;
  throw base::Failure(base::number::kHostGone, "There is no message bus" +
                                                   (address.empty() ? std::string() : " at " + address) +
                                                   ": " + std::system_category().message(-result));
}

}  // namespace

std::shared_ptr<Link> Link::connect(PollLoop& loop, const std::string& address) {
  sd_bus* bus = nullptr;
  if (address.empty()) {
    CheckConnected(sd_bus_open_user(&bus), address);
  } else {
    CheckConnected(sd_bus_new(&bus), address);
  }
  Bus owned(bus);
  if (!address.empty()) {
    CheckConnected(sd_bus_set_address(bus, address.c_str()), address);
    CheckConnected(sd_bus_set_bus_client(bus, 1), address);
    CheckConnected(sd_bus_start(bus), address);
  }
  const char* name = nullptr;
  CheckConnected(sd_bus_get_unique_name(bus, &name), address);  // waits for the bus's greeting
  auto link = std::make_shared<Link>(loop, std::move(owned));
  link->uniqueName_ = name;
  link->start();
  return link;
}

Link::Link(PollLoop& loop, Bus bus) : loop_(loop), bus_(std::move(bus)) {}

void Link::start() {
  sd_bus_slot* slot = nullptr;
  Check(sd_bus_add_filter(
      bus_.get(), &slot,
      [](sd_bus_message* message, void* self, sd_bus_error*) {
        return static_cast<Link*>(self)->received(message);
      },
      this));
  filter_.reset(slot);
  watch_ = loop_.watch(sd_bus_get_fd(bus_.get()), POLLIN, [this](short) {
    const auto keep = shared_from_this();
    process();
  });
  callDaemon("AddMatch", {std::string("type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                                      "arg2=''")});
}

void Link::close() {
  alive_ = false;
  watch_.reset();
  incoming_.clear();
  lostNames_.clear();
  disconnected_ = nullptr;
  exports_.clear();
  filter_.reset();
  bus_.reset();
}

Message Link::newCall(const std::string& name, const std::string& path, const char* interface,
                      const std::string& member) {
  if (!alive_) ThrowGone();
  if (sd_bus_member_name_is_valid(member.c_str()) <= 0)
    throw base::Failure(base::number::kNoSuchMember, "The object has no such member: " + member);
  sd_bus_message* message = nullptr;
  Check(sd_bus_message_new_method_call(bus_.get(), &message, name.c_str(), path.c_str(), interface,
                                       member.c_str()));
  Message owned(message);
  Check(sd_bus_message_set_auto_start(message, 0));
  return owned;
}

Message Link::call(const Message& message, bool untilQuit) {
  const auto keep = shared_from_this();
  if (!alive_) ThrowGone();
  Pending pending;
  sd_bus_slot* slot = nullptr;
  Check(sd_bus_call_async(
      bus_.get(), &slot, message.get(),
      [](sd_bus_message* reply, void* waiting, sd_bus_error*) {
        static_cast<Pending*>(waiting)->reply.reset(sd_bus_message_ref(reply));
        return 1;
      },
      &pending, static_cast<std::uint64_t>(kReplyTimeout.count())));
  const Slot owned(slot);
  refresh();
  while (!pending.reply) {
    if (!alive_ || (untilQuit && loop_.open() && loop_.quitting())) ThrowGone();
    waitOnce();
  }
  if (const sd_bus_error* error = sd_bus_message_get_error(pending.reply.get()))
    throw FailureOf(OrEmpty(error->name), OrEmpty(error->message));
  return std::move(pending.reply);
}

/// Serves what has come, or waits for more. Whatever replies come are kept by the calls that wait for them.
void Link::waitOnce() {
  if (!incoming_.empty()) {
    loop_.whileClosed([&] { serveNext(); });
  } else if (loop_.open()) {
    loop_.turn(timeout());
    if (alive_) process();  // lets a reply's time run out
  } else {
    pollBus(timeout());
    process();
  }
}

void Link::pollBus(Milliseconds limit) {
  const int events = sd_bus_get_events(bus_.get());
  if (events < 0) return lost();
  pollfd descriptor{sd_bus_get_fd(bus_.get()), static_cast<short>(events), 0};
  ::poll(&descriptor, 1, static_cast<int>(limit.count()));
}

Milliseconds Link::timeout() const {
  std::uint64_t until = 0;
  if (sd_bus_get_timeout(bus_.get(), &until) < 0) return Milliseconds(0);
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto limit = now + kLongestWait;
  if (until >=
      static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(limit).count()))
    return kLongestWait;
  return std::max(Milliseconds(0), std::chrono::ceil<Milliseconds>(std::chrono::microseconds(until) - now));
}

void Link::send(const Message& message) {
  if (!alive_) return;
  Check(sd_bus_send(bus_.get(), message.get(), nullptr));
  refresh();
}

Message Link::daemonMessage(const std::string& member, const std::vector<base::Value>& args) {
  Message message = newCall(kDaemon, kDaemonPath, kDaemon, member);
  for (const auto& arg : args) {
    if (const auto* number = std::get_if<std::int32_t>(&arg.held())) {
      const auto flags = static_cast<std::uint32_t>(*number);
      Check(sd_bus_message_append_basic(message.get(), SD_BUS_TYPE_UINT32, &flags));
    } else {
      AppendPlain(message.get(), arg, *this);
    }
  }
  return message;
}

Message Link::callDaemon(const std::string& member, const std::vector<base::Value>& args) {
  const Message message = daemonMessage(member, args);
  Message reply;
  loop_.whileClosed([&] { reply = call(message); });
  return reply;
}

Message Link::callDaemonLong(const std::string& member, const std::vector<base::Value>& args) {
  return call(daemonMessage(member, args), true);
}

void Link::process() {
  while (alive_) {
    const int result = sd_bus_process(bus_.get(), nullptr);
    if (result < 0) return lost();
    if (result == 0) break;
  }
  refresh();
}

void Link::refresh() {
  if (!alive_ || !watch_) return;
  const int events = sd_bus_get_events(bus_.get());
  if (events < 0) return lost();
  watch_->events(static_cast<short>(events));
}

void Link::lost() {
  if (!alive_) return;
  alive_ = false;
  watch_.reset();
  incoming_.clear();
  owners_.clear();
  descriptions_.clear();
  loop_.post([weak = weak_from_this()] {
    const auto link = weak.lock();
    if (link && link->disconnected_) std::exchange(link->disconnected_, nullptr)();
  });
}

int Link::received(sd_bus_message* message) {
  std::uint8_t type = 0;
  sd_bus_message_get_type(message, &type);
  if (type == SD_BUS_MESSAGE_METHOD_CALL) {
    if (std::string_view(OrEmpty(sd_bus_message_get_interface(message))) == kPeer) return 0;
    incoming_.emplace_back(sd_bus_message_ref(message));
    loop_.post([weak = weak_from_this()] {
      if (const auto link = weak.lock()) link->serveNext();
    });
    return 1;
  }
  if (sd_bus_message_is_signal(message, kDaemon, "NameOwnerChanged") > 0) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &after) > 0 && *after == '\0') nameLost(name);
    return 1;
  }
  return 0;
}

void Link::nameLost(const std::string& name) {
  owners_.erase(name);
  std::erase_if(descriptions_, [&](const auto& description) { return description.first.first == name; });
  loop_.post([weak = weak_from_this(), name] {
    const auto link = weak.lock();
    if (!link || !link->alive_) return;
    link->exports_.dropHolder(name);
    const auto gone = link->lostNames_.find(name);
    if (gone == link->lostNames_.end()) return;
    const auto event = gone->second;  // the event may put another in its place
    event();
  });
}

void Link::serveNext() {
  if (incoming_.empty()) return;
  const Message message = std::move(incoming_.front());
  incoming_.pop_front();
  const auto keep = shared_from_this();
  const Served counted(depth_);
  Serve(keep, message);
}

base::ObjectRef Link::resolve(const Address& address, const std::string& sender) {
  if (address.path == "/") return nullptr;
  const std::string& name = address.name.empty() ? sender : address.name;
  if (name == uniqueName_ || ownNames_.contains(name)) {
    if (auto own = exports_.find(address.path)) return own;
  }
  if (sd_bus_service_name_is_valid(name.c_str()) <= 0)
    throw base::Failure(base::number::kTypeMismatch, "No object reference: " + name);
  return std::make_shared<RemoteObject>(shared_from_this(), name, address.path,
                                        address.path.starts_with(kSentObjects));
}

Address Link::addressOf(const base::ObjectRef& object, const std::string& receiver) {
  const auto* remote = dynamic_cast<const RemoteObject*>(object.get());
  if (remote != nullptr && remote->isOn(*this)) return {remote->name(), remote->path()};
  return {uniqueName_, exports_.pathFor(object, holderOf(receiver))};
}

/// Who counts as the holder of what is sent to a name: the process that owns it.
std::string Link::holderOf(const std::string& receiver) {
  if (receiver.starts_with(':')) return receiver;
  const auto known = owners_.find(receiver);
  if (known != owners_.end()) return known->second;
  const Message reply = callDaemon("GetNameOwner", {receiver});
  return owners_[receiver] = base::ToText(Read(reply.get(), *this));
}

std::shared_ptr<const NodeInfo> Link::describe(const std::string& name, const std::string& path) {
  const auto known = descriptions_.find({name, path});
  if (known != descriptions_.end()) return known->second;
  std::shared_ptr<const NodeInfo> described;
  try {
    loop_.whileClosed([&] { described = std::make_shared<NodeInfo>(ParseNode(introspect(name, path))); });
  } catch (const base::Failure& failure) {
    if (failure.number() == base::number::kHostGone) return nullptr;
  }
  return descriptions_[{name, path}] = described;
}

std::string Link::introspect(const std::string& name, const std::string& path) {
  const Message reply = call(newCall(name, path, kIntrospectable, "Introspect"));
  return base::ToText(Read(reply.get(), *this));
}

void Link::release(const std::string& name, const std::string& path) {
  descriptions_.erase({name, path});
  if (!alive_) return;
  const Message message = newCall(name, path, kReferences, kRelease);
  Check(sd_bus_message_set_expect_reply(message.get(), 0));
  send(message);
}

}  // namespace bus
