#pragma once
#include <memory>

#include "standin/eventworld/PluginCalls.hpp"

namespace standin {

/// Brings the player's volume to a level in even steps. When it is to stop or pause the player then, the
/// volume that was there before comes back, also when it is broken off on its way.
std::unique_ptr<Deed> BeginFade(base::Loop& loop, PluginCalls& plugin, const FadeAction& action,
                                EventWorld::Done done);

}  // namespace standin
