#pragma once
#include <mutex>
#include <vector>

#include "support/desktop/BusServant.hpp"

namespace support {

/// A small panel: it watches over icons and shows them itself.
class Panel : public BusServant {
 public:
  explicit Panel(const std::string& busAddress) { serve(busAddress, kName, kPath, kName, table(), this); }
  ~Panel() override { end(); }
  Panel(const Panel&) = delete;
  Panel& operator=(const Panel&) = delete;
  Panel(Panel&&) = delete;
  Panel& operator=(Panel&&) = delete;

  /// The bus names of those whose icons it has been given.
  [[nodiscard]] std::vector<std::string> icons() {
    const std::lock_guard lock(mutex_);
    return icons_;
  }
  /// From now on it shows them, or only keeps watch, and says so.
  void shows(bool value) { wanted_ = value; }

 private:
  static constexpr const char* kName = "org.kde.StatusNotifierWatcher";
  static constexpr const char* kPath = "/StatusNotifierWatcher";

  static int add(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    const char* service = nullptr;
    check(sd_bus_message_read(call, "s", &service));
    auto& panel = *static_cast<Panel*>(self);
    const std::lock_guard lock(panel.mutex_);
    panel.icons_.emplace_back(service);
    return sd_bus_reply_method_return(call, "");
  }
  static int isShowing(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*name*/,
                       sd_bus_message* reply, void* self, sd_bus_error* /*error*/) {
    return sd_bus_message_append(reply, "b", int{static_cast<Panel*>(self)->showing_});
  }
  static const sd_bus_vtable* table() {
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", add, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", isShowing, 0, 0),
        SD_BUS_SIGNAL("StatusNotifierHostRegistered", "", 0),
        SD_BUS_SIGNAL("StatusNotifierHostUnregistered", "", 0),
        SD_BUS_VTABLE_END};
    return kTable;
  }

  void turn() override {
    const bool wanted = wanted_;
    if (wanted == showing_) return;
    showing_ = wanted;
    const char* news = wanted ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered";
    sd_bus_emit_signal(bus(), kPath, kName, news, "");
  }

  std::mutex mutex_;
  std::vector<std::string> icons_;
  bool showing_ = true;
  std::atomic<bool> wanted_ = true;
};

}  // namespace support
