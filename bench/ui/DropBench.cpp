// What a drop in the playlist editor costs, beside a plain durable write of the playlist's bytes.
#include <algorithm>
#include <chrono>
#include <memory>

#include "Brief.hpp"
#include "PlainWrite.hpp"
#include "Timing.hpp"
#include "bus/PollLoop.hpp"
#include "engine/common/Config.hpp"
#include "engine/library/Library.hpp"
#include "engine/playlists/StoredPlaylists.hpp"
#include "support/TempFolder.hpp"
#include "ui/editor/EditorGround.hpp"

namespace {

namespace fs = std::filesystem;
using ui::editor::Control;

using bench::Median;
using bench::Milliseconds;

const int kRounds = bench::Amount(15, 1);

/// The editor over the stored playlist "Bench", and an album with a title for each round.
struct House {
  House(const fs::path& root, int count) : path(root / "playlists/Bench.m3u8") {
    bench::MakePlaylist(path, count);
    config.dataFolder = root / "data";
    library = std::make_unique<engine::Library>(
        loop, config, engine::Library::Events{[] {}, [](const std::string&) {}, [] {}});
    stored = std::make_unique<engine::StoredPlaylists>(
        loop, path.parent_path(), *library,
        engine::StoredPlaylists::Events{[] {}, [] {},
                                        [](const std::string& line) { std::printf("%s\n", line.c_str()); }});
    ground = std::make_unique<support::EditorGround>(nullptr, stored.get());
    for (int round = 0; round < kRounds; ++round) {
      const std::string title = "New " + std::to_string(round);
      ground->library.addTrack(title, "Ann", "Blue", "Folk")->url = "http://house/" + title;
    }
    ground->library.attributes["album"] = {"Blue"};
    ground->editor.show();
    press(ground->editor.models().TreeView1.find("AlbumBlue"));
  }
  void press(const ui::editor::NodeRef& node) {
    ground->window.node = node;
    ground->editor.TreeView1_MouseDown(ui::editor::kLeftButton, 0, 0, 0);
  }
  [[nodiscard]] ui::editor::KeyedList& list() const { return ground->editor.models().ListView1; }
  /// The milliseconds of a drop on the item in the middle.
  double drop(Control source) {
    ground->window.item = list().item(list().count() / 2);
    return Milliseconds([&] { ground->editor.ListView1_DragDrop(source, 0, 100); });
  }
  double dropTitle(int round) {
    press(ground->editor.models().TreeView1.find("AlbumBlueNew " + std::to_string(round)));
    ground->editor.TreeView1_MouseMove(ui::editor::kLeftButton, 0, 0, 0);
    return drop(Control::kTreeView1);
  }
  double dropLast() {
    ground->window.item = list().item(list().count());
    ground->editor.ListView1_MouseDown(ui::editor::kLeftButton, 0, 0, 0);
    ground->editor.ListView1_MouseMove(ui::editor::kLeftButton, 0, 0, 0);
    return drop(Control::kListView1);
  }

  fs::path path;
  bus::PollLoop loop;
  engine::Config config;
  std::unique_ptr<engine::Library> library;
  std::unique_ptr<engine::StoredPlaylists> stored;
  std::unique_ptr<support::EditorGround> ground;
};

/// False where a drop has not been stored.
bool Measure(const fs::path& root, int count) {
  House house(root, count);
  std::vector<double> added;
  std::vector<double> moved;
  std::vector<double> plain;
  for (int round = 0; round < kRounds; ++round) {  // by turns, as the disk has its moods
    added.push_back(house.dropTitle(round));
    moved.push_back(house.dropLast());
    const std::string content = bench::Content(house.path);
    plain.push_back(Milliseconds([&] { bench::WritePlainly(root / "plain", content); }));
  }
  const double write = Median(plain);
  std::printf("%7d items | a title added %8.2f ms (%.2f) | an item moved %8.2f ms (%.2f) | plain %8.2f ms\n",
              count, Median(added), Median(added) / write, Median(moved), Median(moved) / write, write);
  for (const std::string& message : house.ground->window.messages) std::printf("%s\n", message.c_str());
  const auto list = house.stored->getByName("Bench")->item(0);
  return house.ground->window.messages.empty() && list->count() == count + kRounds &&
         house.list().count() == static_cast<std::size_t>(count + kRounds);
}

}  // namespace

int main() {
  std::printf("medians of %d; in brackets: times a plain durable write of the same bytes\n", kRounds);
  for (const int count : {1'000, 10'000, 100'000}) {
    if (bench::Brief() && count > 1'000) break;
    const support::TempFolder folder;
    if (Measure(folder.path(), count)) continue;
    std::printf("not all that was dropped is there\n");
    return 1;
  }
  return 0;
}
