// The moving picture in the popup window and over the whole screen, as a user sees it.
#include <QtGui/QScreen>

#include "desktop/popup/PictureView.hpp"
#include "desktop/popup/PictureWidget.hpp"
#include "support/desktop/OwnSession.hpp"
#include "support/desktop/PopupScene.hpp"
#include "support/desktop/ScreenSaver.hpp"

namespace {

/// A player that shows one colour.
class OneColour : public base::MovingPicture {
 public:
  void tell(std::function<void()> changed) override { changed_ = std::move(changed); }
  void seen(base::PictureSize size) override { sizes.push_back(size); }
  [[nodiscard]] base::FrameRef frame() const override { return frame_; }
  [[nodiscard]] bool full() const override { return full_; }

  /// A frame of the size that is seen.
  void show(std::uint8_t blue, std::uint8_t green, std::uint8_t red) {
    auto made = std::make_shared<base::PictureFrame>(sizes.back());
    for (base::PictureFrame::Block& block : made->blocks) {
      for (std::size_t i = 0; i < block.bytes.size(); i += 4) {
        block.bytes[i] = blue;
        block.bytes[i + 1] = green;
        block.bytes[i + 2] = red;
      }
    }
    frame_ = made;
    changed_();
  }
  void none() {
    frame_.reset();
    changed_();
  }
  void full(bool value) {
    full_ = value;
    changed_();
  }
  [[nodiscard]] bool listensTo() const { return static_cast<bool>(changed_); }

  std::vector<base::PictureSize> sizes;

 private:
  std::function<void()> changed_;
  base::FrameRef frame_;
  bool full_ = false;
};

class MovingPicture : public support::PopupScene {
 protected:
  explicit MovingPicture(bool managed = false) : PopupScene(managed) {
    picture.emplace(*windows, pane(), player);
  }

  [[nodiscard]] static QColor colourAt(QPoint place) {
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, place.x(), place.y(), 1, 1)
        .toImage()
        .pixelColor(0, 0);
  }
  bool turns(QColor colour, QPoint place) {
    return until([&] { return colourAt(place) == colour; });
  }
  bool seenAt(base::PictureSize size) {
    return until([&] { return !player.sizes.empty() && player.sizes.back() == size; });
  }

  OneColour player;
  std::optional<desktop::PictureView> picture;
};

class ManagedMovingPicture : public MovingPicture {
 protected:
  ManagedMovingPicture() : MovingPicture(true) {}
};

class WatchedFilm : protected support::OwnSession, public MovingPicture {
 protected:
  static constexpr const char* kAsked = "Inhibit Vantorix Media Player: A film fills the screen";
  void SetUp() override {
    show();
    layOut(212, false);
    ASSERT_TRUE(seenAt({251, 150}));
  }
  void startSaver() { saver.emplace(bus.address()); }
  bool calls(const std::vector<std::string>& wanted) {
    return until([&] { return saver->calls() == wanted; });
  }

  std::optional<support::ScreenSaver> saver;
};

TEST_F(MovingPicture, IsSeenOnlyWhileTheWindowShowsIt) {
  show();
  EXPECT_TRUE(player.sizes.empty() || player.sizes.back().empty());
  layOut(212, false);
  EXPECT_TRUE(seenAt({251, 150}));
  layOut(62, false);
  EXPECT_TRUE(seenAt({}));
  layOut(212, false);
  EXPECT_TRUE(seenAt({251, 150}));
  view->hide();
  EXPECT_TRUE(seenAt({}));
}

TEST_F(MovingPicture, IsDrawnInItsPlaceAndBlackWithoutOne) {
  show();
  layOut(212, true);
  ASSERT_TRUE(seenAt({251, 150}));
  const QPoint middle = middleOf(pane().picture());
  EXPECT_TRUE(turns(Qt::black, middle));
  player.show(200, 100, 50);
  EXPECT_TRUE(turns(QColor(50, 100, 200), middle));
  player.none();
  EXPECT_TRUE(turns(Qt::black, middle));
}

TEST_F(MovingPicture, ADoubleClickOnItIsThePlayers) {
  QApplication::setDoubleClickInterval(10 * 60 * 1000);  // a slow machine lets both clicks be far apart
  show();
  layOut(212, false);
  ASSERT_TRUE(seenAt({251, 150}));
  clickAt(middleOf(pane().picture()), 2);
  EXPECT_TRUE(reported("double click on the player"));
}

TEST_F(MovingPicture, FillsTheScreenAndEscapeAsksToLeave) {
  QApplication::setDoubleClickInterval(10 * 60 * 1000);  // a slow machine lets both clicks be far apart
  showActive();
  layOut(212, false);
  ASSERT_TRUE(seenAt({251, 150}));
  player.full(true);
  ASSERT_TRUE(seenAt({1280, 800}));
  player.show(10, 200, 30);
  EXPECT_TRUE(turns(QColor(30, 200, 10), {1200, 700}));
  tool({"key", "Escape"});
  EXPECT_TRUE(reported("menu ShowFullScreenVideo"));
  player.full(false);
  EXPECT_TRUE(seenAt({251, 150}));
  player.full(true);
  EXPECT_TRUE(seenAt({1280, 800})) << "once more";
  clickAt({600, 400}, 2);
  EXPECT_TRUE(until([&] { return journal.count("menu ShowFullScreenVideo") == 2; }));
}

TEST_F(ManagedMovingPicture, FillsTheScreenAlsoWhereTheWindowIsOnTop) {
  showActive();
  layOut(212, false);
  view->setWindowPos(-1, 2970, 83);
  ASSERT_TRUE(until([&] { return !player.sizes.empty() && !player.sizes.back().empty(); }));
  const QPoint middle = middleOf(pane());
  player.full(true);
  ASSERT_TRUE(seenAt({1280, 800}));
  player.show(10, 200, 30);
  for (const QPoint place : {middle, QPoint(2, 2), QPoint(1277, 797)})
    EXPECT_TRUE(turns(QColor(30, 200, 10), place)) << place.x() << " " << place.y();
  player.full(false);
  EXPECT_TRUE(until([&] { return colourAt({1277, 797}) != QColor(30, 200, 10); }));
}

TEST_F(WatchedFilm, KeepsTheScreenAwakeWhileItFillsIt) {
  startSaver();
  player.full(true);
  ASSERT_TRUE(calls({kAsked}));
  player.show(1, 2, 3);
  player.full(false);
  EXPECT_TRUE(calls({kAsked, "UnInhibit 77"}));
  player.full(true);
  player.full(false);
  EXPECT_TRUE(calls({kAsked, "UnInhibit 77", kAsked, "UnInhibit 77"})) << "once more";
}

TEST_F(WatchedFilm, LetsTheScreenSleepAgainThoughTheAnswerCameBehindItsEnd) {
  startSaver();
  saver->holdBack(true);
  player.full(true);
  ASSERT_TRUE(calls({kAsked}));
  player.full(false);
  loop.pump();
  EXPECT_EQ(saver->calls().size(), 1U);
  saver->holdBack(false);
  EXPECT_TRUE(calls({kAsked, "UnInhibit 77"}));
}

TEST_F(WatchedFilm, IsSeenWhereNobodyKnowsOfThatAndAskedForAnewLater) {
  player.full(true);
  ASSERT_TRUE(seenAt({1280, 800}));
  player.full(false);
  ASSERT_TRUE(seenAt({251, 150}));
  startSaver();
  EXPECT_TRUE(until([&] {
    player.full(!player.full());
    return !saver->calls().empty();
  }));
  player.full(false);
  EXPECT_TRUE(until([&] { return saver->calls().back() == "UnInhibit 77"; }));
}

TEST_F(WatchedFilm, OutlivesTheSessionsBus) {
  startSaver();
  player.full(true);
  ASSERT_TRUE(calls({kAsked}));
  bus.kill();
  player.full(false);
  ASSERT_TRUE(seenAt({251, 150}));
  player.full(true);
  EXPECT_TRUE(seenAt({1280, 800}));
}

TEST_F(MovingPicture, IsSeenByNobodyWhenTheDesktopHasGone) {
  show();
  layOut(212, false);
  ASSERT_TRUE(seenAt({251, 150}));
  screen.end();
  ASSERT_TRUE(until([this] { return windows->gone(); }));
  player.show(1, 2, 3);
  EXPECT_TRUE(player.sizes.back().empty());
}

TEST_F(MovingPicture, NobodyIsToldBehindItsEnd) {
  show();
  layOut(212, false);
  ASSERT_TRUE(seenAt({251, 150}));
  picture.reset();
  EXPECT_FALSE(player.listensTo());
  EXPECT_TRUE(player.sizes.back().empty());
}

}  // namespace
