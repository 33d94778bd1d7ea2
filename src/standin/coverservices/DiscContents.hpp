#pragma once
#include <optional>
#include <string>

namespace standin {

/// A disc's table of contents as MusicBrainz asks for it ("1+2+525+150+300": first track, number of tracks,
/// where the lead-out and each track begin), from how a player tells it: the number of tracks, where each
/// begins and where the lead-out does, in hexadecimal with "+" in between, which may have become blanks on
/// the way. Nothing for what is none.
std::optional<std::string> TocOf(const std::string& contents);

}  // namespace standin
