#pragma once
#include <mutex>
#include <string>
#include <vector>

#include "support/desktop/BusServant.hpp"

namespace support {

/// What blanks a desktop's screen: it records who asks it not to, and who takes that back.
class ScreenSaver : public BusServant {
 public:
  static constexpr std::uint32_t kCookie = 77;

  explicit ScreenSaver(const std::string& busAddress) {
    serve(busAddress, kName, "/org/freedesktop/ScreenSaver", kName, table(), this);
  }
  ~ScreenSaver() override {
    end();
    sd_bus_message_unref(waiting_);
  }
  ScreenSaver(const ScreenSaver&) = delete;
  ScreenSaver& operator=(const ScreenSaver&) = delete;
  ScreenSaver(ScreenSaver&&) = delete;
  ScreenSaver& operator=(ScreenSaver&&) = delete;

  [[nodiscard]] std::vector<std::string> calls() {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  /// From now on it answers nobody, or, for false, also who has waited.
  void holdBack(bool value) { held_ = value; }

 private:
  static constexpr const char* kName = "org.freedesktop.ScreenSaver";

  void record(const std::string& call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(call);
  }
  static int inhibit(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    auto& saver = *static_cast<ScreenSaver*>(self);
    const char* program = nullptr;
    const char* reason = nullptr;
    check(sd_bus_message_read(call, "ss", &program, &reason));
    saver.record(std::string("Inhibit ") + program + ": " + reason);
    if (!saver.held_) return sd_bus_reply_method_return(call, "u", kCookie);
    saver.waiting_ = sd_bus_message_ref(call);
    return 1;
  }
  static int unInhibit(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    std::uint32_t cookie = 0;
    check(sd_bus_message_read(call, "u", &cookie));
    static_cast<ScreenSaver*>(self)->record("UnInhibit " + std::to_string(cookie));
    return sd_bus_reply_method_return(call, "");
  }
  static const sd_bus_vtable* table() {
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0), SD_BUS_METHOD("Inhibit", "ss", "u", inhibit, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("UnInhibit", "u", "", unInhibit, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};
    return kTable;
  }

  void turn() override {
    if (held_ || waiting_ == nullptr) return;
    sd_bus_reply_method_return(waiting_, "u", kCookie);
    waiting_ = sd_bus_message_unref(waiting_);
  }

  std::mutex mutex_;
  std::vector<std::string> calls_;
  sd_bus_message* waiting_ = nullptr;
  std::atomic<bool> held_ = false;
};

}  // namespace support
