#pragma once
#include "standin/player/PluginKeeper.hpp"
#include "standin/rules/PluginWords.hpp"

namespace standin {

/// Asks the plug-in by its formats of triggers, conditions and actions, all of one question in one command.
/// Both live as long as what they are given to.
PluginWords::Ask FormatsOf(PluginKeeper& plugin);

}  // namespace standin
