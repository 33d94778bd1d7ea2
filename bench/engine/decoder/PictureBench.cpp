// How many frames of a film are shown in time, and what that costs: in the popup window's place, on a whole
// screen, and in the decoder's own window on a screen of this program's own.
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "Brief.hpp"
#include "bus/PollLoop.hpp"
#include "engine/Player.hpp"
#include "engine/decoder/DecoderOptions.hpp"
#include "support/Quiet.hpp"
#include "support/TempFolder.hpp"
#include "support/desktop/XServer.hpp"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRate = 25;
const int kSeconds = bench::Amount(8, 1);

double Processor() {
  rusage used{};
  ::getrusage(RUSAGE_SELF, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(used.ru_utime) + seconds(used.ru_stime);
}

bool TurnUntil(bus::PollLoop& loop, const std::function<bool()>& done, std::chrono::milliseconds limit) {
  const auto end = Clock::now() + limit;
  while (!done()) {
    if (Clock::now() > end) return false;
    loop.turn(std::chrono::milliseconds(20));
  }
  return true;
}

void Print(const char* where, int frames, double processor) {
  std::printf("%-44s %4d of %4d frames, %5.1f %% of a processor\n", where, frames, kSeconds * kRate,
              100 * processor / kSeconds);
}

void MeasureOurs(const std::string& film, const std::string& folder, const char* where,
                 base::PictureSize size) {
  bus::PollLoop loop;
  engine::Config config;
  config.musicFolders = {folder + "/none"};
  config.dataFolder = folder + "/data";
  config.playlistFolder = folder + "/playlists";
  config.audioOutput = "null";
  config.findCdDrives = false;
  support::QuietEvents events;
  engine::Screen screen;
  int frames = 0;
  screen.tell([&frames] { ++frames; });
  const auto player = engine::MakePlayer(loop, config, events, {}, {}, &screen);
  screen.seen(size);
  player->URL(film);
  TurnUntil(
      loop, [&] { return frames > 2 || size.empty(); }, std::chrono::seconds(20));
  if (size.empty())
    TurnUntil(
        loop, [] { return false; }, std::chrono::seconds(1));
  frames = 0;
  const double before = Processor();
  TurnUntil(
      loop, [] { return false; }, std::chrono::seconds(kSeconds));
  Print(where, frames, Processor() - before);
}

/// The decoder's own window counts what it has dropped.
void MeasureItsOwnWindow(const std::string& film) {
  const support::Screen screen;
  engine::MpvOptions options = engine::DecoderOptions();
  for (auto& [name, value] : options) {
    if (name == "vo") value = "x11";
    if (name == "vid") value = "auto";
  }
  options.emplace_back("ao", "null");
  options.emplace_back("fullscreen", "yes");
  engine::MpvHandle decoder(options);
  decoder.command(0, {"loadfile", film, "replace"});
  const auto next = [&](auto wanted) {
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (Clock::now() < end) {
      const mpv_event& event = decoder.nextEvent();
      if (event.event_id == MPV_EVENT_NONE) std::this_thread::sleep_for(std::chrono::milliseconds(2));
      if (wanted(event)) return true;
    }
    return false;
  };
  next([](const mpv_event& event) { return event.event_id == MPV_EVENT_PLAYBACK_RESTART; });
  const auto dropped = [&] {
    std::int64_t count = 0;
    for (const char* which : {"frame-drop-count", "decoder-frame-drop-count"}) {
      decoder.ask(1, which, MPV_FORMAT_INT64);
      next([&](const mpv_event& event) {
        if (event.event_id != MPV_EVENT_GET_PROPERTY_REPLY) return false;
        const auto* property = static_cast<const mpv_event_property*>(event.data);
        if (event.error >= 0 && property->format == MPV_FORMAT_INT64)
          count += *static_cast<const std::int64_t*>(property->data);
        return true;
      });
    }
    return static_cast<int>(count);
  };
  const int already = dropped();
  const double before = Processor();
  std::this_thread::sleep_for(std::chrono::seconds(kSeconds));
  const double used = Processor() - before;
  Print("the decoder's own window, 1280x800", kSeconds * kRate - (dropped() - already), used);
}

}  // namespace

int main() {
  const support::TempFolder folder;
  const std::string film = (folder.path() / "film.mkv").string();
  const std::string line = "ffmpeg -v error -nostdin -f lavfi -i testsrc2=size=1920x1080:rate=25:duration=" +
                           std::to_string(kSeconds + 10) +
                           " -f lavfi -i sine=440:d=" + std::to_string(kSeconds + 10) +
                           " -c:v mpeg4 -q:v 5 -c:a aac '" + film + "'";
  if (std::system(line.c_str()) != 0) {
    std::fprintf(stderr, "There is no film\n");
    return 1;
  }
  std::printf("A film of 1920x1080 at %d frames a second, %d seconds of it:\n", kRate, kSeconds);
  const std::string place = folder.path().string();
  MeasureOurs(film, place, "heard, and seen by nobody", {});
  MeasureOurs(film, place, "in the popup window, 251x150", {251, 150});
  MeasureOurs(film, place, "on the whole screen, 1280x800", {1280, 800});
  MeasureOurs(film, place, "on the whole screen, 1920x1080", {1920, 1080});
  MeasureItsOwnWindow(film);
  return 0;
}
