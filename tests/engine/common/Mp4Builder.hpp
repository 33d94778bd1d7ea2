#pragma once
#include <cstdint>
#include <string>

// MP4 files by hand, box for box, which may say of themselves what they like.
namespace engine::testing {

/// A box that begins with a version and flags.
std::string FullBox(const std::string& type, const std::string& content, std::uint32_t flags = 0);

/// The lists of a track: so many samples of that size (0: each has its own, which is added), of that length,
/// so many in each chunk, and where the chunks are.
std::string Sizes(std::uint32_t size, std::uint32_t count);
std::string Times(std::uint32_t count, std::uint32_t length);
std::string Spread(std::uint32_t each);
std::string Chunks(std::uint32_t count, std::uint32_t at = 0);
/// So many edits, each of which plays all of the track.
std::string Edits(std::uint32_t count);

/// A track of plain sound, stereo of 16 bits, with those lists.
std::string Mp4Track(std::uint32_t id, const std::string& lists, const std::string& edits = {});
/// Eight tracks of so many samples each, all of that size.
std::string Tracks(std::uint32_t samples, std::uint32_t size);
/// The box of a film around tracks and what goes with them.
std::string Movie(const std::string& tracks);
/// A fragment of the first track, with its runs.
std::string Fragment(const std::string& runs);
std::string SampleRun(std::uint32_t count);
/// A whole file around boxes.
std::string Mp4File(const std::string& boxes);

}  // namespace engine::testing
