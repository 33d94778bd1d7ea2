#include "bus/Link.hpp"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <system_error>

#include "base/Attempt.hpp"
#include "bus/Errors.hpp"
#include "bus/Paths.hpp"
#include "bus/RemoteObject.hpp"
#include "bus/Serve.hpp"

namespace bus {

using base::Milliseconds;

namespace {

constexpr std::chrono::microseconds kReplyTimeout = kLongestReply;
constexpr Milliseconds kLongestWait = std::chrono::minutes(1);
constexpr Milliseconds kLookAtHeld = std::chrono::milliseconds(500);
constexpr const char* kDaemon = "org.freedesktop.DBus";
constexpr const char* kDaemonPath = "/org/freedesktop/DBus";

[[noreturn]] void ThrowGone() { throw base::Failure(base::number::kHostGone); }

[[noreturn]] void ThrowSilent() {
  throw base::Failure(base::number::kHostGone, "The program that was asked doesn't answer");
}

void CheckConnected(int result, const std::string& address) {
  if (result >= 0) return;
  throw base::Failure(base::number::kHostGone, "There is no message bus" +
                                                   (address.empty() ? std::string() : " at " + address) +
                                                   ": " + std::system_category().message(-result));
}

}  // namespace

/// A call that waits for its reply. The calls of one thread wait within each other.
struct Link::Waiting {
  Waiting(Link& owner, std::string name, bool isStranger, Milliseconds end)
      : link(owner), destination(std::move(name)), stranger(isStranger), until(end) {
    if (stranger) ++link.strangers_;
    link.waits_.push_back(this);
  }
  ~Waiting() {
    link.waits_.pop_back();
    if (stranger) --link.strangers_;
  }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;
  Waiting(Waiting&&) = delete;
  Waiting& operator=(Waiting&&) = delete;

  Link& link;
  std::string destination;
  bool stranger;
  Milliseconds until;
  Message reply;
};

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

Link::Link(PollLoop& loop, Bus bus)
    : loop_(loop), bus_(std::move(bus)), calls_(loop), serving_(loop), replyLimit_(loop) {}

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
  calls_.clear();
  lostNames_.clear();
  disconnected_ = nullptr;
  exports_.clear();
  filter_.reset();
  bus_.reset();
}

Draft Link::newCall(const std::string& name, const std::string& path, const char* interface,
                    const std::string& member) {
  if (!alive_) ThrowGone();
  if (sd_bus_member_name_is_valid(member.c_str()) <= 0)
    throw base::Failure(base::number::kNoSuchMember, "The object has no such member: " + member);
  sd_bus_message* message = nullptr;
  Check(sd_bus_message_new_method_call(bus_.get(), &message, name.c_str(), path.c_str(), interface,
                                       member.c_str()));
  Draft draft{Message(message)};
  Check(sd_bus_message_set_auto_start(message, 0));
  return draft;
}

Message Link::call(const Message& message, Patience patience) {
  const auto keep = shared_from_this();
  if (!alive_) ThrowGone();
  const std::string destination = OrEmpty(sd_bus_message_get_destination(message.get()));
  const bool stranger = isStranger(destination);
  if (stranger && strangers_ >= kMostStrangers) ThrowSilent();
  Milliseconds until = Milliseconds::max();  // the bus library has its own limit
  if (stranger)
    until = loop_.now() + kLongestOfStrangers;
  else if (patience == Patience::kField && !longFor_.empty())
    until = loop_.now() + kLongestField;
  Waiting waiting(*this, destination, stranger, until);
  sd_bus_slot* slot = nullptr;
  Check(sd_bus_call_async(
      bus_.get(), &slot, message.get(),
      [](sd_bus_message* reply, void* target, sd_bus_error*) {
        auto* waiting = static_cast<Waiting*>(target);
        waiting->reply.reset(sd_bus_message_ref(reply));
        if (waiting->destination != kDaemon) waiting->link.calls_.moved();
        return 1;
      },
      &waiting, static_cast<std::uint64_t>(kReplyTimeout.count())));
  const Slot owned(slot);
  refresh();
  if (stranger)
    loop_.whileOpen([&] { waitFor(waiting, true); });
  else
    waitFor(waiting, patience == Patience::kUntilQuit);
  if (const sd_bus_error* error = sd_bus_message_get_error(waiting.reply.get()))
    throw FailureOf(OrEmpty(error->name), descriptionIn(waiting.reply.get(), *error));
  return std::move(waiting.reply);
}

void Link::waitFor(const Waiting& waiting, bool untilQuit) {
  while (!waiting.reply) {
    const bool quits = untilQuit && loop_.open() && loop_.quitting();
    if (!alive_ || quits || replyLimit_.over()) ThrowGone();
    if (loop_.now() >= waiting.until) ThrowSilent();
    waitOnce(waiting);
  }
}

bool Link::isStranger(const std::string& destination) {
  if (longFor_.empty() || destination == longFor_ || destination == kDaemon) return false;
  std::string vouched;
  base::Handled([&] { vouched = holderOf(longFor_); }, [](const base::Failure&) {});
  return vouched.empty() || (destination != vouched && holderOf(destination) != vouched);
}

/// A description that is no plain text follows as bytes.
std::string Link::descriptionIn(sd_bus_message* error, const sd_bus_error& told) {
  if (std::string_view(OrEmpty(sd_bus_message_get_signature(error, 1))) == "say") {
    sd_bus_message_rewind(error, 1);
    return base::ToText(ReadAll(error, *this).at(1));
  }
  return OrEmpty(told.message);
}

/// Takes in what has come and serves one call of it, or waits for more. Whatever replies come are kept by the
/// calls that wait for them. The own reply comes first: what is over takes no further calls within itself.
void Link::waitOnce(const Waiting& waiting) {
  process();
  if (waiting.reply || !alive_) return;
  if (const Message next = calls_.take()) {
    loop_.whileClosed([&] { serve(next); });
  } else if (loop_.open()) {
    loop_.turn(timeout());
  } else {
    waitForBus();
  }
  giveUpStuck();
}

/// The plain wait: the loop stands still but for its signals.
void Link::waitForBus() {
  const int events = sd_bus_get_events(bus_.get());
  if (events < 0) return lost();
  loop_.waitFor(sd_bus_get_fd(bus_.get()), static_cast<short>(events), timeout());
}

void Link::giveUpStuck() {
  if (!alive_ || !calls_.idle() || waits_.empty()) return;
  const std::string destination = waits_.back()->destination;
  if (destination == kDaemon) return;  // it answers in any case
  std::string awaited;
  base::Handled([&] { awaited = holderOf(destination); }, [](const base::Failure&) {});
  const Message stuck = calls_.takeStuck([&](const std::string& sender) { return sender == awaited; });
  if (stuck)
    Refuse(*this, stuck,
           base::Failure(base::number::kOutOfStackSpace, "Too many calls are within each other"));
}

void Link::replyWithin(std::optional<Milliseconds> limit) {
  if (limit)
    replyLimit_.begin(*limit);
  else
    replyLimit_.lift();
}

Milliseconds Link::timeout() const {
  std::uint64_t until = 0;
  if (sd_bus_get_timeout(bus_.get(), &until) < 0) return Milliseconds(0);
  const Milliseconds now = loop_.now();
  Milliseconds limit = replyLimit_.cut(calls_.held() ? kLookAtHeld : kLongestWait);
  if (!waits_.empty()) limit = std::min(limit, std::max(Milliseconds(0), waits_.back()->until - now));
  // The bus library tells microseconds of the same clock, or the largest number for never.
  const auto end = std::chrono::duration_cast<std::chrono::microseconds>(now + limit);
  if (until < static_cast<std::uint64_t>(end.count()))
    limit = std::chrono::ceil<Milliseconds>(std::chrono::microseconds(until) - now);
  return std::max(Milliseconds(0), limit);
}

void Link::send(const Message& message) {
  if (!alive_) return;
  Check(sd_bus_send(bus_.get(), message.get(), nullptr));
  refresh();
}

Draft Link::daemonMessage(const std::string& member, const std::vector<base::Value>& args) {
  Draft message = newCall(kDaemon, kDaemonPath, kDaemon, member);
  for (const auto& arg : args) {
    if (const auto* number = std::get_if<std::int32_t>(&arg.held())) {
      const auto flags = static_cast<std::uint32_t>(*number);
      Check(sd_bus_message_append_basic(message.get(), SD_BUS_TYPE_UINT32, &flags));
    } else {
      AppendPlain(message, arg, *this);
    }
  }
  return message;
}

Message Link::callDaemon(const std::string& member, const std::vector<base::Value>& args) {
  const Draft message = daemonMessage(member, args);
  Message reply;
  loop_.whileClosed([&] { reply = call(message.message); });
  return reply;
}

Message Link::callDaemonLong(const std::string& member, const std::vector<base::Value>& args) {
  return call(daemonMessage(member, args).message, Patience::kUntilQuit);
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
  calls_.clear();
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
    calls_.add(Message(sd_bus_message_ref(message)));
    serveSoon();
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

void Link::serve(const Message& call) {
  const auto keep = shared_from_this();
  const std::string sender = OrEmpty(sd_bus_message_get_sender(call.get()));
  serving_.within(sender, [&] { calls_.within([&] { Serve(keep, call); }); });
  if (!calls_.empty()) serveSoon();
}

/// Calls that come while nothing waits are served one a turn. Where a wait has served them meanwhile, or
/// will, nothing is left to do.
void Link::serveSoon() {
  if (std::exchange(servesSoon_, true)) return;
  loop_.post([weak = weak_from_this()] {
    if (const auto link = weak.lock()) link->servePosted();
  });
}

void Link::servePosted() {
  servesSoon_ = false;
  if (const Message next = calls_.take()) serve(next);
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

/// The process that owns a name, and so counts as the holder of what is sent to it.
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
  const Message reply = call(newCall(name, path, kIntrospectable, "Introspect").message, Patience::kField);
  return base::ToText(Read(reply.get(), *this));
}

void Link::release(const std::string& name, const std::string& path) {
  descriptions_.erase({name, path});
  if (!alive_) return;
  const Draft message = newCall(name, path, kReferences, kRelease);
  Check(sd_bus_message_set_expect_reply(message.get(), 0));
  send(message.message);
}

}  // namespace bus
