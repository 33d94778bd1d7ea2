#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bus/Connection.hpp"
#include "bus/Patience.hpp"
#include "bus/PollLoop.hpp"
#include "demo/Sound.hpp"
#include "demo/Tags.hpp"
#include "support/BusDaemon.hpp"
#include "support/JsonText.hpp"
#include "support/Process.hpp"
#include "support/SmallMusic.hpp"

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

/// The one command that brings a house up, in folders of the test's own.
class RunScript : public ::testing::Test {
 protected:
  std::unique_ptr<support::Process> run(const std::string& musicFolder) {
    return runWith({musicFolder, "--port", "0"});
  }
  std::unique_ptr<support::Process> runWith(std::vector<std::string> words) {
    const std::string home = folder.path().string();
    words.insert(words.begin(), RUN_SCRIPT);
    return std::make_unique<support::Process>(
        std::move(words),
        std::vector<std::string>{"XDG_DATA_HOME=" + home + "/data", "XDG_RUNTIME_DIR=" + home,
                                 "XDG_CONFIG_HOME=" + home + "/config", "VANTORIX_SKIP_BUILD=1",
                                 "VANTORIX_BIN=" BIN_FOLDER, "VANTORIX_SERVICES=" SERVICES_FOLDER,
                                 "VANTORIX_AUDIO=null", "VANTORIX_MUSIC=", "DISPLAY=" + display,
                                 "WAYLAND_DISPLAY=", "DBUS_SESSION_BUS_ADDRESS=" + sessionBus});
  }
  static int portOf(support::Process& house) {
    return std::stoi(addressOf(house).substr(std::string("http://127.0.0.1:").size()));
  }
  /// What it has printed, the key with it.
  static std::string addressOf(support::Process& house) {
    const std::string before = "Vantorix is at ";
    house.outputWith(before);
    const std::string said = house.outputWith("\n");
    const auto begin = said.find(before) + before.size();
    return said.substr(begin, said.find('\n', begin) - begin);
  }
  /// The server's process, as the house's bus knows it.
  [[nodiscard]] pid_t serverOf() const {
    bus::PollLoop loop;
    bus::Connection connection(loop, "unix:path=" + (folder.path() / "vantorix" / "bus").string());
    const auto process = connection.processOf("org.vantorix.Host");
    if (process == 0) throw std::runtime_error("no server on the bus");
    return static_cast<pid_t>(process);
  }
  /// Opens its address as the user does, and looks there until what it answers is as it should be.
  template <class Condition>
  static bool answers(support::Process& house, const std::string& path, Condition&& condition) {
    const std::string address = addressOf(house);
    httplib::Client client("127.0.0.1", portOf(house));
    client.set_read_timeout(60);
    const auto entered = client.Get(address.substr(address.rfind('/')));
    if (!entered) return false;
    const std::string cookie = entered->get_header_value("Set-Cookie");
    client.set_default_headers({{"Cookie", cookie.substr(0, cookie.find(';'))}});
    return support::Eventually([&] {
      const auto answer = client.Get(path);
      return answer && answer->status == 200 && condition(support::JsonOf(answer->body));
    });
  }
  static bool becomesReady(support::Process& house) {
    return answers(house, "/api/state",
                   [](const nlohmann::json& state) { return state["plugin"]["state"] == "ready"; });
  }
  /// Whether its library comes to hold these albums and no others.
  static bool hasAlbums(support::Process& house, const std::vector<std::string>& albums) {
    return becomesReady(house) &&
           answers(house, "/api/library?category=Album&limit=100",
                   [&](const nlohmann::json& library) { return library["names"] == albums; });
  }
  /// The player's own file.
  void configure(const std::string& text) const {
    const std::filesystem::path place = folder.path() / "config" / "vantorix";
    std::filesystem::create_directories(place);
    std::ofstream(place / "player.ini") << text;
  }
  [[nodiscard]] bool hasDemonstration() const {
    return std::filesystem::exists(folder.path() / "data" / "vantorix" / "demo-music");
  }
  /// A second folder of music, with the album "Elsewhere" in it.
  [[nodiscard]] std::string otherMusic() const {
    engine::TrackTags tags;
    tags.title = "Four";
    tags.artist = "The Testers";
    tags.album = "Elsewhere";
    tags.track = 4;
    const std::filesystem::path place = folder.path() / "other";
    std::filesystem::create_directories(place);
    const std::string path = place / "four.flac";
    engine::demo::WriteSound(path, engine::demo::Tone(880, 1, 8000), engine::demo::FileFormat::kFlac);
    engine::demo::WriteTags(path, tags, {});
    return place;
  }
  support::TempFolder folder;
  support::SmallMusic music{1};
  std::string display;     ///< none by default
  std::string sessionBus;  ///< none by default
};

}  // namespace

TEST_F(RunScript, PrintsOneAddressAndStopsEverythingInOrder) {
  const auto house = run(music.path());
  EXPECT_TRUE(becomesReady(*house));
  EXPECT_THAT(house->output(), MatchesRegex("Vantorix is at http://127.0.0.1:[0-9]+/\\?key=[0-9a-f]+\n"));
  house->signal(SIGINT);
  EXPECT_EQ(house->wait(), 0) << house->output();
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "vantorix" / "bus"));
}

TEST_F(RunScript, TakesAFolderThatIsThereForItsUserAlone) {
  const std::filesystem::path data = folder.path() / "data" / "vantorix";
  std::filesystem::create_directories(data);
  std::filesystem::permissions(data, std::filesystem::perms(0755));
  const auto house = run(music.path());
  EXPECT_TRUE(becomesReady(*house));
  EXPECT_EQ(std::filesystem::status(data).permissions(), std::filesystem::perms::owner_all);
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}

TEST_F(RunScript, RefusesASecondHouse) {
  const auto house = run(music.path());
  ASSERT_TRUE(becomesReady(*house));
  const auto second = run(music.path());
  EXPECT_EQ(second->wait(), 1);
  EXPECT_THAT(second->output(), HasSubstr("A house is running already on the bus"));
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}

TEST_F(RunScript, ClearsAwayWhatAPulledPlugHasLeft) {
  {
    const auto house = run(music.path());
    ASSERT_TRUE(becomesReady(*house));
    // The server goes first; the script, which waits for it, is killed with the rest of its work undone.
    house->signal(SIGSTOP);
    ASSERT_EQ(::kill(serverOf(), SIGKILL), 0);
    house->kill();
  }
  const auto house = run(music.path());
  EXPECT_TRUE(becomesReady(*house));
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}

TEST_F(RunScript, SaysThatAMusicFolderIsMissing) {
  const auto house = run("/nonexistent/music");
  EXPECT_EQ(house->wait(), 1);
  EXPECT_THAT(house->output(), HasSubstr("There is no music folder /nonexistent/music"));
}

TEST_F(RunScript, EachMusicFolderOfThePlayersOwnFileCountsWhereNoneIsGiven) {
  configure("\xEF\xBB\xBF[Library]\nFolder = " + music.path() + "\nfolder=" + otherMusic() + "\n");
  const auto house = runWith({"--port", "0"});
  EXPECT_TRUE(hasAlbums(*house, {"Counting", "Elsewhere"}));
  EXPECT_FALSE(hasDemonstration());
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}

TEST_F(RunScript, AFolderThatIsGivenCountsBeforeThoseOfThePlayersOwnFile) {
  configure("[library]\nfolder = " + music.path() + "\n");
  const auto house = run(otherMusic());
  EXPECT_TRUE(hasAlbums(*house, {"Elsewhere"}));
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}

TEST_F(RunScript, AFolderMayBeNamedFromWhereItsUserStands) {
  const auto house = run(std::filesystem::relative(otherMusic()).string());
  EXPECT_TRUE(hasAlbums(*house, {"Elsewhere"}));
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}

TEST_F(RunScript, WithoutAnyFolderItPlaysTheDemonstration) {
  // Only the library's folders are music.
  configure("[covers]\nfolder = " + music.path() + "\n[library]\n# folder = " + music.path() + "\n");
  const auto house = runWith({"--port", "0"});
  EXPECT_TRUE(becomesReady(*house));
  EXPECT_TRUE(answers(*house, "/api/library?category=Album&limit=100",
                      [](const nlohmann::json& library) { return !library["names"].empty(); }));
  EXPECT_TRUE(hasDemonstration());
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}

TEST_F(RunScript, TellsWhatItDoesAndDoesNothingElse) {
  const auto told = runWith({"--help"});
  EXPECT_EQ(told->wait(), 0);
  EXPECT_THAT(told->output(), StartsWith("Brings the house up"));
  EXPECT_THAT(told->output(), HasSubstr("./run.sh FOLDER"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  support::Process test({TEST_SCRIPT, "--help"});
  EXPECT_EQ(test.wait(), 0);
  EXPECT_THAT(test.output(), StartsWith("Builds everything"));
  EXPECT_THAT(test.output(), Not(HasSubstr("==")));
}

TEST_F(RunScript, ItsBusWaitsLongerForAReplyThanTheProgramsDo) {
  std::ifstream file(BUS_CONFIGURATION);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  const std::string before = "<limit name=\"reply_timeout\">";
  const auto found = text.find(before);
  ASSERT_NE(found, std::string::npos);
  EXPECT_GT(std::stoll(text.substr(found + before.size())), bus::kLongestReply.count());
}

TEST_F(RunScript, OnADesktopThePlayerStandsOnItsPanelsAndInItsMenuAsLongAsTheHouseIsUp) {
  const support::BusDaemon session;
  sessionBus = session.address();
  display = ":54321";  // nobody need look at it
  const std::filesystem::path share = folder.path() / "data";
  const auto entry = share / "applications" / "vantorix-media-player.desktop";
  const auto icon = share / "icons" / "hicolor" / "48x48" / "apps" / "vantorix-media-player.png";
  const auto house = run(music.path());
  ASSERT_TRUE(becomesReady(*house));
  EXPECT_TRUE(support::Eventually([&] {
    support::Process playerctl({"playerctl", "-p", "vantorix", "status"},
                               {"DBUS_SESSION_BUS_ADDRESS=" + sessionBus});
    return playerctl.wait() == 0 && playerctl.output() == "Stopped\n";
  }));
  support::Process validate({"desktop-file-validate", entry.string()});
  EXPECT_EQ(validate.wait(), 0);
  EXPECT_EQ(validate.output(), "");
  EXPECT_TRUE(std::filesystem::exists(icon));
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
  EXPECT_FALSE(std::filesystem::exists(entry));
  EXPECT_FALSE(std::filesystem::exists(icon));
}

TEST_F(RunScript, TheDesktopsEntryOfAnInstalledServiceStays) {
  const std::filesystem::path share = folder.path() / "data" / "applications";
  const std::filesystem::path units = folder.path() / "config" / "systemd" / "user";
  std::filesystem::create_directories(share);
  std::filesystem::create_directories(units);
  std::ofstream(share / "vantorix-media-player.desktop") << "the service's";
  std::ofstream(units / "vantorix.service") << "the service";
  const auto house = run(music.path());
  ASSERT_TRUE(becomesReady(*house));
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
  EXPECT_TRUE(std::filesystem::exists(share / "vantorix-media-player.desktop"));
}

TEST_F(RunScript, WithoutADesktopNothingIsPutThere) {
  const auto house = run(music.path());
  ASSERT_TRUE(becomesReady(*house));
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "data" / "applications"));
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "data" / "icons"));
  house->signal(SIGTERM);
  EXPECT_EQ(house->wait(), 0);
}
