#pragma once
#include "standin/house/House.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/routes/Route.hpp"

namespace standin {

/// The plug-in's own pages, in the server's frame. They are what is left of all addresses.
Routes PageRoutes(House& house, PluginKeeper& plugin);

}  // namespace standin
