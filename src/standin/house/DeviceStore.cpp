#include "standin/house/DeviceStore.hpp"

#include <algorithm>
#include <ctime>
#include <set>
#include <type_traits>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/Quotas.hpp"

namespace standin {
namespace {

const char* ColumnOf(std::string Device::*field) {
  if (field == &Device::name) return "name";
  if (field == &Device::location) return "location";
  if (field == &Device::hc) return "hc";
  if (field == &Device::dc) return "dc";
  if (field == &Device::interface) return "interface";
  if (field == &Device::devType) return "dev_type";
  return "text";
}

const char* ColumnOf(std::int16_t Device::*field) {
  if (field == &Device::iotype) return "iotype";
  if (field == &Device::status) return "status";
  return "misc";
}

constexpr const char* kText = "A text of a device";
constexpr const char* kTexts = "The texts of devices";

/// What a button takes in memory, with texts or without.
std::size_t SizeOf(const std::string& interface, const std::string& caption) {
  return sizeof(DeviceButton) + interface.size() + caption.size();
}

std::size_t SizeOf(const Device& device) {
  std::size_t size = device.name.size() + device.location.size() + device.hc.size() + device.dc.size() +
                     device.interface.size() + device.devType.size() + device.text.size() +
                     device.values.size();
  for (const DeviceButton& button : device.buttons) size += SizeOf(button.interface, button.caption);
  return size;
}

}  // namespace

std::vector<ValueEntry> SplitValues(std::string_view table) {
  std::vector<ValueEntry> entries;
  for (const std::string& entry : base::Split(table, '\1')) {
    const std::size_t cut = entry.find('\2');
    if (cut != std::string::npos) entries.push_back({entry.substr(0, cut), entry.substr(cut + 1)});
  }
  return entries;
}

DeviceStore::DeviceStore(database::Database& database) : database_(database) {
  database::Statement rows(
      database,
      "SELECT ref, name, location, hc, dc, interface, dev_type, iotype, status, misc, value, text, "
      "changed, list FROM device LEFT JOIN device_values USING (ref)");
  while (rows.step()) {
    Device device;
    device.ref = static_cast<std::int32_t>(rows.integer(0));
    int column = 1;
    for (auto field :
         {&Device::name, &Device::location, &Device::hc, &Device::dc, &Device::interface, &Device::devType}) {
      device.*field = rows.text(column++);
    }
    for (auto field : {&Device::iotype, &Device::status, &Device::misc}) {
      device.*field = static_cast<std::int16_t>(rows.integer(column++));
    }
    device.value = static_cast<std::int32_t>(rows.integer(10));
    device.text = rows.text(11);
    device.changed = rows.integer(12);
    device.values = rows.text(13);
    devices_.emplace(device.ref, std::move(device));
  }
  database::Statement buttons(database, "SELECT ref, interface, caption FROM device_button ORDER BY id");
  while (buttons.step()) {
    const auto found = devices_.find(static_cast<std::int32_t>(buttons.integer(0)));
    if (found != devices_.end()) found->second.buttons.push_back({buttons.text(1), buttons.text(2)});
  }
  for (const auto& [ref, device] : devices_) bytes_ += SizeOf(device);
}

const Device* DeviceStore::byRef(std::int32_t ref) const {
  const auto found = devices_.find(ref);
  return found == devices_.end() ? nullptr : &found->second;
}

const Device* DeviceStore::byPosition(std::int32_t position) const {
  if (position < 1 || static_cast<std::size_t>(position) > devices_.size()) return nullptr;
  return &std::next(devices_.begin(), position - 1)->second;
}

const Device* DeviceStore::byFullName(std::string_view name) const {
  const auto found = std::find_if(devices_.begin(), devices_.end(), [&](const auto& entry) {
    return base::SameText(entry.second.fullName(), name);
  });
  return found == devices_.end() ? nullptr : &found->second;
}

const Device* DeviceStore::byAddress(std::string_view address) const {
  if (address.empty()) return nullptr;
  const auto found = std::find_if(devices_.begin(), devices_.end(), [&](const auto& entry) {
    return base::SameText(entry.second.address(), address);
  });
  return found == devices_.end() ? nullptr : &found->second;
}

std::int16_t DeviceStore::freeHouseCode() const {
  std::set<std::string> used;
  for (const auto& [ref, device] : devices_) used.insert(base::LowerCase(device.hc));
  // The letters up to P belong to modules on the power line.
  for (const char letter : std::string_view("QRSTUVWXYZABCDEFGHIJKLMNOP")) {
    if (!used.contains(base::LowerCase(std::string(1, letter)))) return static_cast<std::int16_t>(letter);
  }
  return -1;
}

const Device& DeviceStore::create(const std::string& name) {
  CheckLength(kText, name, kLongestText);
  CheckRoom("devices", devices_.size(), kMost);
  const std::size_t bytes = BytesWith(kTexts, bytes_, 0, name.size(), kMostBytes);
  Device device;
  device.name = name;
  device.changed = std::time(nullptr);
  database::Statement insert(
      database_,
      "INSERT INTO device (name, location, hc, dc, interface, dev_type, iotype, status, misc, value, "
      "text, changed) VALUES (?, '', '', '', '', '', 0, ?, 0, 0, '', ?)");
  insert.with(name, device.status, device.changed).run();
  device.ref = static_cast<std::int32_t>(database_.lastId());
  bytes_ = bytes;
  const Device& made = devices_.emplace(device.ref, std::move(device)).first->second;
  if (onChange) onChange(made);
  return made;
}

void DeviceStore::forget(std::int32_t ref) {
  const auto found = devices_.find(ref);
  if (found == devices_.end()) return;
  bytes_ -= SizeOf(found->second);
  devices_.erase(found);
  if (onRemove) onRemove(ref);
}

bool DeviceStore::remove(std::int32_t ref) {
  if (!devices_.contains(ref)) return false;
  database::Statement(database_, "DELETE FROM device WHERE ref = ?").with(ref).run();
  forget(ref);
  return true;
}

std::vector<std::int32_t> DeviceStore::removeInterface(const std::string& interface) {
  std::vector<std::int32_t> refs;
  for (const auto& [ref, device] : devices_) {
    if (base::SameText(device.interface, interface)) refs.push_back(ref);
  }
  database::Transaction whole(database_);
  database::Statement erase(database_, "DELETE FROM device WHERE ref = ?");
  for (const std::int32_t ref : refs) erase.with(ref).run();
  whole.commit();
  for (const std::int32_t ref : refs) forget(ref);
  return refs;
}

Device& DeviceStore::need(std::int32_t ref) {
  const auto found = devices_.find(ref);
  if (found == devices_.end()) {
    throw base::Failure(base::number::kObjectMissing, "The device has been deleted");
  }
  return found->second;
}

void DeviceStore::touched(Device& device) {
  device.changed = std::time(nullptr);
  if (onChange) onChange(device);
}

template <class Field, class Given>
void DeviceStore::store(std::int32_t ref, Field Device::*field, const char* column, const Given& value) {
  Device& device = need(ref);
  if (device.*field == value) return;
  database::Statement(database_,
                      std::string("UPDATE device SET changed = ?, ") + column + " = ? WHERE ref = ?")
      .with(static_cast<std::int64_t>(std::time(nullptr)), value, ref)
      .run();
  if constexpr (std::is_same_v<Given, std::string>) bytes_ = bytes_ - (device.*field).size() + value.size();
  device.*field = value;
  touched(device);
}

void DeviceStore::put(std::int32_t ref, std::string Device::*field, const std::string& value) {
  CheckLength(kText, value, kLongestText);
  BytesWith(kTexts, bytes_, (need(ref).*field).size(), value.size(), kMostBytes);
  store(ref, field, ColumnOf(field), value);
}

void DeviceStore::put(std::int32_t ref, std::int16_t Device::*field, std::int16_t value) {
  store(ref, field, ColumnOf(field), value);
}

void DeviceStore::putValue(std::int32_t ref, std::int32_t value) {
  store(ref, &Device::value, "value", value);
}

void DeviceStore::putValues(std::int32_t ref, const std::string& table) {
  Device& device = need(ref);
  if (device.values == table) return;
  CheckLength(kText, table, kLongestValues);
  const std::size_t bytes = BytesWith(kTexts, bytes_, device.values.size(), table.size(), kMostBytes);
  database::Statement(database_,
                      "INSERT INTO device_values (ref, list) VALUES (?, ?) "
                      "ON CONFLICT (ref) DO UPDATE SET list = excluded.list")
      .with(ref, table)
      .run();
  bytes_ = bytes;
  device.values = table;
  touched(device);
}

void DeviceStore::addButton(std::int32_t ref, const std::string& interface, const std::string& caption) {
  Device& device = need(ref);
  const bool known = std::any_of(device.buttons.begin(), device.buttons.end(),
                                 [&](const DeviceButton& button) { return button.caption == caption; });
  if (known) return;
  CheckLength(kText, interface, kLongestText);
  CheckLength(kText, caption, kLongestText);
  if (device.buttons.size() >= kMostButtons)
    throw base::Failure(base::number::kOverflow, "The device has too many buttons");
  const std::size_t bytes = BytesWith(kTexts, bytes_, 0, SizeOf(interface, caption), kMostBytes);
  database::Statement(database_, "INSERT INTO device_button (ref, interface, caption) VALUES (?, ?, ?)")
      .with(ref, interface, caption)
      .run();
  bytes_ = bytes;
  device.buttons.push_back({interface, caption});
  touched(device);
}

}  // namespace standin
