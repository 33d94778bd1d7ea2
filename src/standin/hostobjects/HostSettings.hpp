#pragma once
#include <vector>

#include "base/Members.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// The host's operations on settings.
std::vector<base::Member> SettingsMembers(House& house);

}  // namespace standin
