#pragma once
#include "catalogue/BenchLibrary.hpp"
#include "pages/SilentPopup.hpp"
#include "pages/WebEditorForm.hpp"

namespace bench {

/// Playlists in memory, all with the same members; each is as large as there are many.
class BenchPlaylists : public player::PlaylistCollection {
 public:
  explicit BenchPlaylists(BenchLibrary& library) : all_(std::make_shared<Lists>()) {
    const player::PlaylistRef members = library.getAll();
    for (const std::string& name : library.names())
      all_->lists.push_back(std::make_shared<List>(name, *members));
    found_->lists = {all_->lists.front()};
  }

  player::PlaylistArrayRef getAll() override { return all_; }
  player::PlaylistArrayRef getByName(const std::string& /*name*/) override { return found_; }
  player::PlaylistRef newPlaylist(const std::string& /*name*/) override { return nullptr; }
  void remove(const player::PlaylistRef& /*playlist*/) override {}

 private:
  struct List : player::Playlist {
    List(std::string text, const player::Playlist& of) : title(std::move(text)), members(of) {}
    std::string title;
    const player::Playlist& members;
    [[nodiscard]] std::string name() const override { return title; }
    void name(const std::string& /*value*/) override {}
    [[nodiscard]] std::int32_t count() const override { return members.count(); }
    [[nodiscard]] player::MediaRef item(std::int32_t index) const override { return members.item(index); }
    void appendItem(const player::MediaRef& /*media*/) override {}
    void insertItem(std::int32_t /*index*/, const player::MediaRef& /*media*/) override {}
    void removeItem(const player::MediaRef& /*media*/) override {}
    void moveItem(std::int32_t /*from*/, std::int32_t /*to*/) override {}
  };
  struct Lists : player::PlaylistArray {
    std::vector<player::PlaylistRef> lists;
    [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(lists.size()); }
    [[nodiscard]] player::PlaylistRef item(std::int32_t index) const override {
      return lists[static_cast<std::size_t>(index)];
    }
  };

  std::shared_ptr<Lists> all_;
  std::shared_ptr<Lists> found_ = std::make_shared<Lists>();
};

class SilentDesktop : public plugin::Desktop {
 public:
  std::int16_t ShowTimedMessage(const std::string& /*title*/, const std::string& /*text*/,
                                std::int16_t /*seconds*/) override {
    return 2;
  }
};

/// Both pages over a library of `count` names.
struct BenchPages {
  explicit BenchPages(std::size_t count) : library(count) { house.made->playlistLibrary = &playlists; }

  BenchLibrary library;
  BenchPlaylists playlists{library};
  BenchHouse house{library};
  plugin::Settings settings{house.host};
  player::StateQueue queue{house.loop, house.host, house.loggers, [](std::int32_t) {}};
  SilentPopup popup;
  player::WMPCalls calls{house.form, queue, house.host, settings, house.state, popup, house.loop};
  SilentDesktop desktop;
  std::shared_ptr<pages::WebSetupForm> setup = std::make_shared<pages::WebSetupForm>(
      pages::SetupParts{house.host, settings, house.state, calls, desktop});
  pages::WebEditorForm editor{
      {*house.catalogue, *house.xref, house.form, house.stale, house.host, house.loggers, *setup}};
};

}  // namespace bench
