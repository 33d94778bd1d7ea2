#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "standin/house/DeviceStore.hpp"
#include "standin/house/HouseLog.hpp"

namespace standin {

/// What the pages are told of a device; of its value table only the length.
nlohmann::json DeviceJson(const Device& device);
nlohmann::json LogJson(const LogLine& line);
/// What a text says that came from elsewhere. A discarded value for one that is no JSON, or where things lie
/// in each other more than 32 deep: a value is copied by a function that calls itself at every step down.
nlohmann::json ReadJson(std::string_view text);
/// One line of text; ill-formed characters are replaced.
std::string Dump(const nlohmann::json& json);

}  // namespace standin
