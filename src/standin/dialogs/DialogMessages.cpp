#include "standin/dialogs/DialogMessages.hpp"

#include <initializer_list>

namespace standin {
namespace {

// Numbers of the controls.
constexpr std::int32_t kAction = 2;
constexpr std::int32_t kPlayLists = 4;
constexpr std::int32_t kAlbums = 6;
constexpr std::int32_t kArtists = 8;
constexpr std::int32_t kGenres = 10;
constexpr std::int32_t kTitles = 12;
constexpr std::int32_t kTyped = 14;

/// Which of the fields are meant: all, those that are filled in, or these without a prompt in the titles,
/// which is right for an action that plays what was typed.
enum class Which { kAll, kFilled, kFilledBesidePrompts };
struct Meaning {
  const char* message;
  std::initializer_list<std::int32_t> fields;
  Which which = Which::kAll;
};
const Meaning kMeanings[] = {
    {"Albums, Artists, and Genres must be blank when playing a playlist!",
     {kAlbums, kArtists, kGenres},
     Which::kFilled},
    {"Albums, PlayLists, and Genres must be blank when playing an artist!",
     {kAlbums, kPlayLists, kGenres},
     Which::kFilled},
    {"PlayLists, Artists, and Genres must be blank when playing an album!",
     {kPlayLists, kArtists, kGenres},
     Which::kFilled},
    {"Albums, Artists, and PlayLists must be blank when playing a genre!",
     {kAlbums, kArtists, kPlayLists},
     Which::kFilled},
    {"Please select a playlist to play!", {kPlayLists}},
    {"Please select an Artist to play!", {kArtists}},
    {"Please select an Album to play!", {kAlbums}},
    {"Please select a Genre to play!", {kGenres}},
    {"Albums, Artists, Genres, PlayLists, and Titles must be blank when playing a URL or Media Library file!",
     {kPlayLists, kAlbums, kArtists, kGenres, kTitles},
     Which::kFilledBesidePrompts},
    {"Error: Multiple lines found in Title or URL", {kTyped}},
    {"Albums, Artists, Genres, PlayLists, and Titles must be blank when specifying control actions!",
     {kPlayLists, kAlbums, kArtists, kGenres, kTitles, kTyped},
     Which::kFilled},
    {"Action must be 'Change Mode only' to change only the Mode!", {kAction}},
    {"Refresh then verify Titles", {kTitles}},
};

bool IsMeant(const Meaning& meaning, const std::string& value) {
  if (meaning.which == Which::kAll) return true;
  const bool prompt = meaning.which == Which::kFilledBesidePrompts && value.starts_with("Please enter ");
  return !value.empty() && !prompt;
}

}  // namespace

DialogValues FieldsMeant(const std::string& message, const DialogValues& values) {
  DialogValues meant;
  for (const Meaning& meaning : kMeanings) {
    if (message != meaning.message) continue;
    for (const std::int32_t number : meaning.fields) {
      const auto value = values.find(number);
      if (value != values.end() && IsMeant(meaning, value->second)) meant.emplace(number, message);
    }
  }
  return meant;
}

}  // namespace standin
