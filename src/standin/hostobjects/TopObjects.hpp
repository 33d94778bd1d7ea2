#pragma once
#include <memory>

#include "standin/hostobjects/HostObject.hpp"
#include "standin/hostobjects/Shelf.hpp"

namespace standin {

/// The objects of a house that a plug-in begins with; all others come from them.
struct TopObjects {
  TopObjects(House& house, HouseObjects& objects, HostWaits& waits)
      : system(std::make_shared<SystemObject>(house)),
        host(std::make_shared<HostObject>(house, objects, waits, system)),
        callback(std::make_shared<CallbackObject>(house, host)) {}
  /// Under the paths that a plug-in knows.
  void showOn(Shelf& shelf) const {
    shelf.show("/host", host);
    shelf.show("/host/system", system);
    shelf.show("/callback", callback);
  }

  const std::shared_ptr<SystemObject> system;
  const std::shared_ptr<HostObject> host;
  const std::shared_ptr<CallbackObject> callback;
};

}  // namespace standin
