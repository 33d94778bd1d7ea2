#pragma once
#include "support/FakeLibrary.hpp"
#include "support/House.hpp"

namespace support {

/// Records what the progress window is told.
class FakeProgress : public catalogue::Progress {
 public:
  std::vector<std::string> calls;
  std::vector<float> fractions;
  std::int32_t depth = 0;

  void Disp_ProgBar(const std::string& name) override {
    calls.push_back("show " + name);
    ++depth;
  }
  void Update_ProgBar(float fraction) override { fractions.push_back(fraction); }
  void Hide_ProgBar(const std::string& name) override {
    calls.push_back("hide " + name);
    --depth;
  }
};

/// A plug-in with a library in its player, and a catalogue of its own whose progress is recorded.
class LibraryHouse : public House {
 protected:
  explicit LibraryHouse(Pages pages = Pages::kFakes) : House(pages) {
    preparePlayer = [this](FakePlayer& player) { library.into(player); };
  }
  void SetUp() override {
    host->silent = {"GetINISetting"};
    start();
    host->settings.clear();
  }
  void TearDown() override { EXPECT_EQ(progress.depth, 0) << "a walk left the progress window open"; }

  FakeLibrary library{journal};
  FakeProgress progress;
  catalogue::NameXref xref{plugin.host, plugin.loggers, progress};
  catalogue::MediaCatalogue catalogue{{plugin.form, plugin.host, plugin.loggers, plugin.state, plugin.stale,
                                       plugin.playTarget, xref, progress, plugin.clock}};

  [[nodiscard]] bool debugged(const std::string& text) const {
    return logged("Debug", "Media Player: " + text);
  }
  [[nodiscard]] std::string lookup(const std::string& category, const std::string& name) const {
    return xref.LookupNameXref(category, name);
  }
};

}  // namespace support
