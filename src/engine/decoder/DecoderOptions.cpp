#include "engine/decoder/DecoderOptions.hpp"

#include <string>
#include <string_view>

namespace engine {
namespace {

/// What the libraries below the decoder may speak, whatever a station or a list of streams asks them for.
constexpr std::string_view kProtocols = "http,https,httpproxy,tls,tcp,crypto,data,mmsh,mmst";

/// No protocol is called so.
constexpr std::string_view kNoProtocol = "none";

/// What the libraries below the decoder may take a file for: what holds sound or films, and all of it in
/// itself. They know three times as many: lists of other files, texts that they read whole, sessions for
/// which they would listen.
constexpr std::string_view kFormats =
    "aac,ac3,aiff,amr,amrnb,amrwb,ape,asf,au,avi,caf,dsf,dts,dtshd,dv,eac3,flac,flv,gsm,h264,hevc,iff,ivf,"
    "loas,"
    "m4v,matroska,mlp,mov,mp3,mpc,mpc8,mpeg,mpegts,mpegvideo,mxf,nsv,nut,ogg,oma,rm,shn,spdif,tak,truehd,tta,"
    "vc1,voc,vqf,w64,wav,webm,wtv,wv,xwma";

/// What a station may send beside them: its lists of pieces, and what belongs to those.
constexpr std::string_view kStationFormats = "hls,dash,webvtt,live_flv";

/// Nobody sees the chapters of a film, of which there may be as many as there are samples.
constexpr const char* kNoChapters = ",ignore_chapters=1";

/// One of a list of options, whose own commas must not end it.
std::string Limit(const char* name, std::string_view allowed) {
  return std::string(name) + "=%" + std::to_string(allowed.size()) + "%" + std::string(allowed);
}

std::string Limits(std::string_view protocols, std::string_view formats) {
  return Limit("protocol_whitelist", protocols) + "," + Limit("format_whitelist", formats) + kNoChapters;
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
      {"demuxer-lavf-o", Limits(kNoProtocol, kFormats)},
      // The decoder's own readers open lists and archives, and unpack a block however large it becomes.
      {"demuxer", "lavf"},
      {"sub-codepage", "utf-8"},  // else a text is read whole, to be guessed at, before it is refused
      {"stream-lavf-o", Limit("protocol_whitelist", kProtocols)},  // for the addresses that we give it
      // What may be read ahead and kept of a station, and of a file whose parts lie far from each other.
      {"demuxer-max-bytes", "33554432"},
      {"demuxer-max-back-bytes", "16777216"},
      {"vo", "libmpv"},
      // Strangers' films are decoded by the processor, not by drivers, of which none is even looked for.
      {"hwdec", "no"},
      {"gpu-hwdec-interop", "no"},
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
      {"demuxer", ""},
      {"demuxer-lavf-o", Limits(kProtocols, std::string(kFormats) + "," + std::string(kStationFormats))},
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
