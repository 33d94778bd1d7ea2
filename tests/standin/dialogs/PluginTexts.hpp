#pragma once
#include <string>

namespace support {

/// The text of an action's dialog, with a small library.
inline std::string ActionText() {
  return "Media Player Actions\t5\t12\tClick 'Submit' below, to refresh the list of titles or save "
         "actions\t\r"
         "\t\t1\t0\tAction\tNo Action\tPlay: PlayList\tPlay: Album\tPlay: URL\tStop\tChange Mode only\r"
         "\t\t1\t0\tPlayLists\t\tParty\r"
         "\t\t1\t0\tAlbums\t\tBlue\tClouds\r"
         "\t\t1\t0\tArtists\t\tJoni\r"
         "\t\t1\t0\tGenres\t\tFolk\r"
         "\t\t1\t0\tTitles\t\t(Play entire list)\tRiver\r"
         "\t\t2\t0\tURL or Title\r"
         "\t\t1\t0\tMode\tNo Action\tNo Shuffle and No Loop\tLoop Only\tShuffle Only\tShuffle and Loop\r"
         "\t\t4\t0\tRefresh Titles\t\t";
}
inline std::string TriggerText() {
  return "Media Player Triggers\t1\t0\tTrigger:\tPlayback Started\tPlayback Ended\tTransitioning\t"
         "Initialization Completed";
}
inline std::string ConditionText() {
  return "Media Player Status\t1\t0\tStatus \tPlaying\tPaused\tMuted\r\t\t1\t0\tCondition:\tYes\tNo";
}

}  // namespace support
