// What the playlist editor's page costs on its whole way, from a browser's request through the server and the
// bus to the plug-in and back, beside a file of the same size from the same server. Prints figures and their
// ratios; judges none.
#include <cstdio>
#include <fstream>
#include <thread>

#include "Brief.hpp"
#include "Times.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using bench::Clock;
using bench::Milliseconds;

const int kPlaylists = bench::Amount(10'000, 50);
const int kItems = bench::Amount(10'000, 50);
constexpr const char* kForm = "application/x-www-form-urlencoded";
constexpr const char* kLook = "wmp_page=Main_Page&PlayList=A+long+one&button=Refresh";

/// A folder of playlists, one of them long; their items are known by name alone.
void StorePlaylists(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  std::ofstream large(folder / "A long one.m3u8");
  large << "#EXTM3U\n#PLAYLIST:A long one\n";
  for (int i = 0; i < kItems; ++i)
    large << "#EXTINF:215,Title " << i << " of a band\n/srv/music/band/title " << i << ".flac\n";
  for (int i = 1; i < kPlaylists; ++i) {
    const std::string name = "Playlist " + std::to_string(i) + " of an evening";
    std::ofstream(folder / (name + ".m3u8")) << "#EXTM3U\n#PLAYLIST:" << name << "\n";
  }
}

struct Load {
  std::vector<double> times;  ///< of each request, in milliseconds
  double seconds = 0;         ///< of them all
  [[nodiscard]] double rate() const { return static_cast<double>(times.size()) / seconds; }
  [[nodiscard]] double slow() const { return bench::Percentile(times, 0.95); }
};

/// So many clients, each asking `count` times in a row; `ask` answers the size of what came.
template <class Ask>
Load Run(const support::RealHouse& house, int clients, int count, std::size_t size, Ask ask) {
  std::vector<std::vector<double>> times(static_cast<std::size_t>(clients));
  std::vector<std::thread> threads;
  threads.reserve(times.size());
  const auto begin = Clock::now();
  for (auto& mine : times) {
    threads.emplace_back([&house, &mine, &ask, count, size] {
      httplib::Client client = house.client();
      client.set_keep_alive(true);
      client.set_tcp_nodelay(true);
      client.set_read_timeout(60);
      for (int i = 0; i < count; ++i) {
        const auto start = Clock::now();
        const std::size_t got = ask(client);
        mine.push_back(Milliseconds(Clock::now() - start));
        if (got != size) std::printf("an answer of %zu bytes instead of %zu\n", got, size);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  Load load;
  load.seconds = Milliseconds(Clock::now() - begin) / 1000;
  for (const auto& mine : times) load.times.insert(load.times.end(), mine.begin(), mine.end());
  return load;
}

void Print(const char* what, int clients, const Load& load) {
  std::printf("%s, %d client%s: %.1f requests a second, 95th percentile %.1f ms of %zu\n", what, clients,
              clients == 1 ? "" : "s", load.rate(), load.slow(), load.times.size());
}

int Measure(support::RealHouse& house) {
  const int kRounds = bench::Amount(100, 4);
  httplib::Client client = house.client();
  client.set_read_timeout(60);
  const auto page = client.Post("/WMP_PListEdit", {{"Origin", house.url()}}, kLook, kForm);
  if (!page || page->status != 200 ||
      page->body.find("Title " + std::to_string(kItems - 1) + " of a band") == std::string::npos ||
      page->body.find("Playlist " + std::to_string(kPlaylists - 1) + " of an evening") == std::string::npos) {
    std::fprintf(stderr, "The page is not the one to be measured\n");
    return 1;
  }
  const std::size_t size = page->body.size();
  std::ofstream(house.data() / "html" / "same.txt") << std::string(size, 'x');
  std::printf("the editor's main page with %d playlists and %d items: %.2f MiB\n", kPlaylists, kItems,
              static_cast<double>(size) / (1U << 20U));
  for (const int clients : {1, 4}) {
    const Load plain = Run(house, clients, kRounds / clients, size, [](httplib::Client& web) {
      const auto answer = web.Get("/same.txt");
      return answer ? answer->body.size() : 0;
    });
    const Load editor = Run(house, clients, kRounds / clients, size, [&](httplib::Client& web) {
      const auto answer = web.Post("/WMP_PListEdit", {{"Origin", house.url()}}, kLook, kForm);
      return answer ? answer->body.size() : 0;
    });
    Print("a file of that size", clients, plain);
    Print("the page", clients, editor);
    std::printf("  %.1f times a file's time a request, %.1f times its 95th percentile\n",
                plain.rate() / editor.rate(), editor.slow() / plain.slow());
  }
  return 0;
}

}  // namespace

int main() {
  const support::SmallMusic music(1);
  StorePlaylists(std::filesystem::path(music.path()) / "Playlists");
  support::RealHouse house({.music = music.path()});
  house.start();
  if (!support::Eventually([&] { return house.pluginState() == "ready"; }, std::chrono::minutes(5))) {
    std::fprintf(stderr, "The house does not come up:\n%s\n", house.server().output().c_str());
    return 1;
  }
  return Measure(house);
}
