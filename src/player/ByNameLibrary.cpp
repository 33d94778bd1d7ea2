#include "player/ByNameLibrary.hpp"

#include "player/ByNameTable.hpp"

namespace player {

using namespace table;  // NOLINT(google-build-using-namespace): the words exist for these tables

namespace {

base::ObjectRef ShowPicture(Picture picture) {
  return Show("Picture", {ReadField("URL", Type::kText, [url = std::move(picture.url)] { return url; })});
}

base::ObjectRef ShowDrive(const std::shared_ptr<Cdrom>& drive) {
  return Show<Cdrom>(drive, "Cdrom",
                     {ReadField("driveSpecifier", Type::kText, [drive] { return drive->driveSpecifier(); }),
                      ReadField("playlist", Type::kObject, [drive] { return ShowByName(drive->playlist()); }),
                      Command("eject", {}, [drive](Args&) { drive->eject(); })});
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
       ReadField("imageSourceHeight", Type::kInt32, [media] { return media->imageSourceHeight(); })});
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
       Command("appendItem", {Object("media")},
               [playlist](Args& args) { playlist->appendItem(MediaBehind(args[0])); }),
       Command("insertItem", {Number("index"), Object("media")},
               [playlist](Args& args) { playlist->insertItem(NumberAt(args, 0), MediaBehind(args[1])); }),
       Command("removeItem", {Object("media")},
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
       Operation("getAll", {}, Type::kObject,
                 [&collection](Args&) { return ShowByName(collection.getAll()); }),
       Operation("getByName", {Text("name")}, Type::kObject,
                 [&collection](Args& args) { return ShowByName(collection.getByName(TextAt(args, 0))); }),
       Operation("getByAttribute", {Text("attribute"), Text("value")}, Type::kObject,
                 [&collection](Args& args) {
                   return ShowByName(collection.getByAttribute(TextAt(args, 0), TextAt(args, 1)));
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
      {Operation("getAll", {}, Type::kObject,
                 [&collection](Args&) { return ShowByName(collection.getAll()); }),
       Operation("getByName", {Text("name")}, Type::kObject,
                 [&collection](Args& args) { return ShowByName(collection.getByName(TextAt(args, 0))); }),
       Operation("newPlaylist", {Text("name")}, Type::kObject,
                 [&collection](Args& args) { return ShowByName(collection.newPlaylist(TextAt(args, 0))); }),
       Command("remove", {Object("playlist")},
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
