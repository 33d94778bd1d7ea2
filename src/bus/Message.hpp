#pragma once
#include <systemd/sd-bus.h>

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

/// The text, or an empty one for null.
inline const char* OrEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace bus
