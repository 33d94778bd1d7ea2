// The plug is pulled in the midst of what the playlist editor stores.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "WholeEditor.hpp"

using support::Control;
using support::WholeEditor;
using ::testing::AnyOf;
using ::testing::ElementsAre;

namespace {

enum class Moment { kBeforeItIsWritten, kHalfWritten, kBeforeItIsInItsPlace, kStored };
enum class Gesture { kDragInTheList, kMoveUp, kDropFromAnAlbum, kMoveFromAnotherPlaylist };

struct Kill {
  Gesture gesture;
  Moment moment;
  int file;  ///< the how manieth that is stored then
};

void PullThePlug() { ::kill(::getpid(), SIGKILL); }

/// An editor, in a process of its own, whose plug is pulled.
class Killed : public WholeEditor {
 public:
  Killed(const std::string& root, const Kill& kill) : WholeEditor(root), kill_(kill) {}
  void TestBody() override {
    open();
    onWrite = [this](int file, const void* bytes, std::size_t size) { return write(file, bytes, size); };
    onStored = [this] {
      if (kill_.moment == Moment::kStored && files_ == kill_.file) PullThePlug();
    };
    use();
    until([] { return false; });
  }

 private:
  void use() {
    switch (kill_.gesture) {
      case Gesture::kDragInTheList: return drag(item("Sea"), item("Sky"));
      case Gesture::kMoveUp: clickItem("Sea"); return clickAt(middleOf(Control::kMoveUp_Button));
      case Gesture::kDropFromAnAlbum: return drag(ofBlue("Sun"), item("Sky"));
      case Gesture::kMoveFromAnotherPlaylist: clickNode("Winter"); return drag(node("Sun"), item("Sky"));
    }
  }
  ssize_t write(int file, const void* bytes, std::size_t size) {
    const bool now = ++files_ == kill_.file;
    if (now && kill_.moment == Moment::kBeforeItIsWritten) PullThePlug();
    if (now && kill_.moment == Moment::kHalfWritten) size /= 2;
    const ssize_t written = files::WriteBytes(file, bytes, size);
    if (now && kill_.moment != Moment::kStored) PullThePlug();
    return written;
  }

  Kill kill_;
  int files_ = 0;
};

/// The titles in a playlist's file.
std::vector<std::string> TitlesIn(const std::string& path) {
  std::ifstream file(path);
  std::vector<std::string> titles;
  for (std::string line; std::getline(file, line);)
    if (line.starts_with("http://house/")) titles.push_back(line.substr(13));
  return titles;
}

class KilledEditor : public ::testing::TestWithParam<Kill> {};

}  // namespace

TEST_P(KilledEditor, LeavesEachPlaylistAsItWasOrAsItWasToBe) {
  const support::TempFolder folder;
  const Kill kill = GetParam();
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    Killed(folder.path().string(), kill).TestBody();
    ::_exit(3);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status)) << "it was not killed there";
  EXPECT_EQ(WTERMSIG(status), SIGKILL);

  const auto autumn = TitlesIn(folder.path().string() + "/playlists/Autumn.m3u8");
  const auto winter = TitlesIn(folder.path().string() + "/playlists/Winter.m3u8");
  const bool stored = kill.moment == Moment::kStored;
  if (kill.gesture == Gesture::kDragInTheList || kill.gesture == Gesture::kMoveUp) {
    EXPECT_THAT(autumn, stored ? ElementsAre("Sea", "Sky") : ElementsAre("Sky", "Sea"));
  } else {
    // It comes to where it goes before it leaves where it was.
    const bool there = stored || kill.file == 2;
    EXPECT_EQ(autumn, there ? (std::vector<std::string>{"Sky", "Sea", "Sun"})
                            : (std::vector<std::string>{"Sky", "Sea"}));
  }
  if (kill.file == 2 && stored)
    EXPECT_TRUE(winter.empty());
  else
    EXPECT_THAT(winter, ElementsAre("Sun"));
}

namespace {

std::vector<Kill> Kills() {
  std::vector<Kill> kills;
  for (const Moment moment :
       {Moment::kBeforeItIsWritten, Moment::kHalfWritten, Moment::kBeforeItIsInItsPlace, Moment::kStored}) {
    for (const Gesture gesture : {Gesture::kDragInTheList, Gesture::kMoveUp, Gesture::kDropFromAnAlbum,
                                  Gesture::kMoveFromAnotherPlaylist})
      kills.push_back({gesture, moment, 1});
    kills.push_back({Gesture::kMoveFromAnotherPlaylist, moment, 2});
  }
  return kills;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(AtEachMoment, KilledEditor, ::testing::ValuesIn(Kills()));
