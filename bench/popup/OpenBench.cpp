// How long the list of 10,000 names takes from being asked for until it is on the screen, beside a plain list
// of Qt's that is filled with the same names.
#include <QtWidgets/QListWidget>

#include <cstdio>

#include "Brief.hpp"
#include "desktop/popup/NameList.hpp"
#include "house/Times.hpp"
#include "support/BusPeer.hpp"
#include "support/desktop/WindowUser.hpp"

namespace {

constexpr double kMost = 50;  // milliseconds

/// Whether it stands on the screen.
bool Seen(const QWidget& window) {
  return window.windowHandle() != nullptr && window.windowHandle()->isExposed();
}

}  // namespace

int main() {
  const int names = bench::Amount(10'000, 1'000);
  const int rounds = bench::Amount(41, 3);
  const support::Screen screen;
  bus::PollLoop loop;
  const auto windows = support::OpenDesktop(loop);
  std::vector<desktop::NameEntry> entries;
  QStringList texts;
  for (int i = 0; i < names; ++i) {
    texts.append(QString("The Name of Album %1").arg((i * 7919) % names));
    entries.push_back({static_cast<std::int16_t>(i), texts.back()});
  }
  desktop::NameList list([](const desktop::NameEntry&) {});
  QListWidget plain;
  plain.resize(320, 380);
  bool failed = false;
  const auto timed = [&](QWidget& window, const std::function<void()>& open) {
    const auto start = bench::Clock::now();
    windows->enter(open);
    failed |= !support::TurnUntil(loop, [&] { return Seen(window); });
    const double time = bench::Milliseconds(bench::Clock::now() - start);
    windows->enter([&] { window.hide(); });
    loop.pump();
    return time;
  };
  std::vector<double> ours;
  std::vector<double> theirs;
  for (int round = 0; round < rounds; ++round) {
    ours.push_back(timed(list, [&] { list.open(QPoint(50, 50), {}, "Album", entries); }));
    theirs.push_back(timed(plain, [&] {
      plain.clear();
      plain.addItems(texts);
      plain.show();
    }));
  }
  const double median = bench::Percentile(ours, 0.5);
  std::printf(
      "opening a list of %d names: median %.1f ms, slowest %.1f ms; a plain list filled with them: %.1f ms\n",
      names, median, bench::Percentile(ours, 1), bench::Percentile(theirs, 0.5));
  if (failed) std::printf("a window did not come\n");
  return failed || (!bench::Brief() && median > kMost) ? 1 : 0;
}
