#pragma once
#include "base/Members.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// A device as the plug-in and scripts see it. Its fields fail with number 91 once the device is deleted.
class DeviceObject : public base::TableObject {
 public:
  DeviceObject(House& house, std::int32_t ref);
};

}  // namespace standin
