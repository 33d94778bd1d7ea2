#pragma once
#include <memory>
#include <string>

#include "base/DayClock.hpp"
#include "support/FakeLibrary.hpp"
#include "support/Quiet.hpp"
#include "support/VirtualLoop.hpp"
#include "ui/editor/FakeEditorWindow.hpp"
#include "ui/editor/PlayListEditor.hpp"

namespace support {

/// A host that takes every call and says nothing.
class QuietHost : public base::Object {
 public:
  using base::Object::call;
  base::Value call(std::string_view name, base::Args& args) override {
    return name == "GetINISetting" ? args.at(2) : base::Value();
  }
  base::Value get(std::string_view /*name*/) override { return {}; }
  void put(std::string_view /*name*/, const base::Value& /*value*/) override {}
};

class QuietProgress : public catalogue::Progress {
 public:
  void Disp_ProgBar(const std::string& /*name*/) override {}
  void Update_ProgBar(float /*fraction*/) override {}
  void Hide_ProgBar(const std::string& /*name*/) override {}
};

/// A playlist editor with all that it takes and nothing else, over a library in memory. Its window is the
/// fake one unless there is another, and so are its playlists.
struct EditorGround {
  explicit EditorGround(ui::editor::EditorWindow* shown = nullptr,
                        player::PlaylistCollection* stored = nullptr)
      : playlists(stored),
        editor({shown != nullptr ? *shown : window, catalogue, xref, form, stale, host, settings, state}) {
    host.Host = host.HostCallback = std::make_shared<QuietHost>();
    stale.markCategories();
  }

  VirtualLoop loop;
  plugin::HostServices host{loop};
  plugin::Settings settings{host};
  plugin::PluginState state;
  support::QuietPlatform platform;
  plugin::Loggers loggers{host, state, platform};
  player::StaleMarks stale;
  player::PlayTarget target;
  Journal journal;
  support::QuietEvents events;
  FakeLibrary library{journal};
  player::PlaylistCollection* playlists;
  player::WMPPlayer form{[this](player::WMP9Events& to) {
                           auto made = std::make_unique<FakePlayer>(journal, to);
                           library.into(*made);
                           if (playlists != nullptr) made->playlistLibrary = playlists;
                           return made;
                         },
                         events};
  base::LoopDayClock clock{loop};
  QuietProgress progress;
  catalogue::NameXref xref{host, loggers, progress};
  catalogue::MediaCatalogue catalogue{{form, host, loggers, state, stale, target, xref, progress, clock}};
  FakeEditorWindow window;
  ui::editor::PlayListEditor editor;
};

}  // namespace support
