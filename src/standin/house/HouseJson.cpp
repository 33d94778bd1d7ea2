#include "standin/house/HouseJson.hpp"

#include "standin/house/ValueTable.hpp"

namespace standin {
namespace {

constexpr std::int16_t kCanBeSwitched = 8;  // a flag of `misc`

constexpr int kDeepest = 32;

/// The name of the selected value, empty when none is.
std::string SelectedName(const Device& device) {
  const std::string name(NameOfValue(device.values, device.value).value_or(std::string_view()));
  return name == " " ? std::string() : name;
}

}  // namespace

nlohmann::json DeviceJson(const Device& device) {
  nlohmann::json buttons = nlohmann::json::array();
  for (const DeviceButton& button : device.buttons) buttons.push_back(button.caption);
  return {{"ref", device.ref},
          {"name", device.name},
          {"location", device.location},
          {"address", device.address()},
          {"type", device.devType},
          {"status", device.status},
          {"switchable", (device.misc & kCanBeSwitched) != 0},
          {"value", device.value},
          {"valueName", SelectedName(device)},
          {"values", CountValues(device.values)},
          {"valuesMark", MarkOfValues(device.values)},
          {"text", device.text},
          {"changed", device.changed},
          {"buttons", std::move(buttons)}};
}

nlohmann::json LogJson(const LogLine& line) {
  return {{"id", line.id}, {"time", line.time}, {"type", line.type}, {"text", line.text}};
}

nlohmann::json ReadJson(std::string_view text) {
  bool tooDeep = false;
  const auto keeps = [&](int depth, nlohmann::json::parse_event_t /*event*/, nlohmann::json& /*value*/) {
    tooDeep = tooDeep || depth > kDeepest;
    return !tooDeep;
  };
  nlohmann::json json = nlohmann::json::parse(text, keeps, false);
  if (tooDeep) return nlohmann::json::value_t::discarded;
  return json;
}

std::string Dump(const nlohmann::json& json) {
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace standin
