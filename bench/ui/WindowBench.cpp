// The playlist editor's window on a screen: how soon it stands there, how long it takes to be filled, and
// "All Audio" of a large house. Beside it a plain model of Qt's that is filled with the same names.
#include <malloc.h>

#include <QtGui/QStandardItemModel>
#include <algorithm>
#include <cstdio>
#include <optional>

#include "Brief.hpp"
#include "catalogue/BenchLibrary.hpp"
#include "desktop/editor/EditorPane.hpp"
#include "desktop/editor/PlayListWindow.hpp"
#include "house/Times.hpp"
#include "support/BusPeer.hpp"
#include "support/desktop/WindowUser.hpp"
#include "ui/editor/EditorGround.hpp"

namespace {

constexpr double kFirstPaint = 200;  // milliseconds, at most
constexpr double kAllAudio = 2000;

using Names = std::vector<std::string>;

double HeldMegabytes() { return static_cast<double>(mallinfo2().uordblks) / (1 << 20); }

/// Each name once.
Names Different(std::size_t count) {
  Names names = bench::Names(count);
  for (std::size_t i = 0; i < count; ++i) names[i] += " " + std::to_string(i);
  return names;
}

double Timed(const std::function<void()>& work) {
  const auto start = bench::Clock::now();
  work();
  return bench::Milliseconds(bench::Clock::now() - start);
}

/// Remembers when it was drawn first.
class Window : public desktop::PlayListWindow {
 public:
  using PlayListWindow::PlayListWindow;
  void show() override {
    PlayListWindow::show();
    if (!drawn_) drawn_ = bench::Clock::now();
  }
  void forget() { drawn_.reset(); }
  [[nodiscard]] bench::Clock::time_point drawn() const { return drawn_.value(); }

 private:
  std::optional<bench::Clock::time_point> drawn_;
};

/// A plain tree of Qt's with the names in their categories, in order.
void FillPlain(QStandardItemModel& model, const std::vector<Names>& categories) {
  model.clear();
  for (const Names& names : categories) {
    auto* root = new QStandardItem("Category");
    model.appendRow(root);
    for (const std::string& name : names) root->appendRow(new QStandardItem(QString::fromStdString(name)));
    root->sortChildren(0);
  }
}

/// The editor's window over a library in memory of so many tenths of 10,000 albums, 5,000 artists, 500 genres
/// and 1,000 playlists.
struct House {
  House(desktop::QtWindows& windows, std::size_t tenths) : window(windows) {
    for (const auto& [category, count] :
         {std::pair("album", 1'000), std::pair("artist", 500), std::pair("genre", 50)}) {
      categories.push_back(Different(Part(count) * tenths));
      ground.library.attributes[category] = categories.back();
    }
    categories.push_back(Different(Part(100) * tenths));
    for (const std::string& name : categories.back()) ground.library.addPlaylist(name);
    for (const Names& names : categories) total += names.size();
  }
  static std::size_t Part(int whole) {
    return static_cast<std::size_t>(bench::Amount(whole, std::max(1, whole / 50)));
  }

  Window window;
  support::EditorGround ground{&window};
  std::vector<Names> categories;
  std::size_t total = 0;
};

/// The milliseconds until the window was drawn that opened first.
double Open(House& house, desktop::QtWindows& windows, bus::PollLoop& loop) {
  const int rounds = bench::Amount(11, 2);
  QStandardItemModel plain;
  std::vector<double> painted;
  std::vector<double> opened;
  std::vector<double> filled;
  for (int round = 0; round < rounds; ++round) {
    house.window.forget();
    const auto start = bench::Clock::now();
    opened.push_back(Timed([&] {
      house.ground.editor.show();
      house.window.repaint();
    }));
    painted.push_back(bench::Milliseconds(house.window.drawn() - start));
    if (round + 1 < rounds) {
      house.window.close();
      loop.pump();
    }
    filled.push_back(Timed([&] { windows.enter([&] { FillPlain(plain, house.categories); }); }));
  }
  const double usual = bench::Percentile(opened, 0.5);
  const double plainly = bench::Percentile(filled, 0.5);
  std::printf(
      "until the window is drawn: %.0f ms when it opens first, median of %d times %.0f ms, slowest %.0f ms\n",
      painted.front(), rounds, bench::Percentile(painted, 0.5), bench::Percentile(painted, 1));
  std::printf(
      "open with %zu names: median %.1f ms, %.0f ns a name, %.2f times a plain model filled with them "
      "(%.1f ms)\n",
      house.total, usual, usual * 1e6 / static_cast<double>(house.total), usual / plainly, plainly);
  return painted.front();
}

}  // namespace

int main() {
  const support::Screen screen;
  bus::PollLoop loop;
  const auto windows = support::OpenDesktop(loop);
  {
    House tenth(*windows, 1);
    Open(tenth, *windows, loop);
  }
  House house(*windows, 10);
  const double firstPaint = Open(house, *windows, loop);
  support::EditorGround& ground = house.ground;

  const Names titles = Different(House::Part(100'000));
  for (const std::string& title : titles)
    ground.library.addTrack(title, "A", "B", "C")->url = "/music/" + title;
  ui::editor::KeyedTree& tree = ground.editor.models().TreeView1;
  const ui::editor::NodeRef root = tree.find("All Audio");
  const double before = HeldMegabytes();
  const double read = Timed([&] {
    ground.editor.TreeView1_NodeClick(root);
    house.window.repaint();
  });
  QStandardItemModel plain;
  const double held = HeldMegabytes() - before;
  const double plainRead = Timed([&] { windows->enter([&] { FillPlain(plain, {titles}); }); });
  std::printf(
      "\"All Audio\" with %zu titles: %.0f ms and %.0f MiB; a plain model filled with them: %.0f ms\n",
      titles.size(), read, held, plainRead);
  const bool whole = tree.rowCount(root.get()) == titles.size() && tree.size() > house.total + titles.size();
  if (!whole) std::printf("not all names are there\n");
  return !whole || (!bench::Brief() && (firstPaint > kFirstPaint || read > kAllAudio)) ? 1 : 0;
}
