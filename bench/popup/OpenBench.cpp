// The popup window on a screen with a window manager: how soon it is there when it is shown, and away when it
// is hidden; how long the menu "Album" of 10,000 names takes from being chosen until its list is on the
// screen, beside a plain list of Qt's that is filled with the same names.
#include <QtWidgets/QListWidget>

#include <cstdio>

#include "Brief.hpp"
#include "house/Times.hpp"
#include "support/desktop/PopupScene.hpp"

namespace {

constexpr double kMost = 50;  // milliseconds for the list

const int kNames = bench::Amount(10'000, 1'000);
const int kRounds = bench::Amount(41, 3);

/// Whether it stands on the screen.
bool Seen(const QWidget* window) {
  return window != nullptr && window->windowHandle() != nullptr && window->windowHandle()->isExposed();
}

/// The window over its menus, before a user who does nothing.
class Popup {
 public:
  Popup() { view_.serve(&reports_, &menus_); }
  ~Popup() { view_.serve(nullptr, nullptr); }
  Popup(const Popup&) = delete;
  Popup& operator=(const Popup&) = delete;
  Popup(Popup&&) = delete;
  Popup& operator=(Popup&&) = delete;

  [[nodiscard]] bool failed() const { return failed_; }

  /// Milliseconds until `done`.
  double timed(const std::function<void()>& act, const std::function<bool()>& done) {
    const auto start = bench::Clock::now();
    windows_->enter(act);
    failed_ |= !support::TurnUntil(loop_, done);
    return bench::Milliseconds(bench::Clock::now() - start);
  }
  double show() {
    return timed(
        [&] {
          view_.show();
          view_.controlHeight(ui::PopupWindow::kBarHeight);
          view_.height((ui::PopupWindow::kBarHeight + ui::PopupWindow::kFrameHeight) * 15);
        },
        [&] { return Seen(&view_.pane()) && view_.settled(); });
  }
  double hide() {
    return timed([&] { view_.hide(); }, [&] { return !view_.pane().isVisible() && view_.settled(); });
  }
  void name(const QStringList& albums) {
    std::int16_t element = 0;
    for (const QString& album : albums) {
      menus_.load("Album", ++element);
      menus_.caption("Album", element, album.toStdString());
    }
  }
  double openAlbums() {
    QAction* album = nullptr;
    for (const QMenu* menu : view_.pane().findChildren<QMenu*>())
      for (QAction* action : menu->actions())
        if (action->text() == "Album") album = action;
    const auto list = [] { return QApplication::activePopupWidget(); };
    const double time = timed([&] { album->trigger(); }, [&] { return Seen(list()); });
    const auto* view = list() != nullptr ? list()->findChild<QListView*>() : nullptr;
    failed_ |= view == nullptr || view->model()->rowCount() != kNames + 1;
    windows_->enter([&] {
      if (list() != nullptr) list()->close();
    });
    loop_.pump();
    return time;
  }
  double openPlain(QListWidget& plain, const QStringList& texts) {
    const double time = timed(
        [&] {
          plain.clear();
          plain.addItems(texts);
          plain.show();
        },
        [&] { return Seen(&plain); });
    windows_->enter([&] { plain.hide(); });
    loop_.pump();
    return time;
  }

 private:
  support::Screen screen_;
  support::WindowManager manager_;
  support::Journal journal_;
  support::PopupReports reports_{journal_};
  ui::PopupMenus menus_;
  bus::PollLoop loop_;
  std::unique_ptr<desktop::QtWindows> windows_ = support::OpenDesktop(loop_);
  desktop::ControlsWindow view_{*windows_, [] { return true; }};
  bool failed_ = false;
};

}  // namespace

int main() {
  Popup popup;
  QStringList albums;
  for (int i = 0; i < kNames; ++i) albums.append(QString("The Name of Album %1").arg((i * 7919) % kNames));
  popup.name(albums);
  std::vector<double> shows;
  std::vector<double> hides;
  for (int round = 0; round < kRounds; ++round) {
    shows.push_back(popup.show());
    hides.push_back(popup.hide());
  }
  std::printf("showing the window: median %.1f ms, slowest %.1f ms; hiding it: %.1f ms, %.1f ms\n",
              bench::Percentile(shows, 0.5), bench::Percentile(shows, 1), bench::Percentile(hides, 0.5),
              bench::Percentile(hides, 1));
  popup.show();
  QListWidget plain;
  plain.setWindowFlag(Qt::Popup);
  plain.resize(320, 380);
  std::vector<double> ours;
  std::vector<double> theirs;
  for (int round = 0; round < kRounds; ++round) {
    ours.push_back(popup.openAlbums());
    theirs.push_back(popup.openPlain(plain, albums));
  }
  const double median = bench::Percentile(ours, 0.5);
  std::printf(
      "the menu of %d albums: median %.1f ms, slowest %.1f ms; a plain list filled with them: %.1f ms\n",
      kNames, median, bench::Percentile(ours, 1), bench::Percentile(theirs, 0.5));
  if (popup.failed()) std::printf("a window did not come or go, or not with all names\n");
  return popup.failed() || (!bench::Brief() && median > kMost) ? 1 : 0;
}
