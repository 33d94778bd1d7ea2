#include "standin/eventrun/DeviceFacts.hpp"

#include <optional>

#include "base/Text.hpp"
#include "standin/events/RuleNumber.hpp"
#include "standin/house/DeviceStore.hpp"

namespace standin {
namespace {

std::string FieldOf(const DeviceFacts& device, DeviceField field) {
  switch (field) {
    case DeviceField::kStatus: return std::to_string(device.status);
    case DeviceField::kValue: return std::to_string(device.value);
    case DeviceField::kText: break;
  }
  return device.text;
}

}  // namespace

std::string Shown(const DeviceFacts& device, DeviceField field) {
  std::string plain = FieldOf(device, field);
  if (field != DeviceField::kStatus) return plain;
  if (device.status == kStatusOn) return "on";
  if (device.status == kStatusOff) return "off";
  return device.status == kStatusUnknown ? "unknown" : plain;
}

bool IsSo(const DeviceFacts& device, DeviceField field, Compared is, const std::string& wanted) {
  const std::string seen = FieldOf(device, field);
  const std::optional<double> seenNumber = RuleNumber(seen);
  const std::optional<double> wantedNumber = RuleNumber(wanted);
  const bool numbers = seenNumber && wantedNumber;
  switch (is) {
    case Compared::kEquals: return numbers ? *seenNumber == *wantedNumber : base::SameText(seen, wanted);
    case Compared::kAbove: return numbers && *seenNumber > *wantedNumber;
    case Compared::kBelow: return numbers && *seenNumber < *wantedNumber;
    case Compared::kChanges: break;
  }
  return false;
}

bool HasCome(const DeviceFacts& before, const DeviceFacts& after, const DeviceTrigger& trigger) {
  if (trigger.is == Compared::kChanges)
    return FieldOf(before, trigger.field) != FieldOf(after, trigger.field);
  return !IsSo(before, trigger.field, trigger.is, trigger.value) &&
         IsSo(after, trigger.field, trigger.is, trigger.value);
}

}  // namespace standin
