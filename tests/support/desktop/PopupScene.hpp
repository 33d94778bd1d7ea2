#pragma once
#include <gmock/gmock.h>

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <optional>

#include "desktop/popup/ControlsPane.hpp"
#include "desktop/popup/ControlsWindow.hpp"
#include "support/BusPeer.hpp"
#include "support/Journal.hpp"
#include "support/desktop/Contrast.hpp"
#include "support/desktop/WindowManager.hpp"
#include "support/desktop/WindowUser.hpp"
#include "ui/popup/PopupMenus.hpp"

namespace support {

/// Records what the popup window reports.
class PopupReports : public ui::PopupWindowEvents {
 public:
  explicit PopupReports(Journal& journal) : journal_(journal) {}
  std::function<void()> onListClick = [] {};
  void Form_Resize() override { journal_.add("resize"); }
  bool Form_QueryUnload(std::int16_t mode) override {
    journal_.add("query unload " + std::to_string(mode));
    return true;
  }
  void Form_Unload() override { journal_.add("unload"); }
  void broughtBack() override { journal_.add("brought back"); }
  void Image1_DblClick() override { journal_.add("double click on Image1"); }
  void wmp9_DoubleClick() override { journal_.add("double click on the player"); }
  void menuClick(const std::string& item) override { journal_.add("menu " + item); }
  void listClick(const std::string& category, std::int16_t index) override {
    onListClick();
    journal_.add(category + " " + std::to_string(index));
  }
  void mediaClick(std::int16_t index) override { journal_.add("media " + std::to_string(index)); }
  void playOrPause() override { journal_.add("play or pause"); }
  void stop() override { journal_.add("stop"); }
  void previous() override { journal_.add("previous"); }
  void next() override { journal_.add("next"); }
  void seek(double seconds) override { journal_.add("seek " + std::to_string(int(seconds))); }
  void volume(std::int16_t percent) override { journal_.add("volume " + std::to_string(percent)); }
  void mute() override { journal_.add("mute"); }
  void lookedAt() override {}

 private:
  Journal& journal_;
};

/// The popup window on a screen, over the real menus.
class PopupScene : public ::testing::Test {
 protected:
  /// `managed`: on a desktop whose windows have frames. Otherwise nobody manages them.
  explicit PopupScene(
      bool managed = false, const std::vector<std::string>& screenOptions = {},
      const std::function<void()>& prepare = [] {})
      : screen(screenOptions) {
    if (managed) manager.emplace();
    prepare();
    windows = OpenDesktop(loop);
    view = std::make_unique<desktop::ControlsWindow>(*windows, [this] { return iconShown; });
    view->serve(&reports, &menus);
  }
  ~PopupScene() override { view->serve(nullptr, nullptr); }

  void layOut(int control, bool cover) {
    const int top = cover ? 200 : 0;
    view->controlHeight(control);
    view->imageVisible(cover);
    view->controlTop(top);
    view->height(static_cast<float>(control + top + 52) * 15);
  }
  /// Brings it before the user's eyes.
  void show() {
    view->show();
    layOut(62, false);
    ASSERT_TRUE(until([&] {
      const QWindow* window = pane().windowHandle();
      return window != nullptr && window->isExposed() && view->settled();
    }));
    journal.clear();
  }
  bool until(const std::function<bool()>& done) { return TurnUntil(loop, done); }
  bool reported(const std::string& what) {
    return until([&] { return journal.has(what); });
  }
  /// The same, and it has the keyboard.
  void showActive() {
    show();
    ASSERT_TRUE(until([&] { return pane().isActiveWindow(); }));
  }
  static void tool(std::vector<std::string> words) {
    words.insert(words.begin(), "xdotool");
    Process process(words);
    ASSERT_EQ(process.wait(), 0) << process.output();
  }
  static void clickAt(QPoint at, int times = 1) {
    std::vector<std::string> words = {"mousemove",
                                      std::to_string(at.x()),
                                      std::to_string(at.y()),
                                      "click",
                                      "--repeat",
                                      std::to_string(times),
                                      "1"};
    tool(words);
  }
  static QPoint middleOf(const QWidget& widget) { return widget.mapToGlobal(widget.rect().center()); }
  template <class Widget>
  Widget* named(const QString& name) {
    for (Widget* each : pane().findChildren<Widget*>())
      if (each->accessibleName() == name) return each;
    return nullptr;
  }
  /// The list of names that is open.
  static QWidget* openList() {
    QWidget* popup = QApplication::activePopupWidget();
    return popup != nullptr && popup->findChild<QListView*>() != nullptr ? popup : nullptr;
  }
  /// A menu of the bar, with its "&".
  QMenu* menu(const QString& caption) {
    for (QAction* action : pane().findChild<QMenuBar*>()->actions())
      if (action->text() == caption) return action->menu();
    return nullptr;
  }
  static QAction* item(QMenu& menu, const QString& caption) {
    for (QAction* action : menu.actions())
      if (action->text() == caption) return action;
    return nullptr;
  }
  void openAlbums() {
    item(*menu("&Play..."), "Album")->trigger();
    ASSERT_TRUE(until([] { return seen(openList()); }));
  }
  static bool seen(const QWidget* popup) {
    return popup != nullptr && popup->windowHandle() != nullptr && popup->windowHandle()->isExposed();
  }
  static QListView& list() { return *openList()->findChild<QListView*>(); }
  /// Whether a part of a widget, or all of it, comes to be seen clearly; the shot is kept under the name.
  bool readable(const std::string& shot, const QWidget& widget, QRect part = {}) {
    if (part.isNull()) part = widget.rect();
    return until([&] { return Drawn(ScreenShot(shot), widget, part).readable(); });
  }
  /// The same of that row of the list that is open.
  bool rowReadable(const std::string& shot, int row) {
    return readable(shot, *list().viewport(), list().visualRect(list().model()->index(row, 0)));
  }
  desktop::ControlsPane& pane() { return view->pane(); }

  Screen screen;
  std::optional<WindowManager> manager;
  Journal journal;
  PopupReports reports{journal};
  ui::PopupMenus menus;
  bool iconShown = true;
  bus::PollLoop loop;
  std::unique_ptr<desktop::QtWindows> windows;
  std::unique_ptr<desktop::ControlsWindow> view;
};

}  // namespace support
