#pragma once
#include <nlohmann/json.hpp>
#include <string>

#include "standin/house/DeviceStore.hpp"
#include "standin/house/HouseLog.hpp"

namespace standin {

/// What the pages are told of a device; of its value table only the length.
nlohmann::json DeviceJson(const Device& device);
nlohmann::json LogJson(const LogLine& line);
/// One line of text; ill-formed characters are replaced.
std::string Dump(const nlohmann::json& json);

}  // namespace standin
