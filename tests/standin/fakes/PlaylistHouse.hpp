#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "standin/player/Title.hpp"
#include "support/BusDaemon.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// A server whose plug-in has one playlist, "Mine" with four titles, and an album of five.
class PlaylistHouse : public testing::Test {
 protected:
  using json = nlohmann::json;
  PlaylistHouse() {
    for (const char* name : {"A", "B", "C", "D", "E"})
      lists->library.push_back({name, std::string("Blue/") + name});
    lists->put("Mine", {at("A"), at("B"), at("C"), at("D")});
    start();
  }
  FakePlaylists::Title at(const std::string& name) { return {name, "Blue/" + name}; }
  void start() {
    server.emplace(bus.address(), folder.path() / "data");
    web.emplace(*server);
    ASSERT_TRUE(Eventually([&] {
      const json state = web->json("/api/state");
      return state.is_object() && state.value("/plugin/state"_json_pointer, "") == "ready";
    }));
  }
  void pullThePlug() {
    server->end(SIGKILL);
    start();
  }
  FakePlugin::Manner manner() {
    FakePlugin::Manner manner;
    manner.library.playlists = lists;
    return manner;
  }
  json show(const std::string& name = "Mine", bool fresh = false) {
    return web->json("/api/playlist?limit=100&group=" + httplib::detail::encode_query_param(name) +
                     (fresh ? "&fresh=1" : ""));
  }
  int act(const std::string& action, json body) {
    if (!body.contains("name")) body["name"] = "Mine";
    const int status = web->post("/api/playlist/" + action, body);
    last = json::parse(web->last);
    return status;
  }
  int move(int from, int to, const std::string& title, const json& before, const json& after) {
    const auto marked = [&](const json& name) { return name.is_null() ? name : json(mark(at(name))); };
    return act("move", {{"from", from},
                        {"to", to},
                        {"title", title},
                        {"mark", mark(at(title))},
                        {"before", marked(before)},
                        {"after", marked(after)}});
  }
  int remove(int place, const std::string& title) { return act("remove", row(place, at(title))); }
  /// What tells a row's title from others of its name.
  static std::string mark(const FakePlaylists::Title& title) {
    return standin::MarkOf(title.name, title.source);
  }
  /// A row as a page posts it.
  static json row(int place, const FakePlaylists::Title& title) {
    return {{"at", place}, {"title", title.name}, {"mark", mark(title)}};
  }
  int turn(const std::string& action, const std::string& name = "Mine") {
    return act(action, {{"name", name}});
  }
  void watch(const std::string& name, const std::string& page) {
    EXPECT_EQ(web->post("/api/playlist/watch", {{"page", page}, {"name", name}}), 200);
  }
  FakePlaylists::Names mine() { return lists->names("Mine"); }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::shared_ptr<FakePlaylists> lists = std::make_shared<FakePlaylists>();
  FakePlugin plugin{bus.address(), manner()};
  std::optional<ServerProcess> server;
  std::optional<WebClient> web;
  json last;
};

}  // namespace support
