#pragma once
#include "standin/covers/Covers.hpp"
#include "standin/coverservices/DiscCovers.hpp"
#include "standin/dialogs/OpenDialog.hpp"
#include "standin/events/EventControl.hpp"
#include "standin/events/EventWords.hpp"
#include "standin/hearing/Utterances.hpp"
#include "standin/hearing/VoiceCommands.hpp"
#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/house/House.hpp"
#include "standin/player/LibrarySearch.hpp"
#include "standin/player/NowPlaying.hpp"
#include "standin/player/PlayerLibrary.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/playlists/Playlists.hpp"
#include "standin/room/RoomMicrophone.hpp"
#include "standin/routes/LoginLimit.hpp"
#include "standin/routes/Route.hpp"
#include "standin/routes/Visitors.hpp"
#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/RuleStore.hpp"
#include "standin/scripts/ScriptRunner.hpp"
#include "standin/scripts/ScriptStore.hpp"
#include "standin/voice/Quiet.hpp"

namespace standin {

// What the web may be asked for, area by area. The handlers use what they are given here for as long as the
// table lives.

/// The house's state, its log, the values of a device, the start of its plug-in.
Routes HouseRoutes(House& house, PluginKeeper& plugin, Visitors& visitors);
/// Buttons, devices and menu.
Routes DeviceRoutes(House& house, HouseObjects& objects, PluginKeeper& plugin, PlayerLibrary& library);
/// What the routes of what is said work with.
struct VoiceParts {
  House& house;
  VoiceCommands& voice;
  Utterances& utterances;
  Quiet& quiet;  ///< kept for those who speak
  RoomMicrophone& room;
};
/// What is said to the house, and what can be.
Routes VoiceRoutes(const VoiceParts& parts);
/// The dialogs of the plug-in's actions, triggers and conditions.
Routes DialogRoutes(OpenDialog& dialog);
/// The player's music.
Routes LibraryRoutes(PlayerLibrary& library, LibrarySearch& search);
/// What plays, the transport and the queue.
Routes PlayerRoutes(NowPlaying& player, Playlists& playlists);
/// The player's playlists.
Routes PlaylistRoutes(Playlists& playlists, PlayerLibrary& library);
/// The covers of albums and of what plays.
Routes CoverRoutes(Covers& covers);
/// The services of covers for the player of this machine, whose own address is `own`, and their switch.
Routes CoverServiceRoutes(DiscCovers& discs, const std::string& own);
/// What the events' routes work with.
struct EventParts {
  House& house;
  RuleStore& rules;
  const EvaluationStore& evaluations;
  const EventWords& words;
  EventControl& control;
  const ScriptStore& scripts;
};
/// The events of the house: what they do, what came of it, and what would.
Routes EventRoutes(const EventParts& parts);
/// The house's scripts.
Routes ScriptRoutes(ScriptStore& store, ScriptRunner& runner);
/// Signing in and out, the owner's password, and what guests need. `now` tells how long who guesses has to
/// wait.
Routes UserRoutes(House& house, Visitors& visitors, LoopGate& gate,
                  std::function<LoginLimits::Time()> now = &std::chrono::steady_clock::now);

}  // namespace standin
