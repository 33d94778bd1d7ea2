#pragma once
#include <gtest/gtest.h>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "desktop/QtWindows.hpp"
#include "support/Process.hpp"
#include "support/desktop/XServer.hpp"

namespace support {

/// The windows of the screen that DISPLAY names; `gone` is called when it goes.
inline std::unique_ptr<desktop::QtWindows> OpenDesktop(
    bus::PollLoop& loop, std::function<void()> gone = [] {}) {
  auto display = desktop::Display::reach(desktop::Display::Kind::kX);
  if (!display) throw std::runtime_error("the screen does not answer");
  return desktop::QtWindows::open({loop, std::move(*display), std::move(gone)});
}

/// What the screen shows. With VANTORIX_SHOTS set to a folder, it is also kept there.
inline QImage ScreenShot(const std::string& name) {
  const QImage image = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
  if (const char* folder = std::getenv("VANTORIX_SHOTS"))
    image.save(QString::fromStdString(std::string(folder) + "/" + name + ".png"));
  return image;
}

/// The one window that is open, if it is on the screen.
inline QWidget* OpenWindow() {
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->isVisible() && window->windowHandle() != nullptr && window->windowHandle()->isExposed())
      return window;
  return nullptr;
}

/// A user of the open window: looks at it again and again and does one thing after the other, with real keys
/// and clicks.
class User {
 public:
  explicit User(bus::PollLoop& loop) : timer_(loop.makeTimer(base::Milliseconds(1), [this] { look(); })) {
    timer_->enabled(true);
  }

  /// Waits until `seen` and then does it.
  User& when(std::function<bool(QWidget&)> seen, std::function<void(QWidget&)> act) {
    plan_.push_back({std::move(seen), std::move(act)});
    return *this;
  }
  User& act(std::function<void(QWidget&)> act) {
    return when([](QWidget&) { return true; }, std::move(act));
  }
  User& click(const QString& caption) {
    return act([this, caption](QWidget& window) {
      QPushButton* button = find(window, caption);
      ASSERT_NE(button, nullptr) << caption.toStdString();
      const QPoint at = button->mapToGlobal(button->rect().center());
      tool({"mousemove", std::to_string(at.x()), std::to_string(at.y()), "click", "1"});
    });
  }
  /// As xdotool names keys: "Escape", "alt+c". They go to the window that has the focus.
  User& key(const std::string& name) {
    return when([](QWidget& window) { return window.isActiveWindow(); },
                [this, name](QWidget&) {
                  tool({"key", name});
                });
  }
  /// True when all has been done.
  [[nodiscard]] bool finished() const { return plan_.empty(); }

  static QPushButton* find(QWidget& window, const QString& caption) {
    for (QPushButton* button : window.findChildren<QPushButton*>())
      if (button->text() == caption) return button;
    return nullptr;
  }

 private:
  struct Step {
    std::function<bool(QWidget&)> seen;
    std::function<void(QWidget&)> act;
  };

  /// Returns when it has ended: a key's release would else fall behind the next one's press.
  static void tool(std::vector<std::string> words) {
    words.insert(words.begin(), "xdotool");
    Process process(words);
    EXPECT_EQ(process.wait(), 0) << process.output();
  }
  void look() {
    QWidget* window = OpenWindow();
    if (window == nullptr || plan_.empty() || !plan_.front().seen(*window)) return;
    const Step step = std::move(plan_.front());
    plan_.pop_front();
    step.act(*window);
  }

  std::deque<Step> plan_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace support
