#pragma once
#include <functional>
#include <memory>
#include <string>

#include "base/Loop.hpp"
#include "engine/common/Config.hpp"
#include "engine/playback/Screen.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// Makes the player. Its events come on the loop's thread, each on a turn of its own, but for
/// the change of a playlist by a call, which is told before the call ends. Lines for people about
/// the library (files that can't be read, folders that are missing) go to `log`, or without one to the
/// Warning event. `met` is told once where the library was empty: its first media are there, as far as
/// one look at all folders goes. `screen` shows moving pictures, and outlives the player; without one none
/// are made. Throws number 429 when there is no decoder.
std::unique_ptr<player::WMP9> MakePlayer(base::Loop& loop, const Config& config, player::WMP9Events& events,
                                         std::function<void(const std::string&)> log = {},
                                         std::function<void()> met = {}, Screen* screen = nullptr);

}  // namespace engine
