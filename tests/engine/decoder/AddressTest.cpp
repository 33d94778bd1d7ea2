#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "engine/common/Fixtures.hpp"
#include "engine/common/SmallServer.hpp"
#include "engine/decoder/DecoderAddress.hpp"
#include "support/faults/SilentServer.hpp"

namespace engine::testing {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::optional<std::int32_t> NoDrive(const std::string& /*device*/, int /*track*/) { return {}; }

/// What the decoder is given; empty when it is refused.
std::string Given(const std::string& location) { return AddressFor(location, NoDrive).address; }

TEST(AnItemsAddress, IsAPathOrOfANetworkKindThatHoldsMedia) {
  EXPECT_EQ(Given("/music/a b.flac"), "/music/a b.flac");
  EXPECT_EQ(Given("file:///music/a%20b.flac"), "/music/a b.flac");
  EXPECT_EQ(Given("FILE://localhost/music/a.flac"), "/music/a.flac");
  EXPECT_EQ(Given("http://radio.example/live?a=1"), "http://radio.example/live?a=1");
  EXPECT_EQ(Given("HTTPS://Radio.example/Live"), "https://Radio.example/Live");
  EXPECT_EQ(Given("mms://radio.example/live"), "mms://radio.example/live");
  EXPECT_EQ(Given("mmsh://radio.example/live"), "mmsh://radio.example/live");
  EXPECT_EQ(Given("mmst://radio.example/live"), "mmst://radio.example/live");
  EXPECT_EQ(Given("mmsu://radio.example/live"), "mmst://radio.example/live");
}

TEST(AnItemsAddress, OfAnyOtherKindIsRefused) {
  const char* kinds[] = {"fd",         "fdclose", "edl",    "slice", "appending", "lavf",    "ffmpeg",
                         "av",         "memory",  "hex",    "data",  "concat",    "subfile", "tcp",
                         "udp",        "unix",    "null",   "mf",    "archive",   "bd",      "bluray",
                         "dvd",        "dvdnav",  "dvb",    "tv",    "rar",       "smb",     "ftp",
                         "sftp",       "rtsp",    "rtmp",   "rtp",   "pipe",      "cache",   "crypto",
                         "tee",        "md5",     "ytdl",   "srt",   "gopher",    "ipfs",    "libarchive",
                         "replaygain", "refused", "FD",     "Edl",   "fD",        "MEMORY",  "aV",
                         "-",          "h+t-t.p", "httpfd", "http.", "file+http"};
  for (const std::string kind : kinds) {
    for (const char* rest : {"4", "", "/4", "http://radio.example/live", "/etc/passwd"}) {
      const DecoderAddress address = AddressFor(kind + "://" + rest, NoDrive);
      EXPECT_EQ(address.address, "") << kind << "://" << rest;
      EXPECT_THAT(address.refusal, HasSubstr("no kind of address that is played"));
    }
  }
  for (const char* broken : {"http://", "mms://", "http://a\r\nHost: b/", "https://a\tb", "file://", ""}) {
    EXPECT_EQ(Given(broken), "") << broken;
    EXPECT_NE(AddressFor(broken, NoDrive).refusal, "") << broken;
  }
}

TEST(AnItemsAddress, ThatOnlyLooksLikeAProtocolIsAFile) {
  const std::string here = fs::current_path().string() + "/";
  for (const char* text :
       {"fd%3A//4", " fd://4", "fd:4", "fd :// 4", "fd:/4", "%66d://4", "-", "--ao=pcm", "pipe:0",
        "url:http://a/b", "lavf:fd:4", "ыd://4", "subfile,,start,0,end,9,,:/etc/passwd"}) {
    EXPECT_EQ(Given(text), here + text);
  }
}

TEST(AnItemsAddress, IsNoFileOfTheMachinesOwn) {
  for (const char* path :
       {"/proc/self/fd/4", "//proc/self/fd/4", "/./proc/1/mem", "/music/../proc/self/fd/4", "/dev/stdin",
        "/dev/fd/4", "/sys/power/state", "file:///dev/zero", "file://localhost/%70roc/self/fd/4", "/dev"}) {
    EXPECT_EQ(Given(path), "") << path;
  }
  EXPECT_EQ(Given("/music/proc/a.flac"), "/music/proc/a.flac");
  EXPECT_EQ(Given("/processed/a.flac"), "/processed/a.flac");
}

TEST(AnItemsAddress, IsATrackOfTheDiscInADriveOfThePlayer) {
  const SectorsOf drive = [](const std::string& device, int track) {
    return device == "/dev/sr0" ? std::optional(track == 12 ? 0 : 150) : std::nullopt;
  };
  const DecoderAddress track = AddressFor("cdda:///dev/sr0#12", drive);
  EXPECT_EQ(track.address, "cdda:///dev/sr0");
  EXPECT_EQ(track.options, "cdda-span-a=12,cdda-span-b=12,demuxer=+disc,prefetch-playlist=no");
  EXPECT_EQ(AddressFor("cdda:///dev/sr0#3", drive).options,
            "cdda-span-a=3,cdda-span-b=3,demuxer=+disc,prefetch-playlist=no,length=2.000010");
  for (const char* other :
       {"cdda://", "cdda:///dev/sr0", "cdda:///dev/sr0#", "cdda:///dev/sr1#1", "cdda:///etc/passwd#1",
        "cdda:///dev/sr0#1-1,ao=pcm,ao-pcm-file=/tmp/x", "cdda:///dev/sr0#1 ", "cdda:///dev/sr0#-1",
        "cdda:///dev/sr0#100", "cdda:///dev/sr0/#1"}) {
    const DecoderAddress refused = AddressFor(other, drive);
    EXPECT_EQ(refused.address + refused.options, "") << other;
    EXPECT_NE(refused.refusal, "") << other;
  }
}

/// A socket and a pipe of this process that hold bytes, as its connections do. Nobody but the test may read
/// them.
class OpenConnection {
 public:
  OpenConnection() {
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, socket_.data()), 0);
    EXPECT_EQ(::pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK), 0);
    EXPECT_EQ(::write(socket_[1], bytes_.data(), bytes_.size()), static_cast<ssize_t>(bytes_.size()));
    EXPECT_EQ(::write(pipe_[1], bytes_.data(), bytes_.size()), static_cast<ssize_t>(bytes_.size()));
  }
  ~OpenConnection() {
    for (const int end : {socket_[0], socket_[1], pipe_[0], pipe_[1]}) ::close(end);
  }
  OpenConnection(const OpenConnection&) = delete;
  OpenConnection& operator=(const OpenConnection&) = delete;
  OpenConnection(OpenConnection&&) = delete;
  OpenConnection& operator=(OpenConnection&&) = delete;

  [[nodiscard]] std::string socket() const { return std::to_string(socket_[0]); }
  [[nodiscard]] std::string pipe() const { return std::to_string(pipe_[0]); }
  /// Bytes left in the socket and in the pipe.
  [[nodiscard]] std::size_t left() const {
    std::array<char, 8192> buffer{};
    const ssize_t one = ::recv(socket_[0], buffer.data(), buffer.size(), MSG_PEEK);
    const ssize_t two = ::read(pipe_[0], buffer.data(), buffer.size());
    return static_cast<std::size_t>(std::max<ssize_t>(one, 0) + std::max<ssize_t>(two, 0));
  }
  [[nodiscard]] std::size_t all() const { return 2 * bytes_.size(); }

 private:
  std::string bytes_ = std::string(4096, 'x');
  std::array<int, 2> socket_{-1, -1};
  std::array<int, 2> pipe_{-1, -1};
};

class HostileList : public PlayerTest {
 protected:
  HostileList() { good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1); }

  /// Plays the addresses as a stored playlist, to its end, and answers what was told of those that failed.
  std::vector<std::string> play(const std::vector<std::string>& addresses) {
    std::string text = "#EXTM3U\n";
    for (const std::string& address : addresses) text += address + "\n";
    writeText(folder / "playlists/L.m3u8", text);
    startWith(1);
    auto list = player->playlistCollection().getByName("L")->item(0);
    EXPECT_EQ(list->count(), static_cast<std::int32_t>(addresses.size()));
    player->currentPlaylist(list);
    player->controls().play();
    EXPECT_TRUE(untilState(player::kStopped));
    std::vector<std::string> failures;
    for (std::int32_t i = player->Error().errorCount(); i-- > 0;)
      failures.push_back(player->Error().item(i).errorDescription);
    return failures;
  }
  [[nodiscard]] long heard() const {
    return std::count(told.states.begin(), told.states.end(), player::kPlaying);
  }

  std::string good;
  OpenConnection connection;
};

TEST_F(HostileList, ReachesNoDescriptorOfThePlayerAndItsGoodItemsPlay) {
  const std::string socket = connection.socket();
  const std::string pipe = connection.pipe();
  const std::vector<std::string> hostile{
      "fd://" + socket,
      "FD://" + socket,
      "fdclose://" + socket,
      "edl://fd://" + socket,
      "slice://0-9@fd://" + socket,
      "appending://fd://" + socket,
      "lavf://pipe:" + socket,
      "ffmpeg://fd:" + socket,
      "lavf://subfile,,start,0,end,9,,:pipe:" + socket,
      "lavf://concat:pipe:" + socket,
      "av://lavfi:sine",
      "memory://#EXTM3U",
      "hex://00",
      "null://",
      "mf://*.png",
      "archive://" + good,
      "tcp://127.0.0.1:9",
      "unix:///tmp/x",
      "/proc/self/fd/" + pipe,
      "file:///proc/self/fd/" + pipe,
      "/dev/fd/" + pipe,
  };
  std::vector<std::string> lines{good};
  for (const std::string& line : hostile) lines.insert(lines.end(), {line, good});
  const auto failures = play(lines);
  EXPECT_EQ(failures.size(), hostile.size());
  EXPECT_THAT(failures, Each(::testing::AnyOf(HasSubstr("no kind of address that is played"),
                                              HasSubstr("a file of the machine's own"))));
  EXPECT_EQ(told.errors, static_cast<int>(hostile.size()));
  EXPECT_EQ(heard(), static_cast<long>(hostile.size()) + 1);
  EXPECT_EQ(connection.left(), connection.all());
}

TEST_F(HostileList, MayHaveNothingElseAndStops) {
  const auto failures = play({"fd://" + connection.socket(), "memory://x"});
  ASSERT_EQ(failures.size(), 2U);
  EXPECT_THAT(failures[0], HasSubstr("fd://" + connection.socket()));
  EXPECT_EQ(heard(), 0);
  EXPECT_EQ(connection.left(), connection.all());
}

TEST_F(HostileList, WithFilesThatAreListsThemselvesOpensNothingElse) {
  const std::string pipe = "/proc/self/fd/" + connection.pipe();
  writeText(folder / "list.mp3", "#EXTM3U\n" + pipe + "\n");
  writeText(folder / "pls.mp3", "[playlist]\nFile1=fd://" + connection.socket() + "\nNumberOfEntries=1\n");
  writeText(folder / "edl.mp3", "# mpv EDL v0\n" + pipe + "\n");
  writeText(folder / "edl2.mp3", "# mpv EDL v0\n" + good + "\n");
  writeText(folder / "concat.mp3", "ffconcat version 1.0\nfile 'good.flac'\n");
  writeText(folder / "hls.m3u8",
            "#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:5,\n" + good + "\n#EXT-X-ENDLIST\n");
  std::vector<std::string> lines;
  for (const char* file : {"list.mp3", "pls.mp3", "edl.mp3", "edl2.mp3", "concat.mp3", "hls.m3u8"})
    lines.push_back(folder / file);
  fs::copy_file(good, folder / "good.flac");
  EXPECT_EQ(play(lines).size(), lines.size());
  EXPECT_EQ(heard(), 0);
  EXPECT_EQ(connection.left(), connection.all());
}

TEST_F(HostileList, OfAStationLeadsToOtherStationsOnly) {
  const std::string pipe = "/proc/self/fd/" + connection.pipe();
  SmallServer station;
  station.sends("/fd.m3u", "#EXTM3U\nfd://" + connection.socket() + "\n", "audio/x-mpegurl");
  station.sends("/edl.m3u", "#EXTM3U\nedl://fd://" + connection.socket() + "\n", "audio/x-mpegurl");
  station.sends("/lavf.m3u", "#EXTM3U\nlavf://pipe:" + connection.socket() + "\n", "audio/x-mpegurl");
  station.sends("/pipe.m3u", "#EXTM3U\n" + pipe + "\n", "audio/x-mpegurl");
  station.sends("/file.m3u", "#EXTM3U\n" + good + "\n", "audio/x-mpegurl");
  station.sends("/file.pls", "[playlist]\nFile1=file://" + good + "\nNumberOfEntries=1\n", "audio/x-scpls");
  station.sends("/edl.mp3", "# mpv EDL v0\n" + good + "\n", "audio/mpeg");
  station.sends("/hls.m3u8",
                "#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:5,\nfile://" + good + "\n#EXT-X-ENDLIST\n",
                "application/vnd.apple.mpegurl");
  for (const std::string& place : std::vector<std::string>{"fd://" + connection.socket(), "file://" + good,
                                                           "pipe:" + connection.socket()})
    station.leadsTo("/to/" + place.substr(0, place.find(':')), place);
  std::vector<std::string> lines;
  for (const char* path : {"fd.m3u", "edl.m3u", "lavf.m3u", "pipe.m3u", "file.m3u", "file.pls", "edl.mp3",
                           "hls.m3u8", "to/fd", "to/file", "to/pipe"})
    lines.push_back(station / path);
  EXPECT_EQ(play(lines).size(), lines.size());
  EXPECT_EQ(connection.left(), connection.all());
}

TEST_F(HostileList, OfAStationConnectsByItsOwnKindsOfAddressOnly) {
  const support::SilentServer neighbour;
  const std::string port = std::to_string(neighbour.port());
  SmallServer station;
  std::vector<std::string> lines;
  for (const std::string kind : {"rtsp", "rtsps", "RTSP", "rtmp", "ftp", "tcp", "tls", "srt", "gopher", "smb",
                                 "lavf://rtsp", "ffmpeg://tcp", "httpproxy", "icecast", "sap", "rtp"}) {
    const std::string path = std::to_string(lines.size()) + ".m3u";
    const std::string away = kind + "://127.0.0.1:" + port + "/x";
    station.sends("/" + path, "#EXTM3U\n" + away + "\n", "audio/x-mpegurl");
    lines.push_back(station / path);
  }
  station.sends("/session",
                "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio " + port +
                    " RTP/AVP/TCP 0\na=rtpmap:0 PCMU/8000\n",
                "application/sdp");
  station.sends("/text", "RTSPtext\nrtsp://127.0.0.1:" + port + "/x\n", "video/quicktime");
  lines.insert(lines.end(), {station / "session", station / "text"});
  EXPECT_EQ(play(lines).size(), lines.size());
  EXPECT_FALSE(neighbour.wasVisited());
}

TEST_F(HostileList, LeavesGoodStationsInPeace) {
  SmallServer station;
  station.sends("/good.flac", Content(good), "audio/flac");
  station.sends("/list.m3u", "#EXTM3U\n" + (station / "good.flac") + "\n", "audio/x-mpegurl");
  station.sends("/near.pls", "[playlist]\nFile1=good.flac\nNumberOfEntries=1\n", "audio/x-scpls");
  station.leadsTo("/moved", "/good.flac");
  std::string upper = station / "good.flac";
  upper.replace(0, 4, "HTTP");
  const auto failures = play(
      {station / "good.flac", upper, station / "list.m3u", good, station / "near.pls", station / "moved"});
  EXPECT_THAT(failures, IsEmpty());
  EXPECT_EQ(heard(), 6);
}

TEST_F(HostileList, LeavesAProgramThatIsStartedMeanwhileNoDescriptor) {
  std::set<std::string> before;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) before.insert(entry.path().filename());
  config.untimed = false;
  good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1, 60);
  writeText(folder / "playlists/L.m3u8", good + "\n");
  startWith(1);
  player->currentPlaylist(player->playlistCollection().getByName("L")->item(0));
  player->controls().play();
  ASSERT_TRUE(untilState(player::kPlaying));
  std::size_t seen = 0;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    const std::string name = entry.path().filename();
    const int flags = ::fcntl(std::stoi(name), F_GETFD);
    if (flags < 0 || before.contains(name)) continue;
    ++seen;
    std::error_code gone;
    EXPECT_TRUE((static_cast<unsigned>(flags) & FD_CLOEXEC) != 0)
        << name << " " << fs::read_symlink(entry, gone);
  }
  EXPECT_GT(seen, 3U);
}

}  // namespace
}  // namespace engine::testing
