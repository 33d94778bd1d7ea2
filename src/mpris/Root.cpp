#include "mpris/Root.hpp"

#include "mpris/Player.hpp"

namespace mpris {

Interface RootTable(PlayerObject& player, const std::function<bool()>& canRaise) {
  const Texts types{"audio/aac",        "audio/flac",      "audio/mp4",          "audio/mpeg",
                    "audio/ogg",        "audio/opus",      "audio/wav",          "audio/webm",
                    "audio/x-aiff",     "audio/x-ape",     "audio/x-dsf",        "audio/x-flac",
                    "audio/x-matroska", "audio/x-mp3",     "audio/x-ms-wma",     "audio/x-musepack",
                    "audio/x-speex",    "audio/x-tta",     "audio/x-vorbis+ogg", "audio/x-wav",
                    "audio/x-wavpack",  "video/mp2t",      "video/mp4",          "video/mpeg",
                    "video/ogg",        "video/quicktime", "video/webm",         "video/x-flv",
                    "video/x-matroska", "video/x-ms-wmv",  "video/x-msvideo"};
  return {"org.mpris.MediaPlayer2",
          {Plain("Raise",
                 [&player, canRaise] {
                   if (canRaise()) player.set("ShowPopupControls", true);
                 }),
           Plain("Quit", [] {})},
          {Constant("CanQuit", false),
           {"CanRaise", "b", Told::kEverybody, [canRaise] { return Value(canRaise()); }},
           Constant("HasTrackList", false),
           Constant("Identity", "Vantorix Media Player"),
           Constant("DesktopEntry", kDesktopEntry),
           Constant("SupportedUriSchemes", AddressKinds()),
           Constant("SupportedMimeTypes", types)},
          {}};
}

}  // namespace mpris
