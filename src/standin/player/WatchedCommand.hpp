#pragma once
#include <functional>
#include <string>

#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// What became of a command; done where both are empty.
struct CommandOutcome {
  std::string failure;  ///< why it could not be given
  std::string refusal;  ///< what the player could not do, in its own words
};

/// Gives the plug-in a command. The player answers nothing: what it could not do it tells the log meanwhile.
void RunWatched(House& house, PluginKeeper& plugin, PluginKeeper::Command work,
                std::function<void(const CommandOutcome& outcome)> done);

}  // namespace standin
