#pragma once
#include "script/ScriptClass.hpp"
#include "support/LibraryHouse.hpp"

namespace support {

/// A library house with its script object, which plays through the plug-in's own modules.
class ScriptHouse : public LibraryHouse {
 protected:
  void SetUp() override {
    LibraryHouse::SetUp();
    one = library.addTrack("Track One", "Joni Mitchell", "Blue", "Folk");
    two = library.addTrack("Track Two", "Joni Mitchell", "Blue", "Folk");
    one->info["WM/AlbumTitle"] = two->info["WM/AlbumTitle"] = "Blue";
    one->seconds = 205.5;
  }
  /// Lets the first track play.
  void playing() {
    wmp9->state = player::kPlaying;
    wmp9->media = one;
    plugin.playTarget.PlayTargetMedia = one;
  }
  void beforeStart() { plugin.state.Initialized = false; }

  template <class... T>
  base::Value call(const std::string& name, T&&... values) {
    return script.invoke(name, std::forward<T>(values)...);
  }
  base::Value get(const std::string& name) { return script.get(name); }
  static std::vector<std::string> Texts(const base::Value& value) {
    std::vector<std::string> texts;
    for (const base::Value& element : value.array()) texts.push_back(base::ToText(element));
    return texts;
  }

  FakeMediaRef one, two;
  script::ScriptClass script{{plugin.state, plugin.host, plugin.form, plugin.calls, plugin.playState,
                              plugin.catalogue, plugin.ownLibrary, neighbours}};
};

}  // namespace support
