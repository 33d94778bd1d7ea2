// Who may ask the web for what: every line of its table is asked for by everybody.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "standin/fakes/WebHouse.hpp"

namespace {

using standin::Method;
using standin::Role;
using standin::Route;

class Roles : public testing::Test {
 protected:
  Roles() {
    house.onLoop([](standin::House& all) { all.users.setHash(standin::kGuest, standin::kAdmitted); });
  }
  static std::string nameOf(const Route& route) {
    return (route.method == Method::kGet ? "GET " : "POST ") + route.path;
  }
  /// The status of the answer to an empty request; `cookie` is empty for a stranger.
  int ask(const Route& route, const std::string& cookie, const std::string& body = "{}") {
    httplib::Client client("127.0.0.1", house.port());
    client.set_read_timeout(60);
    const std::string origin = "http://127.0.0.1:" + std::to_string(house.port());
    httplib::Headers headers{{"Origin", origin}};
    if (!cookie.empty()) headers.emplace("Cookie", cookie);
    std::string path = route.path == "/*" ? "/Some_Page" : route.path;
    if (path == standin::kHouseFiles) path = "/images/Media%20Player/WMP_Icon.gif";
    if (route.method == Method::kPost) {
      const bool whole = route.type == Route::kJson || route.type == Route::kForm;
      const std::string type = whole ? route.type : "audio/l16;rate=16000";
      const auto answer = client.Post(path, headers, body, type);
      return answer ? answer->status : 0;
    }
    int status = 0;  // a stream is left as soon as it begins
    client.Get(
        path, headers,
        [&](const httplib::Response& answer) {
          status = answer.status;
          return true;
        },
        [&](const char*, std::size_t) { return !std::holds_alternative<standin::Live>(route.handler); });
    return status;
  }
  std::set<std::string> linesFor(Method method, Role role) {
    std::set<std::string> paths;
    for (const Route& route : house.routes())
      if (route.method == method && route.role == role) paths.insert(route.path);
    return paths;
  }
  support::WebHouse house;
};

TEST_F(Roles, AStrangerIsToldToSignInWhateverHeAsksFor) {
  for (const Route& route : house.routes()) {
    const int status = ask(route, "");
    EXPECT_NE(status, 0) << nameOf(route);
    EXPECT_EQ(status == 401, route.role != Role::kAnyone) << nameOf(route) << ": " << status;
  }
}

TEST_F(Roles, AGuestIsRefusedWhatIsTheOwners) {
  for (const Route& route : house.routes()) {
    const int status = ask(route, house.sessionOf(standin::kGuest));
    EXPECT_TRUE(status != 401 && status != 0) << nameOf(route) << ": " << status;
    // An empty request for a session is refused for its own reasons.
    if (route.role == Role::kAnyone) continue;
    EXPECT_EQ(status == 403, route.role == Role::kOwner) << nameOf(route) << ": " << status;
  }
}

TEST_F(Roles, TheOwnerIsRefusedNothing) {
  for (const Route& route : house.routes()) {
    const int status = ask(route, house.sessionOf(standin::kFirstUser));
    EXPECT_TRUE(status != 401 && status != 403 && status != 0) << nameOf(route) << ": " << status;
  }
}

TEST_F(Roles, APostBeyondItsLinesLimitIsRefused) {
  const std::string owner = house.sessionOf(standin::kFirstUser);
  for (const Route& route : house.routes()) {
    if (route.method != Method::kPost || route.path == "/api/logout") continue;
    const std::string fits = "{" + std::string(route.limit - 2, ' ') + "}";
    EXPECT_NE(ask(route, owner, fits), 413) << nameOf(route);
    EXPECT_EQ(ask(route, owner, fits + " "), 413) << nameOf(route);
  }
}

// Said a second time, by hand: a line with the wrong role in the table would pass the tests above.
TEST_F(Roles, GuestsLookAndUseDevicesAndNothingElse) {
  EXPECT_THAT(linesFor(Method::kPost, Role::kAnyone), testing::ElementsAre("/api/login", "/api/logout"));
  EXPECT_THAT(linesFor(Method::kGet, Role::kAnyone),
              testing::ElementsAre("/", "/cover/", "/redir/GetMDRCD.asp"));
  EXPECT_THAT(
      linesFor(Method::kPost, Role::kGuest),
      testing::ElementsAre("/api/command", "/api/play", "/api/playlist/watch", "/api/press", "/api/voice"));
  EXPECT_THAT(
      linesFor(Method::kGet, Role::kGuest),
      testing::ElementsAre("/*", "/*/*", "/api/albums", "/api/cover", "/api/cover/key", "/api/event",
                           "/api/event/choices", "/api/event/history", "/api/events", "/api/events/place",
                           "/api/library", "/api/live", "/api/log", "/api/player", "/api/playlist",
                           "/api/playlists", "/api/search", "/api/state", "/api/values", "/api/voice",
                           "/api/voice/choices", "/api/volume"));
  EXPECT_THAT(
      linesFor(Method::kGet, Role::kOwner),
      testing::ElementsAre("/api/covers/services", "/api/dialog", "/api/dialog/options", "/api/script",
                           "/api/script/run", "/api/scripts", "/api/voice/pattern", "/api/voice/room"));
}

TEST_F(Roles, AGuestTurnsALampOfTheHouseOnThoughThereIsNoPlugin) {
  std::int32_t lamp = 0;
  house.onLoop([&](standin::House& all) {
    lamp = all.devices.create("Lamp").ref;
    all.devices.addButton(lamp, "", "Stop");
  });
  support::WebClient guest(house.port());
  guest.cookie = house.sessionOf(standin::kGuest);
  EXPECT_EQ(guest.post("/api/command", {{"ref", lamp}, {"command", "on"}}), 200) << guest.last;
  EXPECT_EQ(guest.post("/api/command", {{"ref", lamp}, {"command", "value"}, {"value", 40}}), 200);
  EXPECT_EQ(guest.post("/api/press", {{"ref", lamp}, {"caption", "Stop"}}), 404);
  house.onLoop([&](standin::House& all) {
    EXPECT_EQ(all.devices.byRef(lamp)->status, standin::kStatusOn);
    EXPECT_EQ(all.devices.byRef(lamp)->value, 40);
  });
}

TEST_F(Roles, AGuestPressesNoButtonThatChangesAPlaylist) {
  std::int32_t title = 0;
  house.onLoop([&](standin::House& all) {
    title = all.devices.create("Title").ref;
    all.devices.put(title, &standin::Device::interface, std::string("Media Player"));
    all.devices.addButton(title, "", "Add to PlayList");
    all.devices.addButton(title, "", "Pause");
  });
  const auto press = [&](const std::string& user, const char* caption) {
    support::WebClient web(house.port());
    web.cookie = house.sessionOf(user);
    const int status = web.post("/api/press", {{"ref", title}, {"caption", caption}});
    return std::to_string(status) + " " + web.last;
  };
  EXPECT_EQ(press(standin::kGuest, "Add to PlayList"), R"(403 {"error":"Guests can’t change playlists"})");
  EXPECT_EQ(press(standin::kFirstUser, "Add to PlayList").substr(0, 3), "502") << "there is no plug-in";
  EXPECT_EQ(press(standin::kGuest, "Pause").substr(0, 3), "502");
}

TEST_F(Roles, AGuestIsSentNoLinksThatOnlyRefuse) {
  house.onLoop([](standin::House& all) {
    all.addLink({"WMP_PListEdit", "PlayList Editor", "Vantorix Media Player", nullptr});
  });
  const auto linksFor = [&](const std::string& user) {
    support::WebClient web(house.port());
    web.cookie = house.sessionOf(user);
    return support::TextOf(web.json("/api/state").at("links"));
  };
  EXPECT_THAT(linksFor(standin::kFirstUser), testing::HasSubstr("PlayList Editor"));
  EXPECT_EQ(linksFor(standin::kGuest), "[]");
}

TEST(TheTableOfRoutes, HasOneLineForAnAddress) {
  bus::PollLoop loop;
  standin::LoopGate gate(loop, std::chrono::seconds(1));
  const support::TempFolder folder;
  standin::House house(folder.path());
  standin::Visitors visitors(house.users, false);
  const Route line{Method::kGet, "/api/same", Role::kGuest, standin::Live{}};
  EXPECT_THROW(standin::WebApi(visitors, gate, {line, line}), base::Failure);
}

TEST(TheTableOfRoutes, LetsInWithinOneTurnOfTheHouse) {
  bus::PollLoop loop;
  standin::LoopGate gate(loop, std::chrono::minutes(2));
  const support::TempFolder folder;
  standin::House house(folder.path());
  standin::Visitors visitors(house.users, false);
  const std::string guest = house.users.begin(standin::kGuest);
  standin::WebApi api(visitors, gate,
                      {{Method::kGet, "/api/all", Role::kGuest, standin::Live{}},
                       {Method::kGet, "/api/owner", Role::kOwner, standin::Live{}}});
  const auto home = std::this_thread::get_id();
  std::thread web([&] {
    std::vector<std::string> in;
    const auto status = [&](const char* path, const std::string& token) {
      const auto refused = api.letIn(*api.find(Method::kGet, path), token, [&](const standin::User& user) {
        EXPECT_EQ(std::this_thread::get_id(), home);
        in.push_back(user.name);
      });
      return refused ? refused->status : 200;
    };
    EXPECT_EQ(status("/api/all", guest), 200);
    EXPECT_EQ(in, std::vector<std::string>{"guest"});
    EXPECT_EQ(status("/api/owner", guest), 403);
    EXPECT_EQ(status("/api/all", "a stranger's"), 401);
    EXPECT_EQ(in.size(), 1U);
    loop.post([&] { loop.quit(0); });
  });
  loop.run();
  web.join();
}

}  // namespace
