#pragma once
#include <string>
#include <vector>

#include "standin/house/House.hpp"

namespace standin {

/// The devices that a spoken text is meant for: those of the events whose pattern fits it, or the status
/// device when no pattern does. Empty when there is no such device.
std::vector<std::int32_t> DevicesOfVoice(const House& house, const std::string& text);

}  // namespace standin
