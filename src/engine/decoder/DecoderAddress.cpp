#include "engine/decoder/DecoderAddress.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

#include "base/Text.hpp"
#include "engine/decoder/MediaDoor.hpp"
#include "engine/library/Attributes.hpp"

namespace engine {
namespace {

/// Kinds of network address, and what the decoder calls them. It speaks "mmsu" over TCP only.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kNetwork{{
    {"http", "http"},
    {"https", "https"},
    {"mms", "mms"},
    {"mmsh", "mmsh"},
    {"mmst", "mmst"},
    {"mmsu", "mmst"},
}};

DecoderAddress Refused(std::string reason) { return {{}, {}, std::move(reason)}; }

bool HasControls(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

DecoderAddress ForPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::absolute(path, error);  // no option, no protocol
  if (path.empty() || error) return Refused("there is no such file");
  if (IsOfTheMachine(whole.string())) return Refused("a file of the machine's own is not played");
  return {whole.string(), {}, {}, DecoderAddress::Kind::kFile};
}

/// The decoder reads a disc in pieces of an eighth of a second, and where a track ends within one it plays
/// what happens to lie behind it in memory (0.35 does). So it is told where to end.
std::string EndOf(std::int32_t sectors) {
  constexpr double kSectorsASecond = 75;
  constexpr double kBit = 0.00001;  // less than a sample, so that the last one isn't rounded away
  return sectors > 0 ? ",length=" + std::to_string(sectors / kSectorsASecond + kBit) : std::string();
}

/// The decoder takes a disc for one file, so the track is told to it as an option. What is opened ahead would
/// be opened under the same options.
DecoderAddress ForTrackOfDisc(std::string_view place, const SectorsOf& sectorsOf) {
  const auto mark = place.rfind('#');
  const std::string device(place.substr(0, mark));
  const std::string_view track = mark != std::string_view::npos ? place.substr(mark + 1) : std::string_view();
  const bool number =
      !track.empty() && track.size() <= 2 && track.find_first_not_of("0123456789") == std::string_view::npos;
  const std::string only(track);
  const auto sectors = number ? sectorsOf(device, std::stoi(only)) : std::nullopt;
  if (!sectors) return Refused("it is no track of a disc in one of the player's drives");
  return {"cdda://" + device,
          "cdda-span-a=" + only + ",cdda-span-b=" + only + ",demuxer=+disc,prefetch-playlist=no" +
              EndOf(*sectors),
          {},
          DecoderAddress::Kind::kTrack};
}

}  // namespace

DecoderAddress AddressFor(const std::string& location, const SectorsOf& sectorsOf) {
  if (!IsAddress(location)) return ForPath(location);
  const auto mark = location.find("://");
  const std::string kind = base::LowerCase(location.substr(0, mark));
  if (kind == "file") return ForPath(PathOf(location));
  const std::string_view rest = std::string_view(location).substr(mark + 3);
  if (kind == "cdda") return ForTrackOfDisc(rest, sectorsOf);
  const auto* known =
      std::find_if(kNetwork.begin(), kNetwork.end(), [&](const auto& entry) { return entry.first == kind; });
  if (known == kNetwork.end()) return Refused("\"" + kind + "\" is no kind of address that is played");
  if (rest.empty() || HasControls(rest)) return Refused("it is no complete address");
  return {std::string(known->second) + "://" + std::string(rest), {}, {}, DecoderAddress::Kind::kStation};
}

}  // namespace engine
