// How many frames of a film the windows draw in time, and what that costs this process: in the popup window,
// on whole screens, and in the decoder's own window, each on a screen of this program's own; drawn in
// software and by a graphics card or what stands in for one. Fails where a window of ours draws too few in
// software.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>

#include "Brief.hpp"
#include "bus/PollLoop.hpp"
#include "desktop/popup/ControlsPane.hpp"
#include "desktop/popup/ControlsWindow.hpp"
#include "desktop/popup/PictureView.hpp"
#include "engine/Player.hpp"
#include "engine/card/CardOpener.hpp"
#include "engine/card/EglContext.hpp"
#include "engine/decoder/DecoderOptions.hpp"
#include "support/Quiet.hpp"
#include "support/TempFolder.hpp"
#include "support/desktop/WindowUser.hpp"

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

/// False when too few of the frames were shown.
bool Print(const std::string& where, int frames, double processor) {
  constexpr double kEnough = 0.95;
  const int all = kSeconds * kRate;
  std::printf("%-44s %4d of %4d frames, %5.1f %% of a processor\n", where.c_str(), frames, all,
              100 * processor / kSeconds);
  return bench::Brief() || frames >= kEnough * all;
}

/// Where a film is seen.
enum class Place { kNowhere, kPopup, kWholeScreen };

/// Counts the frames that the windows have drawn, each once.
class DrawnFrames : public QObject {
 public:
  explicit DrawnFrames(const engine::Screen& screen) : screen_(screen) {}
  [[nodiscard]] int count() const { return count_; }
  void forget() { count_ = 0; }
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = event->type() == QEvent::Paint ? qobject_cast<QWidget*>(watched) : nullptr;
    if (widget == nullptr || widget->accessibleName() != "Moving picture") return false;
    if (screen_.frame() && screen_.frame() != last_) ++count_;
    last_ = screen_.frame();
    return false;
  }

 private:
  const engine::Screen& screen_;
  base::FrameRef last_;
  int count_ = 0;
};

bool MeasureOurs(const std::string& film, const std::string& folder, const std::string& where, Place place,
                 const std::string& size, engine::Graphics graphics) {
  const support::Screen display({"-screen", "0", size + "x24"});
  bus::PollLoop loop;
  const auto windows = support::OpenDesktop(loop);
  desktop::ControlsWindow view(*windows, [] { return true; });
  engine::Screen screen;
  const desktop::PictureView picture(*windows, view.pane(), screen);
  if (place != Place::kNowhere) {
    view.show();
    view.controlHeight(ui::PopupWindow::kPictureHeight);
    view.height((ui::PopupWindow::kPictureHeight + ui::PopupWindow::kFrameHeight) * 15);
  }
  DrawnFrames drawn(screen);
  qApp->installEventFilter(&drawn);
  engine::Config config;
  config.musicFolders = {folder + "/none"};
  config.dataFolder = folder + "/data";
  config.playlistFolder = folder + "/playlists";
  config.audioOutput = "null";
  config.findCdDrives = false;
  config.graphics = graphics;
  support::QuietEvents events;
  const auto player = engine::MakePlayer(loop, config, events, {}, {}, &screen);
  player->fullScreen(place == Place::kWholeScreen);
  player->URL(film);
  const auto filled = [&] { return place != Place::kWholeScreen || screen.full(); };
  if (place == Place::kNowhere)
    TurnUntil(
        loop, [] { return false; }, std::chrono::seconds(1));
  else
    TurnUntil(
        loop, [&] { return drawn.count() > 2 && filled(); }, std::chrono::seconds(20));
  drawn.forget();
  const double before = Processor();
  TurnUntil(
      loop, [] { return false; }, std::chrono::seconds(kSeconds));
  const double used = Processor() - before;
  const base::PictureSize seen = screen.size();
  const std::string at = place == Place::kNowhere
                             ? where
                             : where + ", " + std::to_string(seen.width) + "x" + std::to_string(seen.height);
  return Print(at, drawn.count(), used) || place == Place::kNowhere;
}

/// The decoder's own window counts what it has dropped.
bool MeasureItsOwnWindow(const std::string& film) {
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
  return true;
}

/// What stands for the graphics card here.
bool PrintCard() {
  try {
    std::printf("drawn by %s:\n", engine::EglContext("libEGL.so.1", true).renderer().c_str());
  } catch (const std::exception& failure) {
    std::printf("drawn in software all the same, as %s:\n", failure.what());
  }
  return true;
}

/// In a process of its own, as there is one desktop a process.
bool Apart(const std::function<bool()>& measure) {
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) {
    const bool good = measure();
    std::fflush(stdout);
    ::_exit(good ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  int status = 0;
  return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace

int main() {
  engine::KeepDriversOffTheDisk();
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
  bool good = true;
  const auto ours = [&](const char* where, Place at, const char* size, engine::Graphics graphics) {
    return Apart([&] { return MeasureOurs(film, place, where, at, size, graphics); });
  };
  const auto everywhere = [&](engine::Graphics graphics) {
    bool enough = ours("in the popup window", Place::kPopup, "1280x800", graphics);
    enough &= ours("on the whole screen", Place::kWholeScreen, "1280x800", graphics);
    enough &= ours("on the whole screen", Place::kWholeScreen, "1920x1080", graphics);
    return enough;
  };
  good &= ours("heard, and seen by nobody", Place::kNowhere, "1280x800", engine::Graphics::kNone);
  std::puts("drawn in software:");
  good &= everywhere(engine::Graphics::kNone);
  Apart(PrintCard);
  everywhere(engine::Graphics::kAny);  // what only stands in for a card may be too slow
  good &= Apart([&] { return MeasureItsOwnWindow(film); });
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
