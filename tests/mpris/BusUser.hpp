#pragma once
#include <systemd/sd-bus.h>

#include <cstdarg>
#include <stdexcept>
#include <string>
#include <vector>

#include "bus/Message.hpp"
#include "support/BusPeer.hpp"

namespace mpris_test {

/// Turns the loop until `done`; the limit is one of the real clock, as the loop's own is moved on by the
/// test.
inline bool TurnUntil(bus::PollLoop& loop, const std::function<bool()>& done) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
  while (!done() && std::chrono::steady_clock::now() < end) loop.turn(base::Milliseconds(20));
  return done();
}

/// Another program on the session bus: it calls in the bus's own types, and hears the player's signals. While
/// it waits for a reply the loop of the test turns, so both live on one thread.
class BusUser {
 public:
  static constexpr const char* kPath = "/org/mpris/MediaPlayer2";

  BusUser(bus::PollLoop& loop, const std::string& address) : loop_(loop) {
    sd_bus* made = nullptr;
    sd_bus_new(&made);
    bus_.reset(made);
    if (sd_bus_set_address(made, address.c_str()) < 0 || sd_bus_set_bus_client(made, 1) < 0 ||
        sd_bus_start(made) < 0 || sd_bus_get_unique_name(made, &uniqueName_) < 0)
      throw std::runtime_error("no bus at " + address);
    sd_bus_slot* slot = nullptr;
    sd_bus_match_signal(
        made, &slot, nullptr, kPath, nullptr, nullptr,
        [](sd_bus_message* message, void* self, sd_bus_error*) {
          static_cast<BusUser*>(self)->signals_.emplace_back(sd_bus_message_ref(message));
          return 0;
        },
        this);
    match_.reset(slot);
  }

  struct Reply {
    bus::Message message;
    /// The error's name; empty where there is none.
    [[nodiscard]] std::string error() const {
      const sd_bus_error* found = sd_bus_message_get_error(message.get());
      return found == nullptr ? "" : found->name;
    }
    /// The one value in it, in a variant or not.
    [[nodiscard]] std::string text() const {
      const char* text = "";
      if (sd_bus_message_read(message.get(), "v", "s", &text) < 0)
        sd_bus_message_read(message.get(), "s", &text);
      return text;
    }
  };

  /// `types` and what follows as `sd_bus_message_append` takes them.
  Reply call(const char* interface, const char* member, const char* types = "", ...) {
    std::va_list values;
    va_start(values, types);
    bus::Message message = made(kPath, interface, member, types, values);
    va_end(values);
    return sent(message);
  }
  Reply callAt(const char* path, const char* interface, const char* member) {
    sd_bus_message* made = nullptr;
    sd_bus_message_new_method_call(bus_.get(), &made, name.c_str(), path, interface, member);
    return sent(bus::Message(made));
  }
  /// Sends without waiting; `replies` counts what comes back.
  void send(const char* interface, const char* member, int& replies, const char* types = "", ...) {
    std::va_list values;
    va_start(values, types);
    const bus::Message message = made(kPath, interface, member, types, values);
    va_end(values);
    sd_bus_call_async(
        bus_.get(), nullptr, message.get(),
        [](sd_bus_message*, void* count, sd_bus_error*) {
          ++*static_cast<int*>(count);
          return 1;
        },
        &replies, kLongest);
  }
  Reply get(const char* interface, const char* property) {
    return call("org.freedesktop.DBus.Properties", "Get", "ss", interface, property);
  }
  bool until(const std::function<bool()>& done) {
    return TurnUntil(loop_, [&] {
      process();
      return done();
    });
  }
  void process() {
    while (sd_bus_process(bus_.get(), nullptr) > 0) {
    }
  }
  /// Whether somebody has that name now.
  bool sees(const std::string& who) {
    sd_bus_message* reply = nullptr;
    sd_bus_call_method(bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                       "NameHasOwner", nullptr, &reply, "s", who.c_str());
    const bus::Message kept(reply);
    int answer = 0;
    sd_bus_message_read(reply, "b", &answer);
    return answer != 0;
  }
  [[nodiscard]] const std::vector<bus::Message>& signals() const { return signals_; }
  /// The path of a signal's or reply's contents as one text, for comparing.
  [[nodiscard]] sd_bus* bus() const { return bus_.get(); }

  std::string name = "org.mpris.MediaPlayer2.vantorix";

 private:
  static constexpr std::uint64_t kLongest = 120'000'000;

  bus::Message made(const char* path, const char* interface, const char* member, const char* types,
                    std::va_list values) {
    sd_bus_message* made = nullptr;
    sd_bus_message_new_method_call(bus_.get(), &made, name.c_str(), path, interface, member);
    bus::Message message(made);
    if (*types != '\0' && sd_bus_message_appendv(made, types, values) < 0)
      throw std::runtime_error("bad test call");
    return message;
  }
  Reply sent(const bus::Message& message) {
    Reply reply;
    sd_bus_call_async(
        bus_.get(), nullptr, message.get(),
        [](sd_bus_message* answer, void* into, sd_bus_error*) {
          static_cast<Reply*>(into)->message.reset(sd_bus_message_ref(answer));
          return 1;
        },
        &reply, kLongest);
    until([&] { return reply.message != nullptr; });
    if (!reply.message) throw std::runtime_error("no reply");
    return reply;
  }

  bus::PollLoop& loop_;
  bus::Bus bus_;
  bus::Slot match_;
  const char* uniqueName_ = nullptr;
  std::vector<bus::Message> signals_;
};

}  // namespace mpris_test
