#pragma once
#include <deque>
#include <map>
#include <string>

#include "base/Object.hpp"
#include "standin/hostobjects/Shelf.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// The objects behind the house's devices and events: one each, made when first asked for, kept on the shelf
/// under a path of its own for as long as its device or event exists.
class HouseObjects {
 public:
  HouseObjects(House& house, Shelf& shelf);

  /// Nothing when there is no such device.
  base::ObjectRef device(std::int32_t ref);
  base::ObjectRef event(std::int32_t id);
  /// A fresh device-function object. The last few hundred are reachable.
  base::ObjectRef newDevFunc();

 private:
  base::ObjectRef entry(std::int32_t event, std::int64_t entry);

  House& house_;
  Shelf& shelf_;
  std::map<std::int32_t, base::ObjectRef> devices_;
  std::map<std::int32_t, base::ObjectRef> events_;
  std::map<std::int64_t, base::ObjectRef> entries_;
  std::deque<std::string> freshPaths_;
  std::int64_t lastFresh_ = 0;
};

}  // namespace standin
