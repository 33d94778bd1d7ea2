#pragma once
#include <algorithm>
#include <memory>
#include <set>
#include <vector>

#include "base/Text.hpp"
#include "support/FakePlayer.hpp"

namespace support {

using FakeMediaRef = std::shared_ptr<FakeMedia>;

class FakePlaylist : public player::Playlist {
 public:
  FakePlaylist(Journal& journal, std::string name, std::vector<player::MediaRef> members = {})
      : title(std::move(name)), members(std::move(members)), journal_(journal) {}
  std::string title;
  std::vector<player::MediaRef> members;
  bool nameFails = false;
  bool stored = false;                                     ///< and not removed since
  bool refuses = false;                                    ///< every change fails
  std::int32_t failure = base::number::kPermissionDenied;  ///< the number with which it does
  std::function<void()> onName = [] {};

  [[nodiscard]] std::string name() const override {
    onName();
    if (nameFails) throw Failure(base::number::kDeviceIo);
    return title;
  }
  void name(const std::string& value) override {
    changed("rename " + title + " to " + value);
    title = value;
  }
  [[nodiscard]] std::int64_t revision() const override { return stored ? 1 : 0; }
  [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(members.size()); }
  [[nodiscard]] player::MediaRef item(std::int32_t index) const override {
    if (index < 0 || index >= count()) throw Failure(base::number::kIndex);
    return members[static_cast<std::size_t>(index)];
  }
  void appendItem(const player::MediaRef& media) override {
    changed("append " + media->name() + " to " + title);
    members.push_back(media);
  }
  void insertItem(std::int32_t index, const player::MediaRef& media) override {
    journal_.add("library: insert " + media->name() + " at " + std::to_string(index));
    members.insert(members.begin() + index, media);
  }
  void removeItem(const player::MediaRef& media) override {
    changed("remove " + media->name() + " from " + title);
    const auto found = std::find(members.begin(), members.end(), media);  // the first of equal ones
    if (found != members.end()) members.erase(found);
  }
  void moveItem(std::int32_t from, std::int32_t to) override {
    changed("move " + std::to_string(from) + " to " + std::to_string(to));
    const player::MediaRef moved = item(from);
    static_cast<void>(item(to));
    members.erase(members.begin() + from);
    members.insert(members.begin() + to, moved);
  }

 private:
  void changed(const std::string& what) {
    journal_.add("library: " + what);
    if (refuses) throw Failure(failure);
  }

  Journal& journal_;
};
using FakePlaylistRef = std::shared_ptr<FakePlaylist>;

/// A player's library that records what it is asked.
class FakeLibrary : public player::MediaCollection {
 public:
  explicit FakeLibrary(Journal& journal) : journal_(journal) {}

  std::vector<FakeMediaRef> tracks;
  std::vector<FakePlaylistRef> playlists;
  std::map<std::string, std::vector<std::string>> attributes;  ///< by lower-case attribute
  std::set<std::string> failing;     ///< calls that fail with number 57, by their first word
  std::set<std::string> unreadable;  ///< names of a list that can't be read
  bool makesPlaylists = true;

  FakeMediaRef addTrack(const std::string& title, const std::string& artist, const std::string& album,
                        const std::string& genre) {
    tracks.push_back(std::make_shared<FakeMedia>(title, artist, album, genre));
    return tracks.back();
  }
  FakePlaylistRef addPlaylist(const std::string& name, std::vector<player::MediaRef> members = {}) {
    playlists.push_back(std::make_shared<FakePlaylist>(journal_, name, std::move(members)));
    playlists.back()->stored = true;
    return playlists.back();
  }
  /// Somebody removes it, and who holds it holds nothing that is stored.
  void removePlaylist(const player::PlaylistRef& playlist) {
    for (const FakePlaylistRef& each : playlists)
      if (each == playlist) each->stored = false;
    std::erase(playlists, playlist);
  }
  /// Puts the library into a player.
  void into(FakePlayer& player) {
    player.mediaLibrary = this;
    player.playlistLibrary = &stored_;
  }

  // MediaCollection
  player::MediaRef add(const std::string& url) override {
    asked("add", url);
    return addTrack(url, "", "", "");
  }
  player::PlaylistRef getAll() override {
    asked("getAllMedia", "");
    return group("All", [](const FakeMedia&) { return true; });
  }
  player::PlaylistRef getByName(const std::string& name) override {
    asked("getByName", name);
    return group(name, [&](const FakeMedia& media) { return base::SameText(media.title, name); });
  }
  player::PlaylistRef getByAttribute(const std::string& attribute, const std::string& value) override {
    asked("getByAttribute", attribute + "=" + value);
    return group(value, [&](const FakeMedia& media) {
      for (const auto& [key, held] : media.info)
        if (base::SameText(key, attribute)) return base::SameText(held, value);
      return false;
    });
  }
  player::StringCollectionRef getAttributeStringCollection(const std::string& attribute,
                                                           const std::string& mediaType) override {
    asked("getAttributeStringCollection", attribute + " " + mediaType);
    return std::make_shared<Strings>(attributes[base::LowerCase(attribute)], unreadable);
  }

 private:
  class Strings : public player::StringCollection {
   public:
    Strings(std::vector<std::string> texts, std::set<std::string> unreadable)
        : texts_(std::move(texts)), unreadable_(std::move(unreadable)) {}
    [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(texts_.size()); }
    [[nodiscard]] std::string item(std::int32_t index) const override {
      const std::string& text = texts_.at(static_cast<std::size_t>(index));
      if (unreadable_.count(text) > 0) throw Failure(base::number::kDeviceIo);
      return text;
    }

   private:
    std::vector<std::string> texts_;
    std::set<std::string> unreadable_;
  };

  class Lists : public player::PlaylistArray {
   public:
    explicit Lists(std::vector<FakePlaylistRef> lists) : lists_(std::move(lists)) {}
    [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(lists_.size()); }
    [[nodiscard]] player::PlaylistRef item(std::int32_t index) const override {
      return lists_.at(static_cast<std::size_t>(index));
    }

   private:
    std::vector<FakePlaylistRef> lists_;
  };

  template <class Wanted>
  FakePlaylistRef group(const std::string& name, Wanted&& wanted) {
    auto found = std::make_shared<FakePlaylist>(journal_, name);
    for (const FakeMediaRef& track : tracks)
      if (wanted(*track)) found->members.push_back(track);
    return found;
  }

  void asked(const std::string& call, const std::string& argument) {
    journal_.add("library: " + call + (argument.empty() ? "" : " " + argument));
    if (failing.count(call) > 0) throw Failure(base::number::kDeviceIo);
  }

  /// The playlists, as an object of its own: both collections have a getAll.
  class Stored : public player::PlaylistCollection {
   public:
    explicit Stored(FakeLibrary& library) : library_(library) {}
    player::PlaylistArrayRef getAll() override {
      library_.asked("getAllPlaylists", "");
      return std::make_shared<Lists>(library_.playlists);
    }
    player::PlaylistArrayRef getByName(const std::string& name) override {
      library_.asked("getPlaylistByName", name);
      std::vector<FakePlaylistRef> found;
      for (const FakePlaylistRef& list : library_.playlists)
        if (base::SameText(list->title, name)) found.push_back(list);
      return std::make_shared<Lists>(found);
    }
    player::PlaylistRef newPlaylist(const std::string& name) override {
      library_.asked("newPlaylist", name);
      return library_.makesPlaylists ? library_.addPlaylist(name) : nullptr;
    }
    void remove(const player::PlaylistRef& playlist) override {
      library_.asked("remove", playlist->name());
      library_.removePlaylist(playlist);
    }

   private:
    FakeLibrary& library_;
  };

  Journal& journal_;
  Stored stored_{*this};
};

}  // namespace support
