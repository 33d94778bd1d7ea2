#include "player/ByNameLibrary.hpp"

#include <algorithm>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "player/ManyOut.hpp"
#include "player/Pictured.hpp"
#include "player/Shown.hpp"

namespace player {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

base::ObjectRef ShowPicture(Picture picture) {
  return Show("Picture", {ReadField("URL", Type::kText, [url = std::move(picture.url)] { return url; })});
}

base::ObjectRef ShowDrive(const std::shared_ptr<Cdrom>& drive) {
  return Show<Cdrom>(drive, "Cdrom",
                     {ReadField("driveSpecifier", Type::kText, [drive] { return drive->driveSpecifier(); }),
                      ReadField("playlist", Type::kObject, [drive] { return ShowByName(drive->playlist()); }),
                      Command("eject", {}, [drive] { drive->eject(); })});
}

std::string MarkOf(const Media& media) {
  const auto* pictured = dynamic_cast<const Pictured*>(&media);
  return pictured == nullptr ? std::string() : pictured->pictureMark();
}

std::string BytesOf(const Media& media) {
  const auto* pictured = dynamic_cast<const Pictured*>(&media);
  return pictured == nullptr ? std::string() : pictured->pictureBytes();
}

/// A field of an item, or else its attribute of that name; empty where it can't be read.
std::string TextOf(const Media& media, const std::string& field) {
  std::string text;
  base::Attempt step;
  step([&] {
    if (base::SameText(field, "name")) {
      text = media.name();
    } else if (base::SameText(field, "sourceURL")) {
      text = media.sourceURL();
    } else if (base::SameText(field, "pictureMark")) {
      text = MarkOf(media);
    } else {
      text = media.getItemInfo(field);
    }
  });
  return text;
}

// A call over the bus costs more than a hundred items: whoever shows a list of thousands reads it so.
base::Array ReadItems(const Playlist& playlist, const Value& fields, std::int32_t from, std::int32_t count) {
  constexpr std::size_t kEnoughBytes = std::size_t{4} << 20U;
  if (from < 0 || count < 0) throw base::Failure(base::number::kInvalidArgument);
  std::vector<std::string> names;
  for (const Value& each : fields.array()) names.push_back(base::ToText(each));
  base::Array texts;
  std::size_t bytes = 0;
  const std::int32_t end = from + std::min(count, std::max(0, playlist.count() - from));
  for (std::int32_t i = from; i < end && bytes < kEnoughBytes; ++i) {
    const MediaRef media = playlist.item(i);
    for (const std::string& name : names) {
      std::string text = media ? TextOf(*media, name) : std::string();
      bytes += text.size();
      texts.emplace_back(std::move(text));
    }
  }
  return texts;
}

// The way back of what readItems has told. Fields that a title has no place for are passed over.
std::vector<ToldMedia> ToldIn(const base::Array& fields, const base::Array& texts) {
  if (fields.empty() || texts.size() % fields.size() != 0)
    throw base::Failure(base::number::kInvalidArgument, "There are texts without a field");
  std::vector<ToldMedia> told(texts.size() / fields.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    ToldMedia& media = told[i / fields.size()];
    const std::string field = base::ToText(fields[i % fields.size()]);
    std::string text = base::ToText(texts[i]);
    if (base::SameText(field, "sourceURL"))
      media.url = std::move(text);
    else if (base::SameText(field, "name"))
      media.title = std::move(text);
    else if (base::SameText(field, "Artist"))
      media.artist = std::move(text);
    else if (base::SameText(field, "Duration"))
      media.seconds = base::NumericPrefix(text);
  }
  return told;
}

/// Of the first item that has each of the values: those fields.
base::Array ReadFirst(MediaCollection& collection, const std::string& attribute, const base::Array& values,
                      const base::Array& fields) {
  base::Array texts;
  for (const Value& value : values) {
    const PlaylistRef found = collection.getByAttribute(attribute, base::ToText(value));
    const MediaRef first = found && found->count() > 0 ? found->item(0) : nullptr;
    for (const Value& field : fields)
      texts.emplace_back(first ? TextOf(*first, base::ToText(field)) : std::string());
  }
  return texts;
}

void RemoveItems(Playlist& playlist, const base::Array& numbers) {
  auto* const list = dynamic_cast<ManyOut*>(&playlist);
  if (list == nullptr) throw base::Failure(base::number::kInvalidArgument, "The list can't be changed so");
  std::vector<std::int32_t> places;
  places.reserve(numbers.size());
  for (const Value& each : numbers) places.push_back(base::ToInt32(each));
  list->removeItems(places);
}

}  // namespace

MediaRef MediaBehind(const Value& value) { return Behind<Media>(value); }
PlaylistRef PlaylistBehind(const Value& value) { return Behind<Playlist>(value); }

base::ObjectRef ShowByName(const MediaRef& media) {
  return Show<Media>(
      media, "Media",
      {ReadField("name", Type::kText, [media] { return media->name(); }),
       ReadField("sourceURL", Type::kText, [media] { return media->sourceURL(); }),
       Operation("getItemInfo", {Text("attribute")}, Type::kText,
                 [media](Args& args) { return media->getItemInfo(TextAt(args, 0)); }),
       Operation("getItemInfoByType", {Text("attribute"), Text("language"), Number("index")}, Type::kObject,
                 [media](Args& args) {
                   return ShowPicture(
                       media->getItemInfoByType(TextAt(args, 0), TextAt(args, 1), NumberAt(args, 2)));
                 }),
       ReadField("duration", Type::kDouble, [media] { return media->duration(); }),
       ReadField("durationString", Type::kText, [media] { return media->durationString(); }),
       ReadField("imageSourceHeight", Type::kInt32, [media] { return media->imageSourceHeight(); }),
       // Of this system's own, as no path goes to another process.
       ReadField("pictureMark", Type::kText, [media] { return MarkOf(*media); }),
       ReadField("pictureBytes", Type::kText, [media] { return BytesOf(*media); })});
}

base::ObjectRef ShowByName(const PlaylistRef& playlist) {
  return Show<Playlist>(
      playlist, "Playlist",
      {Field(
           "name", Type::kText, [playlist] { return playlist->name(); },
           [playlist](const Value& name) { playlist->name(base::ToText(name)); }),
       ReadField("count", Type::kInt32, [playlist] { return playlist->count(); }),
       Operation("item", {Number("index")}, Type::kObject,
                 [playlist](Args& args) { return ShowByName(playlist->item(NumberAt(args, 0))); }),
       // Of this system's own: the texts of these fields and attributes for at most `count` items, one item
       // behind the other; fewer items when their texts are long.
       Operation("readItems", {Texts("fields"), Number("from"), Number("count")}, Type::kTextList,
                 [playlist](Args& args) {
                   return ReadItems(*playlist, args[0], NumberAt(args, 1), NumberAt(args, 2));
                 }),
       Command("appendItem", {Reference("media")},
               [playlist](Args& args) { playlist->appendItem(MediaBehind(args[0])); }),
       Command("insertItem", {Number("index"), Reference("media")},
               [playlist](Args& args) { playlist->insertItem(NumberAt(args, 0), MediaBehind(args[1])); }),
       Command("insertItems", {Number("index"), Texts("fields"), Texts("texts")},
               [playlist](Args& args) {
                 playlist->insertItems(NumberAt(args, 0), ToldIn(args[1].array(), args[2].array()));
               }),
       Command("removeItems", {{"places", Type::kArray}},
               [playlist](Args& args) { RemoveItems(*playlist, args[0].array()); }),
       ReadField("revision", Type::kDouble, [playlist] { return static_cast<double>(playlist->revision()); }),
       Command("removeItem", {Reference("media")},
               [playlist](Args& args) { playlist->removeItem(MediaBehind(args[0])); }),
       Command("moveItem", {Number("oldIndex"), Number("newIndex")},
               [playlist](Args& args) { playlist->moveItem(NumberAt(args, 0), NumberAt(args, 1)); })});
}

base::ObjectRef ShowByName(const PlaylistArrayRef& playlists) {
  return Show<PlaylistArray>(playlists, "PlaylistArray",
                             {ReadField("count", Type::kInt32, [playlists] { return playlists->count(); }),
                              Operation("item", {Number("index")}, Type::kObject, [playlists](Args& args) {
                                return ShowByName(playlists->item(NumberAt(args, 0)));
                              })});
}

base::ObjectRef ShowByName(const StringCollectionRef& texts) {
  return Show<StringCollection>(texts, "StringCollection",
                                {ReadField("count", Type::kInt32, [texts] { return texts->count(); }),
                                 Operation("item", {Number("index")}, Type::kText,
                                           [texts](Args& args) { return texts->item(NumberAt(args, 0)); })});
}

base::ObjectRef ShowByName(MediaCollection& collection) {
  return Show(
      "MediaCollection",
      {Operation("add", {Text("url")}, Type::kObject,
                 [&collection](Args& args) { return ShowByName(collection.add(TextAt(args, 0))); }),
       Operation("getAll", {}, Type::kObject, [&collection] { return ShowByName(collection.getAll()); }),
       Operation("getByName", {Text("name")}, Type::kObject,
                 [&collection](Args& args) { return ShowByName(collection.getByName(TextAt(args, 0))); }),
       Operation("getByAttribute", {Text("attribute"), Text("value")}, Type::kObject,
                 [&collection](Args& args) {
                   return ShowByName(collection.getByAttribute(TextAt(args, 0), TextAt(args, 1)));
                 }),
       // Of this system's own, for who shows many groups at once.
       Operation("readFirst", {Text("attribute"), Texts("values"), Texts("fields")}, Type::kTextList,
                 [&collection](Args& args) {
                   return ReadFirst(collection, TextAt(args, 0), args[1].array(), args[2].array());
                 }),
       Operation("getAttributeStringCollection", {Text("attribute"), Text("mediaType")}, Type::kObject,
                 [&collection](Args& args) {
                   return ShowByName(
                       collection.getAttributeStringCollection(TextAt(args, 0), TextAt(args, 1)));
                 })});
}

base::ObjectRef ShowByName(PlaylistCollection& collection) {
  return Show(
      "PlaylistCollection",
      {Operation("getAll", {}, Type::kObject, [&collection] { return ShowByName(collection.getAll()); }),
       Operation("getByName", {Text("name")}, Type::kObject,
                 [&collection](Args& args) { return ShowByName(collection.getByName(TextAt(args, 0))); }),
       Operation("newPlaylist", {Text("name")}, Type::kObject,
                 [&collection](Args& args) { return ShowByName(collection.newPlaylist(TextAt(args, 0))); }),
       Command("remove", {Reference("playlist")},
               [&collection](Args& args) { collection.remove(PlaylistBehind(args[0])); })});
}

base::ObjectRef ShowByName(CdromCollection& collection) {
  return Show("CdromCollection",
              {ReadField("count", Type::kInt32, [&collection] { return collection.count(); }),
               Operation("item", {Number("index")}, Type::kObject, [&collection](Args& args) {
                 return ShowDrive(collection.item(NumberAt(args, 0)));
               })});
}

}  // namespace player
