// Measures the grid of 10,000 albums in Chromium, headless and so drawing in software: when it is there, how
// it scrolls, what it keeps. Beside it a plain page of the same names and pictures. Prints figures; judges
// none.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "Times.hpp"
#include "demo/Cover.hpp"
#include "support/Browser.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

constexpr int kPictures = 40;
constexpr int kSide = 200;

std::string AlbumOf(int number) {
  std::string digits = std::to_string(number);
  return "Album " + std::string(5 - digits.size(), '0') + digits;
}

void FillWith(support::SmallMusic& music, int albums) {
  std::vector<std::string> pictures;
  for (int i = 0; i < kPictures; ++i)
    pictures.push_back(engine::demo::CoverPng(static_cast<std::uint32_t>(i), kSide));
  for (int i = 0; i < albums; ++i) {
    engine::TrackTags tags;
    tags.title = "Song " + std::to_string(i);
    tags.artist = "Artist " + std::to_string(i / 10);
    tags.album = AlbumOf(i);
    tags.track = 1;
    music.add(tags.album, 0.05, tags, pictures[static_cast<std::size_t>(i % kPictures)]);
  }
}

void WritePlainPage(const support::RealHouse& house, int albums) {
  std::ofstream page(house.data() / "html" / "plain.html");
  page << "<!DOCTYPE html><title>Plain</title><main>";
  for (int i = 0; i < albums; ++i) {
    const std::string query = "Album%20" + AlbumOf(i).substr(6);
    page << "<span class=tile><img loading=lazy width=160 height=160 src='/api/cover?album=" << query
         << "&size=256'> " << AlbumOf(i) << "</span> ";
  }
  page << "</main>";
}

constexpr const char* kWatches = R"(
  window.long = []; window.tile = 0;
  new PerformanceObserver((list) => long.push(...list.getEntries().map((each) => each.duration)))
    .observe({type: 'longtask', buffered: true});
  new MutationObserver((_, look) => {
    if (!document.querySelector('.tile')) return;
    look.disconnect();
    requestAnimationFrame(() => setTimeout(() => { tile = performance.now(); }));
  }).observe(document, {childList: true, subtree: true});)";

/// Scrolls as fast as a hand does, for that time, and tells how far the frames are from each other.
constexpr const char* kScrolls = R"(
  const [time, done] = [arguments[0], arguments[1]];
  const grid = document.querySelector('.long.grid');
  const place = grid ?? document.scrollingElement;
  long.length = 0;
  const gaps = [];
  let [begun, last] = [0, 0];
  const step = (now) => {
    if (last) gaps.push(now - last);
    begun ||= now;
    last = now;
    place.scrollTop += 30;
    if (now - begun < time) return requestAnimationFrame(step);
    gaps.sort((a, b) => a - b);
    done({gaps, scrolled: place.scrollTop, tiles: document.querySelectorAll('.tile').length,
          heap: performance.memory.usedJSHeapSize, long});
  };
  requestAnimationFrame(step);)";

std::string Listed(const nlohmann::json& tasks) {
  constexpr std::size_t kShown = 5;
  auto times = tasks.get<std::vector<double>>();
  std::sort(times.rbegin(), times.rend());
  std::string text = std::to_string(times.size()) + " long tasks";
  for (std::size_t i = 0; i < std::min(kShown, times.size()); ++i)
    text += " " + std::to_string(static_cast<int>(times[i])) + " ms";
  return times.size() > kShown ? text + " …" : text;
}

struct Seen {
  double tile = 0;
  double frame = 0;
};

Seen Measure(support::Browser& browser, const char* words, const std::string& address, int seconds) {
  browser.open("about:blank");
  browser.open(address);
  if (!browser.eventually("return window.tile > 0")) return {};
  const auto shown = browser.run(
      "return [performance.getEntriesByName('first-contentful-paint')[0]?.startTime ?? 0, tile, [...long]]");
  std::printf("%s: first paint %.0f ms, tiles shown %.0f ms, %s\n", words, shown[0].get<double>(),
              shown[1].get<double>(), Listed(shown[2]).c_str());
  const auto told = browser.runAsync(kScrolls, {seconds * 1000});
  const auto gaps = told["gaps"].get<std::vector<double>>();
  double all = 0;
  for (const double gap : gaps) all += gap;
  const double frame = all / static_cast<double>(gaps.size());
  std::printf(
      "%s, scrolling over %.0f pixels: %.1f frames a second, 95%% within %.1f ms, longest %.1f ms, %s; "
      "%d tiles, %.1f MB of script memory\n",
      words, told["scrolled"].get<double>(), 1000 / frame, bench::Percentile(gaps, 0.95), gaps.back(),
      Listed(told["long"]).c_str(), told["tiles"].get<int>(), told["heap"].get<double>() / 1e6);
  std::fflush(stdout);
  return {shown[1].get<double>(), frame};
}

}  // namespace

int main(int count, char** words) {
  const int albums = count > 1 ? std::atoi(words[1]) : 10000;
  const int seconds = count > 2 ? std::atoi(words[2]) : 8;
  support::SmallMusic music(1);
  FillWith(music, albums);
  support::RealHouse house({.music = music.path()});
  if (!house.startReady()) return 1;
  const std::string last =
      "/api/library?category=Album&limit=1&fresh=1&group=Album%20" + AlbumOf(albums - 1).substr(6);
  if (!support::Eventually([&] { return house.get(last).find("Song") != std::string::npos; })) return 1;
  WritePlainPage(house, albums);
  support::Browser browser(1280, 900);
  browser.open(house.address());
  browser.beforeEachPage(kWatches);
  for (const char* round : {"for the first time", "again"}) {
    std::printf("%s\n", round);
    const Seen grid = Measure(browser, "grid", house.url() + "/#library/Album", seconds);
    const Seen plain = Measure(browser, "plain page", house.url() + "/plain.html", seconds);
    if (grid.frame == 0 || plain.frame == 0) return 1;
    std::printf("ratio: tiles shown %.2f, a frame %.2f\n", grid.tile / plain.tile, grid.frame / plain.frame);
  }
  return 0;
}
