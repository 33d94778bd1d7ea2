#pragma once
#include "support/desktop/BusServant.hpp"

namespace support {

/// The desktop's settings as programs are told of them: whether its user wants it dark.
class Portal : public BusServant {
 public:
  explicit Portal(const std::string& busAddress, bool dark) : wanted_(dark), dark_(dark) {
    serve(busAddress, "org.freedesktop.portal.Desktop", kPath, kName, table(), this);
  }
  ~Portal() override { end(); }
  Portal(const Portal&) = delete;
  Portal& operator=(const Portal&) = delete;
  Portal(Portal&&) = delete;
  Portal& operator=(Portal&&) = delete;

  void turnDark(bool value) { wanted_ = value; }

 private:
  static constexpr const char* kPath = "/org/freedesktop/portal/desktop";
  static constexpr const char* kName = "org.freedesktop.portal.Settings";
  static constexpr std::uint32_t kDark = 1;
  static constexpr std::uint32_t kLight = 2;

  static int read(sd_bus_message* call, void* self, sd_bus_error* /*error*/) {
    const std::uint32_t value = static_cast<Portal*>(self)->dark_ ? kDark : kLight;
    return sd_bus_reply_method_return(call, "v", "v", "u", value);
  }
  static const sd_bus_vtable* table() {
    static const sd_bus_vtable kTable[] = {SD_BUS_VTABLE_START(0),
                                           SD_BUS_METHOD("Read", "ss", "v", read, SD_BUS_VTABLE_UNPRIVILEGED),
                                           SD_BUS_SIGNAL("SettingChanged", "ssv", 0), SD_BUS_VTABLE_END};
    return kTable;
  }

  void turn() override {
    const bool wanted = wanted_;
    if (wanted == dark_) return;
    dark_ = wanted;
    sd_bus_emit_signal(bus(), kPath, kName, "SettingChanged", "ssv", "org.freedesktop.appearance",
                       "color-scheme", "u", dark_ ? kDark : kLight);
  }

  std::atomic<bool> wanted_;
  bool dark_;
};

}  // namespace support
