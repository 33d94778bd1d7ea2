#pragma once
#include <cstdint>
#include <string>

#include "standin/events/Rule.hpp"

namespace standin {

/// What the events know of a device.
struct DeviceFacts {
  std::int32_t ref = 0;
  std::int16_t status = 0;
  std::int32_t value = 0;
  std::string text{};
  bool ofPlugin = false;  ///< the plug-in sets it as the player goes
  bool operator==(const DeviceFacts&) const = default;
};

/// The field as history shows it: a status by its name where it has one.
std::string Shown(const DeviceFacts& device, DeviceField field);
/// True when the field is as wanted. Texts that are numbers are compared as such, others without regard to
/// case; above and below what is no number is nothing. "Changes" is never so.
bool IsSo(const DeviceFacts& device, DeviceField field, Compared is, const std::string& wanted);
/// True when the step from one to the other is what the trigger waits for: the field has come to be as
/// wanted, or it has changed.
bool HasCome(const DeviceFacts& before, const DeviceFacts& after, const DeviceTrigger& trigger);

}  // namespace standin
