#pragma once
#include <cstdint>
#include <string>

// Media files by hand, byte for byte, as no program would write them.
namespace engine::testing {

/// A number in so many bytes, the greatest first.
std::string Big(std::uint64_t value, int bytes);
/// The same, the smallest first.
std::string Little(std::uint64_t value, int bytes);
std::string Packed(const std::string& bytes);

/// A tag of ID3's version 3 or 4 around frames.
std::string Id3Tag(int version, const std::string& frames);
std::string Frame(int version, const std::string& id, const std::string& content, unsigned flags = 0);
/// A frame whose content is packed.
std::string PackedFrame(int version, const std::string& id, const std::string& content);
/// A second and a little of silence.
std::string MpegSilence();

/// A box of an MP4 file.
std::string Box(const std::string& type, const std::string& content);
/// An MP4 file with an item of that type in its list of tags.
std::string Mp4With(const std::string& itemType, const std::string& data);

/// A FLAC file's head, with a block of comments.
std::string FlacWith(const std::string& comments);
std::string Comments(const std::string& first);

/// Writes the file, as long as `size` if that is more, without taking that place on the disc.
void Write(const std::string& path, const std::string& bytes, std::uint64_t size = 0);

/// The most memory that this process has ever held, in bytes.
std::size_t PeakMemory();

}  // namespace engine::testing
