#include "engine/decoder/DecoderOptions.hpp"

#include <string>
#include <string_view>

namespace engine {
namespace {

/// What the libraries below the decoder may speak, whatever a station or a list of streams asks them for.
constexpr std::string_view kProtocols = "http,https,httpproxy,tls,tcp,crypto,data,mmsh,mmst";

/// No protocol is called so.
constexpr std::string_view kNoProtocol = "none";

/// The limits as the value of a list of options, whose own commas must not end it.
std::string ProtocolLimit(std::string_view protocols) {
  return "protocol_whitelist=%" + std::to_string(protocols.size()) + "%" + std::string(protocols);
}

}  // namespace

MpvOptions DecoderOptions() {
  return {
      {"config", "no"},
      {"terminal", "no"},
      {"load-scripts", "no"},
      {"load-auto-profiles", "no"},
      {"load-stats-overlay", "no"},
      {"load-osd-console", "no"},
      {"osc", "no"},
      {"input-ipc-server", ""},
      {"use-filedir-conf", "no"},
      {"load-unsafe-playlists", "no"},
      {"access-references", "no"},
      {"ordered-chapters", "no"},
      {"audio-file-auto", "no"},
      {"sub-auto", "no"},
      {"cover-art-auto", "no"},
      // Whatever a file's content says: what reads it opens nothing else, not by any of its lists in lists.
      {"demuxer-lavf-o", ProtocolLimit(kNoProtocol)},
      {"stream-lavf-o", ProtocolLimit(kProtocols)},  // for the addresses that we give it
      // What may be read ahead and kept of a station, and of a file whose parts lie far from each other.
      {"demuxer-max-bytes", "33554432"},
      {"demuxer-max-back-bytes", "16777216"},
      {"vo", "libmpv"},
      {"vid", "no"},
      {"sid", "no"},
      {"audio-display", "no"},
      {"idle", "yes"},
      {"gapless-audio", "yes"},
      {"prefetch-playlist", "yes"},
      {"ytdl", "no"},
      {"input-default-bindings", "no"},
      {"input-vo-keyboard", "no"},
      {"autoload-files", "no"},
      {"keep-open", "no"},
      {"resume-playback", "no"},
  };
}

MpvOptions StationOptions() {
  return {
      {"access-references", "yes"},
      {"demuxer-lavf-o", ProtocolLimit(kProtocols)},
      // The next one is opened beside what plays, and would be under what holds for this one.
      {"prefetch-playlist", "no"},
  };
}

MpvOptions HeardDecoderOptions(const Config& config) {
  MpvOptions options = DecoderOptions();
  options.emplace_back("audio-client-name", "Media Player");
  options.emplace_back("audio-fallback-to-null", "yes");
  const std::string& output = config.audioOutput;
  if (output.rfind("pcm:", 0) == 0) {
    options.emplace_back("ao", "pcm");
    options.emplace_back("ao-pcm-file", output.substr(4));
  } else if (output.empty()) {
    options.emplace_back("ao", "pipewire,pulse,alsa,null");
  } else {
    options.emplace_back("ao", output == "null" ? output : output + ",null");
  }
  if (config.untimed) options.emplace_back("ao-null-untimed", "yes");
  return options;
}

}  // namespace engine
