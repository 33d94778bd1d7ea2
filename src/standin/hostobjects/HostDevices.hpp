#pragma once
#include <vector>

#include "base/Members.hpp"
#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// The host's operations on devices. What names no device is ignored, or answered with nothing.
std::vector<base::Member> DeviceMembers(House& house, HouseObjects& objects);
/// The host's operations on events.
std::vector<base::Member> EventMembers(House& house, HouseObjects& objects);

}  // namespace standin
