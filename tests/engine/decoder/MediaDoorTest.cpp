#include "engine/decoder/MediaDoor.hpp"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <fstream>

#include "base/Failure.hpp"
#include "engine/common/Fixtures.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A socket in the file system, with nobody behind it.
void MakeSocket(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path.copy(address.sun_path, sizeof(address.sun_path) - 1), sizeof(address.sun_path) - 1);
  const files::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
}

class TheWayToTheDecoder : public PlayerTest {
 protected:
  static std::string refusal(const std::string& path) {
    try {
      OpenMedia(path);
    } catch (const base::Failure& failure) {
      return failure.description();
    }
    return {};
  }
};

TEST_F(TheWayToTheDecoder, IsOpenToFilesAndToLinksThatLeadToThem) {
  writeText(folder / "music/a.mp3", "music");
  fs::create_symlink(folder / "music", folder / "link");
  fs::create_symlink("link/a.mp3", folder / "b.mp3");
  for (const char* name : {"music/a.mp3", "link/a.mp3", "b.mp3"}) {
    std::array<char, 6> bytes{};
    const files::Descriptor file = OpenMedia(folder / name);
    EXPECT_EQ(::read(file.get(), bytes.data(), 5), 5) << name;
    EXPECT_STREQ(bytes.data(), "music");
  }
}

TEST_F(TheWayToTheDecoder, IsClosedToWhatIsNoFile) {
  ASSERT_EQ(::mkfifo((folder / "pipe.mp3").c_str(), 0600), 0);
  MakeSocket(folder / "socket.mp3");
  fs::create_directory(folder / "folder.mp3");
  EXPECT_EQ(refusal(folder / "pipe.mp3"), "it is a pipe and no file");
  EXPECT_EQ(refusal(folder / "socket.mp3"), "it is a socket and no file");
  EXPECT_EQ(refusal(folder / "folder.mp3"), "it is a folder");
  EXPECT_EQ(refusal(folder / "none.mp3"), "No such file or directory");
}

TEST_F(TheWayToTheDecoder, IsClosedToTheMachinesOwnFilesBehindWhateverLinks) {
  fs::create_symlink("/dev", folder / "devices");
  fs::create_symlink("/proc", folder / "processes");
  fs::create_symlink(folder / "devices/zero", folder / "zero.mp3");
  fs::create_symlink("/dev/null", folder / "null.mp3");
  for (const char* name : {"devices/zero", "processes/self/status", "processes/self/environ", "zero.mp3",
                           "null.mp3", "processes/self/../version", "devices"})
    EXPECT_THAT(refusal(folder / name), HasSubstr("a file of the machine's own")) << name;
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe(ends), 0);
  const files::Descriptor in(ends[0]);
  const files::Descriptor out(ends[1]);
  EXPECT_EQ(refusal(folder / ("processes/self/fd/" + std::to_string(ends[0]))), "it is a pipe and no file");
}

TEST_F(TheWayToTheDecoder, IsNotWaitedForWithAPipeAmongTheItemsOfAList) {
  const std::string good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
  ASSERT_EQ(::mkfifo((folder / "pipe.mp3").c_str(), 0600), 0);
  fs::create_symlink("/dev", folder / "devices");
  writeText(folder / "playlists/L.m3u8", (folder / "pipe.mp3") + "\n" + good + "\n" +
                                             (folder / "devices/zero") + "\n" + (folder / "music") + "\n" +
                                             good + "\n");
  startWith(1);
  player->currentPlaylist(player->playlistCollection().getByName("L")->item(0));
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  std::vector<std::string> failures;
  for (std::int32_t i = player->Error().errorCount(); i-- > 0;)
    failures.push_back(player->Error().item(i).errorDescription);
  EXPECT_THAT(failures, ElementsAre(HasSubstr("pipe.mp3: it is a pipe and no file"),
                                    HasSubstr("devices/zero: a file of the machine's own is not played"),
                                    HasSubstr("music: it is a folder")));
  EXPECT_EQ(std::count(told.states.begin(), told.states.end(), player::kPlaying), 2);
}

}  // namespace
}  // namespace engine::testing
