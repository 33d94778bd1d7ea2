#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace engine {

/// What the decoder is given for one item. The decoder knows many more kinds of address than the player has
/// media for, among them open descriptors of this very process; so only what is known to be media comes this
/// way.
struct DecoderAddress {
  enum class Kind {
    kFile,     ///< a path, to be opened by `OpenMedia` only
    kStation,  ///< may lead on to other addresses
    kTrack,    ///< of a disc; opened in its turn only, as all tracks have one address
    kNone      ///< refused
  };

  std::string address;  ///< empty when the item is refused
  std::string options;  ///< the decoder's, for this item alone
  std::string refusal;  ///< why it is refused, as people read it
  Kind kind = Kind::kNone;
};

/// How long a track of a disc is, in sectors of 1/75 second: 0 where that isn't known, nothing where the
/// player has no drive of that name.
using SectorsOf = std::function<std::optional<std::int32_t>(const std::string& device, int track)>;

/// Allowed are paths, "file:", "http:", "https:" and the "mms:" kinds, and tracks of the player's own drives.
DecoderAddress AddressFor(const std::string& location, const SectorsOf& sectorsOf);

}  // namespace engine
