#include <malloc.h>

#include <algorithm>
#include <unordered_set>

#include "Brief.hpp"
#include "catalogue/BenchLibrary.hpp"
#include "catalogue/Ratio.hpp"
#include "ui/editor/EditorGround.hpp"

// The playlist editor's models as a large library fills them: `ratio` to the least that keeps the same names
// in order and finds them, a sorted list and a set of keys.
namespace {

using ui::editor::KeyedTree;
using ui::editor::NodeRef;

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(10'000);
  if (!bench::Brief()) bench->Arg(100'000);
  bench->Unit(benchmark::kMillisecond)->UseManualTime();
}

/// The yardstick.
void Keep(const std::vector<std::string>& names, const std::string& before) {
  std::vector<std::pair<std::string, std::string>> sorted;
  std::unordered_set<std::string> keys;
  for (const std::string& name : names) {
    sorted.emplace_back(base::LowerCase(name), name);
    keys.insert(base::LowerCase(before + name));
  }
  std::sort(sorted.begin(), sorted.end());
  benchmark::DoNotOptimize(sorted.data());
  benchmark::DoNotOptimize(keys.size());
}

/// Each name once, as the titles of a house of one.
std::vector<std::string> Different(std::size_t count) {
  std::vector<std::string> names = bench::Names(count);
  for (std::size_t i = 0; i < count; ++i) names[i] += " " + std::to_string(i);
  return names;
}

struct Titles : support::EditorGround {
  explicit Titles(const std::vector<std::string>& names) {
    for (const std::string& name : names) library.addTrack(name, "A", "B", "C")->url = "/music/" + name;
  }
};

std::size_t HeldBytes() { return mallinfo2().uordblks; }

/// "All Audio", emptied and filled with so many titles.
void AllAudio(benchmark::State& state) {
  const auto names = Different(static_cast<std::size_t>(state.range(0)));
  Titles ground(names);
  ground.editor.show();
  KeyedTree& tree = ground.editor.models().TreeView1;
  const NodeRef root = tree.find("All Audio");
  ground.editor.TreeView1_NodeClick(root);  // which reads the library
  tree.removeChildren(root);
  const std::size_t before = HeldBytes();
  const auto fill = [&] {
    tree.removeChildren(root);
    tree.expanded(root, false);
    root->tag.clear();
    ground.editor.TreeView1_NodeClick(root);
  };
  bench::Compare(state, static_cast<double>(names.size()), fill, [&] { Keep(names, "All Audio"); });
  if (tree.rowCount(root.get()) != names.size()) state.SkipWithError("not all titles are there");
  state.counters["bytes_per_title"] =
      static_cast<double>(HeldBytes() - before) / static_cast<double>(names.size());
}
BENCHMARK(AllAudio)->Apply(Sizes);

/// The list, filled with a playlist of so many titles.
void List(benchmark::State& state) {
  const auto names = Different(static_cast<std::size_t>(state.range(0)));
  Titles ground(names);
  ground.library.addPlaylist("All", {ground.library.tracks.begin(), ground.library.tracks.end()});
  ground.editor.show();
  ui::editor::EditorModels& models = ground.editor.models();
  bench::Compare(
      state, static_cast<double>(names.size()), [&] { models.PlayListDropBox.listIndex(0); },
      [&] { Keep(names, "PlayListAll"); });
  if (models.ListView1.count() != names.size()) state.SkipWithError("not all titles are there");
}
BENCHMARK(List)->Apply(Sizes);

/// A window that is opened, with the names of so many tenths of 10,000 albums, 5,000 artists, 500 genres and
/// 1,000 playlists.
void Opening(benchmark::State& state) {
  support::EditorGround ground;
  const auto tenths = static_cast<std::size_t>(state.range(0));
  const std::pair<const char*, std::size_t> categories[] = {
      {"album", 1'000 * tenths}, {"artist", 500 * tenths}, {"genre", 50 * tenths}};
  std::vector<std::string> names;
  for (const auto& [category, count] : categories) {
    const auto some = Different(count);
    ground.library.attributes[category] = some;
    names.insert(names.end(), some.begin(), some.end());
  }
  for (const std::string& name : Different(100 * tenths)) {
    ground.library.addPlaylist(name);
    names.push_back(name);
  }
  ground.editor.show();  // which reads the names into the catalogue
  const auto open = [&] {
    ground.window.close();
    ground.editor.show();
  };
  bench::Compare(state, static_cast<double>(names.size()), open, [&] { Keep(names, "Album"); });
  if (ground.editor.models().TreeView1.size() < 1'650 * tenths)
    state.SkipWithError("not all names are there");
}
BENCHMARK(Opening)->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond)->UseManualTime();

}  // namespace

BENCHMARK_MAIN();
