#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "database/Database.hpp"

namespace standin {

/// What a device's status says.
inline constexpr std::int16_t kStatusOn = 2;
inline constexpr std::int16_t kStatusOff = 3;
inline constexpr std::int16_t kStatusUnknown = 17;

struct DeviceButton {
  std::string interface;
  std::string caption;
};

/// A device of the house.
struct Device {
  std::int32_t ref = 0;
  std::string name;
  std::string location;
  std::string hc;  ///< house code, one character
  std::string dc;  ///< number within the house code, decimal
  std::string interface;
  std::string devType;
  std::int16_t iotype = 0;
  std::int16_t status = kStatusUnknown;
  std::int16_t misc = 0;
  std::int32_t value = 0;
  std::string text;          ///< the status text, which may hold an image tag
  std::string values;        ///< the value table
  std::int64_t changed = 0;  ///< seconds since 1970
  std::vector<DeviceButton> buttons;

  [[nodiscard]] std::string fullName() const { return location.empty() ? name : location + " " + name; }
  [[nodiscard]] std::string address() const { return hc + dc; }
};

/// A selectable value of a device.
struct ValueEntry {
  std::string name;
  std::string value;
};

/// The entries of a value table: separated by code 1, name and value by code 2.
std::vector<ValueEntry> SplitValues(std::string_view table);

/// The devices of the house, in memory and in the database. Every change is stored when its call returns.
class DeviceStore {
 public:
  static constexpr std::size_t kMost = 10'000;                           ///< devices
  static constexpr std::size_t kLongestText = std::size_t{64} << 10U;    ///< bytes, of any text but the next
  static constexpr std::size_t kLongestValues = std::size_t{16} << 20U;  ///< of a value table
  static constexpr std::size_t kMostButtons = 1000;                      ///< of a device
  static constexpr std::size_t kMostBytes = std::size_t{128} << 20U;     ///< of all texts together

  explicit DeviceStore(database::Database& database);

  [[nodiscard]] const std::map<std::int32_t, Device>& all() const { return devices_; }
  /// Null when there is none.
  [[nodiscard]] const Device* byRef(std::int32_t ref) const;
  /// From 1, in the order of creation.
  [[nodiscard]] const Device* byPosition(std::int32_t position) const;
  /// By "{location} {name}", without regard to case.
  [[nodiscard]] const Device* byFullName(std::string_view name) const;
  /// By house code and number, without regard to case.
  [[nodiscard]] const Device* byAddress(std::string_view address) const;
  /// The code of a house-code letter that no device has, or -1.
  [[nodiscard]] std::int16_t freeHouseCode() const;

  /// Throws 6 beyond `kMost`, as do the others for a text beyond its bound, or one that makes them all too
  /// long; nothing is changed then.
  const Device& create(const std::string& name);
  /// Deletes every device of the interface; answers their numbers.
  std::vector<std::int32_t> removeInterface(const std::string& interface);
  bool remove(std::int32_t ref);

  void put(std::int32_t ref, std::string Device::*field, const std::string& value);
  void put(std::int32_t ref, std::int16_t Device::*field, std::int16_t value);
  void putValue(std::int32_t ref, std::int32_t value);
  void putValues(std::int32_t ref, const std::string& table);
  /// A caption that the device has already is not added again.
  void addButton(std::int32_t ref, const std::string& interface, const std::string& caption);

  /// Called after each change with the device, and with the number alone after a deletion.
  std::function<void(const Device&)> onChange;
  std::function<void(std::int32_t)> onRemove;

 private:
  Device& need(std::int32_t ref);
  template <class Field, class Given>
  void store(std::int32_t ref, Field Device::*field, const char* column, const Given& value);
  void touched(Device& device);
  void forget(std::int32_t ref);

  database::Database& database_;
  std::map<std::int32_t, Device> devices_;
  std::size_t bytes_ = 0;  ///< of their texts
};

}  // namespace standin
