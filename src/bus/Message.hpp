#pragma once
#include <systemd/sd-bus.h>

#include <cstddef>
#include <memory>

namespace bus {

struct MessageUnref {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
struct SlotUnref {
  void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
struct BusClose {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};

using Message = std::unique_ptr<sd_bus_message, MessageUnref>;
using Slot = std::unique_ptr<sd_bus_slot, SlotUnref>;
using Bus = std::unique_ptr<sd_bus, BusClose>;

/// A message that values are being appended to.
struct Draft {
  Message message;
  std::size_t size = 0;  ///< how many bytes the values take so far

  [[nodiscard]] sd_bus_message* get() const { return message.get(); }
};

/// The text, or an empty one for null.
inline const char* OrEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace bus
