// What keeping a queue costs the player's thread, and what taking it up costs a start, beside the bare
// writing and reading of a file of that size.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Brief.hpp"
#include "Timing.hpp"
#include "engine/queue/QueueJournal.hpp"
#include "files/ReadFile.hpp"

namespace {

namespace fs = std::filesystem;

using bench::Median;
using bench::Milliseconds;

const int kRounds = bench::Amount(15, 1);

double Times(const std::function<void()>& work, int rounds = kRounds) {
  std::vector<double> all;
  for (int i = 0; i < rounds; ++i) all.push_back(Milliseconds(work));
  return Median(all);
}

engine::KeptQueue QueueOf(int count) {
  engine::KeptQueue queue;
  queue.name.kind = engine::QueueKind::kList;
  for (int i = 0; i < count; ++i) {
    engine::TrackTags tags;
    tags.title = "A title of some length " + std::to_string(i);
    tags.artist = "Artist " + std::to_string(i / 100);
    tags.album = "Album " + std::to_string(i / 10);
    tags.milliseconds = 200000;
    queue.items.push_back(engine::EncodedItem(engine::LooseMedia(
        "/srv/music/Some Artist/An Album of theirs/" + std::to_string(i) + ".flac", tags)));
  }
  return queue;
}

void Measure(const fs::path& folder, int count) {
  const auto tell = [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); };
  const engine::KeptQueue queue = QueueOf(count);
  double whole = 0;
  double edit = 0;
  double place = 0;
  {
    engine::QueueJournal journal(folder.string(), tell);
    whole = Times([&] { journal.begin(queue); });
    const std::string change = engine::EncodedEdit({{0, 1, 0}, {1, 0, 1}}, {queue.items.front()});
    edit = Times([&] { journal.append(change); }, kRounds * 20);
    const std::string where = engine::EncodedPlace({count / 2, "/srv/music/x.flac", 42});
    place = Times([&] { journal.append(where); }, kRounds * 20);
  }
  const double load = Times([&] {
    engine::QueueJournal journal(folder.string(), tell);
    const auto kept = journal.load();
    if (!kept || kept->items.size() != queue.items.size()) std::abort();
    for (const std::string& item : kept->items) {
      if (engine::DecodeItem(item).location.empty()) std::abort();
    }
  });
  std::uintmax_t bytes = 0;
  std::string path;
  for (const auto& file : fs::directory_iterator(folder)) {
    bytes = file.file_size();
    path = file.path().string();
  }
  const double bare = Times([&] {
    if (files::ReadFile(path).text.size() != bytes) std::abort();
  });
  std::printf(
      "%7d items, %6.2f MiB: whole %8.3f ms, edit %7.4f ms, place %7.4f ms; taken up %8.3f ms, %5.1f times "
      "the bare reading\n",
      count, static_cast<double>(bytes) / (1U << 20U), whole, edit, place, load, load / bare);
  fs::remove_all(folder);
}

}  // namespace

int main() {
  std::string name = (fs::temp_directory_path() / "vantorix-queue-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) return EXIT_FAILURE;
  for (const int count : {100, 10000, bench::Amount(100000, 20000)}) Measure(fs::path(name) / "kept", count);
  fs::remove_all(name);
  return EXIT_SUCCESS;
}
