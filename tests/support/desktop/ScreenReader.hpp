#pragma once
#include <systemd/sd-bus.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/BusDaemon.hpp"
#include "support/desktop/BusServant.hpp"

namespace support {

/// Says on a session's bus that somebody has the screen read aloud, and where programs tell what they show.
class ReadingDesktop : public BusServant {
 public:
  ReadingDesktop(const std::string& sessionBus, std::string address) : address_(std::move(address)) {
    serve(sessionBus, "org.a11y.Bus", kPath, "org.a11y.Bus", table(), this, [this] {
      check(sd_bus_add_object_vtable(bus(), nullptr, kPath, "org.a11y.Status", status(), this));
    });
  }
  ~ReadingDesktop() override { end(); }
  ReadingDesktop(const ReadingDesktop&) = delete;
  ReadingDesktop& operator=(const ReadingDesktop&) = delete;
  ReadingDesktop(ReadingDesktop&&) = delete;
  ReadingDesktop& operator=(ReadingDesktop&&) = delete;

 private:
  static constexpr const char* kPath = "/org/a11y/bus";

  static int getAddress(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(call, "s", static_cast<ReadingDesktop*>(self)->address_.c_str());
  }
  static int yes(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*name*/,
                 sd_bus_message* reply, void* /*self*/, sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "b", 1);
  }
  static const sd_bus_vtable* table() {
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0), SD_BUS_METHOD("GetAddress", "", "s", getAddress, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_VTABLE_END};
    return kTable;
  }
  static const sd_bus_vtable* status() {
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0), SD_BUS_PROPERTY("IsEnabled", "b", yes, 0, 0),
        SD_BUS_PROPERTY("ScreenReaderEnabled", "b", yes, 0, 0), SD_BUS_VTABLE_END};
    return kTable;
  }

  std::string address_;
};

/// Reads windows of other processes aloud: what stands in them, and where, as those tell it who don't see
/// them. It has a bus of its own, to which the programs of the session come that are started after it.
class ScreenReader {
 public:
  /// What a program tells about: a window, a pane, an entry of a pane.
  struct Thing {
    std::string program;
    std::string path;
  };
  struct Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
  };

  explicit ScreenReader(const std::string& sessionBus) : desktop_(sessionBus, daemon_.address()) {
    check(sd_bus_new(&bus_));
    check(sd_bus_set_address(bus_, daemon_.address().c_str()));
    check(sd_bus_set_bus_client(bus_, 1));
    check(sd_bus_start(bus_));
  }
  ~ScreenReader() { sd_bus_close_unref(bus_); }
  ScreenReader(const ScreenReader&) = delete;
  ScreenReader& operator=(const ScreenReader&) = delete;
  ScreenReader(ScreenReader&&) = delete;
  ScreenReader& operator=(ScreenReader&&) = delete;

  /// The window of that title, of whatever program; none while there is none.
  [[nodiscard]] std::optional<Thing> window(const std::string& title) const {
    for (const std::string& program : programs())
      if (auto found = child({program, "/org/a11y/atspi/accessible/root"}, title)) return found;
    return std::nullopt;
  }
  [[nodiscard]] std::optional<Thing> child(const Thing& of, const std::string& name) const {
    for (Thing& thing : children(of))
      if (this->name(thing) == name) return std::move(thing);
    return std::nullopt;
  }
  /// None for what has gone.
  [[nodiscard]] std::vector<Thing> children(const Thing& of) const {
    std::vector<Thing> found;
    ask(of, kAccessible, "GetChildren", "", {}, [&](sd_bus_message* answer) {
      if (sd_bus_message_enter_container(answer, 'a', "(so)") < 0) return;
      const char* program = nullptr;
      const char* path = nullptr;
      while (sd_bus_message_read(answer, "(so)", &program, &path) > 0) found.push_back({program, path});
    });
    return found;
  }
  [[nodiscard]] std::string name(const Thing& thing) const {
    std::string found;
    ask(thing, "org.freedesktop.DBus.Properties", "Get", "ss", {kAccessible, "Name"},
        [&](sd_bus_message* answer) {
          const char* text = nullptr;
          if (sd_bus_message_read(answer, "v", "s", &text) >= 0) found = text;
        });
    return found;
  }
  [[nodiscard]] std::vector<std::string> names(const Thing& of) const {
    std::vector<std::string> found;
    for (const Thing& thing : children(of)) found.push_back(name(thing));
    return found;
  }
  [[nodiscard]] std::string role(const Thing& thing) const {
    std::string found;
    ask(thing, kAccessible, "GetRoleName", "", {}, [&](sd_bus_message* answer) {
      const char* text = nullptr;
      if (sd_bus_message_read(answer, "s", &text) >= 0) found = text;
    });
    return found;
  }
  /// Where it stands on the screen.
  [[nodiscard]] Place place(const Thing& thing) const {
    Place found;
    sd_bus_message* answer = nullptr;
    constexpr std::uint32_t kOnScreen = 0;
    if (sd_bus_call_method(bus_, thing.program.c_str(), thing.path.c_str(), "org.a11y.atspi.Component",
                           "GetExtents", nullptr, &answer, "u", kOnScreen) >= 0)
      sd_bus_message_read(answer, "(iiii)", &found.x, &found.y, &found.width, &found.height);
    sd_bus_message_unref(answer);
    return found;
  }

 private:
  static constexpr const char* kAccessible = "org.a11y.atspi.Accessible";

  static void check(int result) {
    if (result < 0) throw std::runtime_error("the reader's bus can't be reached");
  }
  [[nodiscard]] std::vector<std::string> programs() const {
    std::vector<std::string> found;
    const char* own = nullptr;
    check(sd_bus_get_unique_name(bus_, &own));
    char** names = nullptr;
    check(sd_bus_list_names(bus_, &names, nullptr));
    for (char** each = names; *each != nullptr; ++each) {
      const std::string name = *each;
      if (name.starts_with(':') && name != own) found.push_back(name);
      std::free(*each);
    }
    std::free(names);
    return found;
  }
  void ask(const Thing& thing, const char* interface, const char* member, const char* types,
           const std::array<const char*, 2>& words, const std::function<void(sd_bus_message*)>& read) const {
    sd_bus_message* answer = nullptr;
    const int result = words[0] == nullptr
                           ? sd_bus_call_method(bus_, thing.program.c_str(), thing.path.c_str(), interface,
                                                member, nullptr, &answer, types)
                           : sd_bus_call_method(bus_, thing.program.c_str(), thing.path.c_str(), interface,
                                                member, nullptr, &answer, types, words[0], words[1]);
    if (result >= 0) read(answer);
    sd_bus_message_unref(answer);
  }

  BusDaemon daemon_;
  ReadingDesktop desktop_;
  sd_bus* bus_ = nullptr;
};

}  // namespace support
