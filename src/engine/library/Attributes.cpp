#include "engine/library/Attributes.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "base/Text.hpp"

namespace engine {
namespace {

constexpr std::array<std::pair<std::string_view, Attribute>, 22> kNames{{
    {"title", Attribute::kTitle},
    {"name", Attribute::kTitle},
    {"artist", Attribute::kArtist},
    {"author", Attribute::kArtist},
    {"wm/author", Attribute::kArtist},
    {"displayartist", Attribute::kArtist},
    {"album", Attribute::kAlbum},
    {"wm/albumtitle", Attribute::kAlbum},
    {"albumartist", Attribute::kAlbumArtist},
    {"wm/albumartist", Attribute::kAlbumArtist},
    {"genre", Attribute::kGenre},
    {"wm/genre", Attribute::kGenre},
    {"wm/year", Attribute::kYear},
    {"year", Attribute::kYear},
    {"releasedateyear", Attribute::kYear},
    {"wm/tracknumber", Attribute::kTrackNumber},
    {"originalindex", Attribute::kTrackNumber},
    {"duration", Attribute::kDuration},
    {"sourceurl", Attribute::kSourceUrl},
    {"wm/wmcollectionid", Attribute::kCollectionId},
    {"wm/mcdi", Attribute::kDiscId},
    {"mediatype", Attribute::kMediaType},
}};

std::string NumberText(std::uint32_t number) { return number != 0 ? std::to_string(number) : std::string(); }

int HexDigit(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}

std::string Unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '%' && i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
    const int low = high >= 0 ? HexDigit(text[i + 2]) : -1;
    if (low < 0) {
      result += text[i];
      continue;
    }
    result += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return result;
}

}  // namespace

Attribute AttributeNamed(std::string_view name) {
  const std::string folded = base::LowerCase(name);
  const auto* found =
      std::find_if(kNames.begin(), kNames.end(), [&](const auto& entry) { return entry.first == folded; });
  return found != kNames.end() ? found->second : Attribute::kUnknown;
}

std::string AttributeText(const TrackTable& table, TrackId id, Attribute attribute) {
  const Track& row = table.row(id);
  const auto text = [&](StringPool::Id number) { return std::string(table.text(number)); };
  switch (attribute) {
    case Attribute::kTitle: return text(row.title);
    case Attribute::kArtist: return text(row.artist);
    case Attribute::kAlbum: return text(row.album);
    case Attribute::kAlbumArtist: return text(row.albumArtist != 0 ? row.albumArtist : row.artist);
    case Attribute::kGenre: return text(row.genre);
    case Attribute::kYear: return NumberText(row.year);
    case Attribute::kTrackNumber: return NumberText(row.track);
    case Attribute::kDuration: return SecondsText(row.milliseconds);
    case Attribute::kSourceUrl: return BackslashPath(SourceUrl(table.path(id)));
    case Attribute::kCollectionId:
      if (row.collectionId != 0) return text(row.collectionId);
      return AlbumId(table.text(row.albumArtist != 0 ? row.albumArtist : row.artist), table.text(row.album));
    case Attribute::kDiscId: return text(row.discId);
    case Attribute::kMediaType: return row.kind == MediaKind::kVideo ? "video" : "audio";
    case Attribute::kUnknown: break;
  }
  return {};
}

std::string AttributeText(const TrackTags& tags, const std::string& url, Attribute attribute) {
  const std::string& albumArtist = tags.albumArtist.empty() ? tags.artist : tags.albumArtist;
  switch (attribute) {
    case Attribute::kTitle: return tags.title;
    case Attribute::kArtist: return tags.artist;
    case Attribute::kAlbum: return tags.album;
    case Attribute::kAlbumArtist: return albumArtist;
    case Attribute::kGenre: return tags.genre;
    case Attribute::kYear: return NumberText(tags.year);
    case Attribute::kTrackNumber: return NumberText(tags.track);
    case Attribute::kDuration: return SecondsText(tags.milliseconds);
    case Attribute::kSourceUrl: return BackslashPath(url);
    case Attribute::kCollectionId:
      return tags.collectionId.empty() ? AlbumId(albumArtist, tags.album) : tags.collectionId;
    case Attribute::kDiscId: return tags.discId;
    case Attribute::kMediaType: return tags.kind == MediaKind::kVideo ? "video" : "audio";
    case Attribute::kUnknown: break;
  }
  return {};
}

std::string SecondsText(std::uint32_t milliseconds) {
  if (milliseconds == 0) return {};
  std::string text = std::to_string(milliseconds / 1000);
  std::array<char, 8> part{};
  std::snprintf(part.data(), part.size(), ".%03u", milliseconds % 1000);
  text += part.data();
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string ClockText(double seconds) {
  const auto whole = static_cast<unsigned long>(std::max(0.0, std::floor(seconds)));
  std::array<char, 40> text{};
  if (whole >= 3600) {
    std::snprintf(text.data(), text.size(), "%02lu:%02lu:%02lu", whole / 3600, whole / 60 % 60, whole % 60);
  } else {
    std::snprintf(text.data(), text.size(), "%02lu:%02lu", whole / 60, whole % 60);
  }
  return text.data();
}

std::string SourceUrl(const std::string& path) {
  if (base::IsPlainUtf8(path)) return path;
  const bool address = IsAddress(path);  // which keeps what it has escaped itself
  std::string url = address ? "" : "file://";
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte > 0x20 && byte < 0x7F && (address || character != '%')) {
      url += character;
    } else {
      std::array<char, 4> code{};
      std::snprintf(code.data(), code.size(), "%%%02X", byte);
      url += code.data();
    }
  }
  return url;
}

std::string PathOf(const std::string& url) {
  if (url.empty() || (url.front() != 'f' && url.front() != 'F'))
    return url;  // asked for every item of a list
  if (base::LowerCase(url.substr(0, 7)) != "file://") return url;
  const auto slash = url.find('/', 7);
  return slash != std::string::npos ? Unescaped(std::string_view(url).substr(slash)) : std::string();
}

bool IsAddress(std::string_view text) {
  const auto colon = text.find("://");
  return colon != std::string_view::npos && colon > 0 &&
         text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+.-") == colon;
}

std::string BackslashPath(std::string url) {
  if (!IsAddress(url)) std::replace(url.begin(), url.end(), '/', '\\');
  return url;
}

std::string HashText(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  for (const char character : text) {  // FNV-1a
    hash ^= static_cast<unsigned char>(character);
    hash *= 0x100000001B3ULL;
  }
  std::array<char, 20> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llX", static_cast<unsigned long long>(hash));
  return digits.data();
}

std::string AlbumId(std::string_view albumArtist, std::string_view album) {
  if (album.empty()) return {};
  return HashText(base::LowerCase(albumArtist) + '\n' + base::LowerCase(album));
}

}  // namespace engine
