// Measures how soon the cover of an album can be on a page after somebody has started the album: each album
// for the first time, so that its picture is read, made smaller and kept on the way. Beside it the same file
// from the server's folder of files. Prints figures; judges none.
#include <cstdio>
#include <fstream>

#include "Times.hpp"
#include "demo/Cover.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

using bench::Clock;
using bench::Milliseconds;
using bench::Percentile;

constexpr int kAlbums = 20;
constexpr int kSide = 800;

std::string NameOf(const char* kind, int number) { return std::string(kind) + std::to_string(number); }

/// From the press to the picture's last byte.
double Start(support::RealHouse& house, const std::string& album) {
  const auto begin = Clock::now();
  if (house.post("/api/play", {{"category", "Album"}, {"name", album}}) != 200) return -1;
  std::string key;
  while (key.empty()) {
    const auto told = support::JsonOf(house.get("/api/cover/key?playing"));
    if (told.value("album", "") == album) key = told.value("key", "");
  }
  if (house.get("/api/cover?key=" + key + "&size=256").empty()) return -1;
  return Milliseconds(Clock::now() - begin);
}

void Measure(support::RealHouse& house, const char* kind) {
  std::vector<double> starts;
  std::vector<double> files;
  for (int i = 0; i < kAlbums; ++i) {
    starts.push_back(Start(house, NameOf(kind, i)));
    const std::string key = support::JsonOf(house.get("/api/cover/key?playing")).value("key", "");
    std::ofstream(house.data() / "html" / "same.jpg", std::ios::binary)
        << house.get("/api/cover?key=" + key + "&size=256");
    const auto begin = Clock::now();
    house.get("/same.jpg");
    files.push_back(Milliseconds(Clock::now() - begin));
  }
  std::printf("%s: cover after the start of an album, median %.1f ms, 95%% %.1f ms; the same file %.1f ms\n",
              kind, Percentile(starts, 0.5), Percentile(starts, 0.95), Percentile(files, 0.5));
}

}  // namespace

int main() {
  support::SmallMusic music(2);
  for (int i = 0; i < kAlbums; ++i) {
    for (const char* kind : {"Embedded", "Folder"}) {
      const std::string album = NameOf(kind, i);
      const bool inside = kind[0] == 'E';
      std::filesystem::create_directories(music.path() + "/" + album);
      engine::TrackTags tags;
      tags.title = "Song of " + album;
      tags.artist = "The Painters";
      tags.album = album;
      tags.track = 1;
      const std::string png =
          engine::demo::CoverPng(static_cast<std::uint32_t>(i + (inside ? 0 : 100)), kSide);
      music.add(album + "/song", 20, tags, inside ? png : std::string());
      if (!inside) std::ofstream(music.path() + "/" + album + "/cover.png", std::ios::binary) << png;
    }
  }
  support::RealHouse house({.music = music.path()});
  if (!house.startReady()) return 1;
  const std::string last =
      "/api/library?category=Album&limit=1&fresh=1&group=" + NameOf("Folder", kAlbums - 1);
  if (!support::Eventually([&] { return house.get(last).find("Song of") != std::string::npos; })) return 1;
  Measure(house, "Embedded");
  Measure(house, "Folder");
  return 0;
}
