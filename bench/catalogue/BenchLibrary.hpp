#pragma once
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "catalogue/MediaCatalogue.hpp"
#include "support/FakePlayer.hpp"
#include "support/Quiet.hpp"
#include "support/VirtualLoop.hpp"
#include "ui/ProgBar.hpp"

namespace bench {

/// Names as libraries hold them, in no order; every third has a character that no media key keeps.
inline std::vector<std::string> Names(std::size_t count) {
  std::mt19937 random(42);
  std::vector<std::string> names;
  names.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(random() % 10'000'000);
    names.push_back(i % 3 == 0 ? "Live / Unplugged, " + number + " (Rock & Roll)" : "The Name of " + number);
  }
  return names;
}

/// A host that takes every call and does nothing: what is measured is the plug-in's own work.
class SilentHost : public base::Object {
 public:
  base::Value call(std::string_view name, base::Args& /*args*/) override {
    return name == "GetINISection" ? base::Value(section) : base::Value();
  }
  base::Value get(std::string_view /*name*/) override { return {}; }
  void put(std::string_view /*name*/, const base::Value& /*value*/) override {}
  std::string section;
};

/// A library in memory whose own cost is small.
class BenchLibrary : public player::MediaCollection {
 public:
  explicit BenchLibrary(std::size_t count) : names_(std::make_shared<Texts>(Names(count))) {
    all_ = std::make_shared<Group>();
    for (const std::string& name : names_->texts)
      all_->members.push_back(std::make_shared<support::FakeMedia>(name, "", "", ""));
  }
  [[nodiscard]] const std::vector<std::string>& names() const { return names_->texts; }

  player::MediaRef add(const std::string& /*url*/) override { return nullptr; }
  player::PlaylistRef getAll() override { return all_; }
  player::PlaylistRef getByName(const std::string& /*name*/) override { return all_; }
  player::PlaylistRef getByAttribute(const std::string& /*a*/, const std::string& /*v*/) override {
    return all_;
  }
  player::StringCollectionRef getAttributeStringCollection(const std::string& /*a*/,
                                                           const std::string& /*t*/) override {
    return names_;
  }

 private:
  struct Texts : player::StringCollection {
    explicit Texts(std::vector<std::string> all) : texts(std::move(all)) {}
    std::vector<std::string> texts;
    [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(texts.size()); }
    [[nodiscard]] std::string item(std::int32_t index) const override {
      return texts[static_cast<std::size_t>(index)];
    }
  };
  struct Group : player::Playlist {
    std::vector<player::MediaRef> members;
    [[nodiscard]] std::string name() const override { return {}; }
    void name(const std::string& /*value*/) override {}
    [[nodiscard]] std::int32_t count() const override { return static_cast<std::int32_t>(members.size()); }
    [[nodiscard]] player::MediaRef item(std::int32_t index) const override {
      return members[static_cast<std::size_t>(index)];
    }
    void appendItem(const player::MediaRef& /*media*/) override {}
    void insertItem(std::int32_t /*index*/, const player::MediaRef& /*media*/) override {}
    void removeItem(const player::MediaRef& /*media*/) override {}
    void moveItem(std::int32_t /*from*/, std::int32_t /*to*/) override {}
  };

  std::shared_ptr<Texts> names_;
  std::shared_ptr<Group> all_;
};

/// The catalogue with everything below it, and the real progress window's logic above.
struct BenchHouse {
  explicit BenchHouse(BenchLibrary& library) {
    host.Host = silent;
    state.Initialized = state.ProgressWindowAllowed = true;
    stale.markCategories();
    made->mediaLibrary = &library;
  }
  void forget() {
    xref = std::make_unique<catalogue::NameXref>(host, loggers, progress);
    catalogue = std::make_unique<catalogue::MediaCatalogue>(
        catalogue::CatalogueParts{form, host, loggers, state, stale, target, *xref, progress, clock});
    stale.markCategories();
  }

  support::VirtualLoop loop;
  std::shared_ptr<SilentHost> silent = std::make_shared<SilentHost>();
  plugin::HostServices host{loop};
  plugin::PluginState state;
  support::QuietPlatform platform;
  plugin::Loggers loggers{host, state, platform};
  player::StaleMarks stale;
  player::PlayTarget target;
  support::Journal journal;
  support::QuietEvents events;
  std::unique_ptr<support::FakePlayer> made = std::make_unique<support::FakePlayer>(journal, events);
  player::WMPPlayer form{[this](player::WMP9Events&) { return std::move(made); }, events};
  base::LoopDayClock clock{loop};
  ui::WindowlessProgBar view;
  ui::ProgBar progress{view, host, state, platform, loop, clock};
  std::unique_ptr<catalogue::NameXref> xref = std::make_unique<catalogue::NameXref>(host, loggers, progress);
  std::unique_ptr<catalogue::MediaCatalogue> catalogue = std::make_unique<catalogue::MediaCatalogue>(
      catalogue::CatalogueParts{form, host, loggers, state, stale, target, *xref, progress, clock});
};

}  // namespace bench
