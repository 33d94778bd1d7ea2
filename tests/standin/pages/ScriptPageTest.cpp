// Scripts run by the server's program, with a plug-in on the bus.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlugin;
using support::ServerProcess;
using support::WebClient;

class ScriptPage : public testing::Test {
 protected:
  static FakePlugin::Manner withLibrary() {
    FakePlugin::Manner manner;
    manner.library.categories["Album"] = {"Blue", "Green Night"};
    manner.library.groups["Album/Blue"] = {"River", "Carey"};
    manner.library.groups["Genre/Electronic"] = {"River"};
    manner.library.groups["Album/Electronic"] = {"River"};  // the album that its titles tell
    return manner;
  }
  void SetUp() override {
    ASSERT_TRUE(Eventually([&] {
      const json state = web.json("/api/state");
      return state.is_object() && state.value("/plugin/state"_json_pointer, "") == "ready";
    }));
  }
  bool ended() {
    return Eventually([&] {
      const json run = web.json("/api/script/run");
      return run.is_object() && !run.value("running", true);
    });
  }
  json ran(const json& what) {
    EXPECT_EQ(web.post("/api/script/run", what), 200) << web.last;
    EXPECT_TRUE(ended());
    return web.json("/api/script/run");
  }
  json ranText(const std::string& text) { return ran(json{{"name", "test"}, {"text", text}}); }
  bool heard(const std::string& call) {
    const auto calls = plugin.calls();
    return std::find(calls.begin(), calls.end(), call) != calls.end();
  }

  /// A line of what the system tells of a process; empty where there is none.
  static std::string statusOf(const std::filesystem::path& process, const std::string& word) {
    std::ifstream file(process / "status");
    for (std::string line; std::getline(file, line);)
      if (line.starts_with(word + ":\t")) return line.substr(word.size() + 2);
    return {};
  }
  /// One whose end nobody has asked for yet doesn't.
  static bool computes(pid_t process) {
    const std::string state = statusOf("/proc/" + std::to_string(process), "State");
    return !state.empty() && !state.starts_with("Z");
  }
  /// The process of this server's script; 0 where there is none.
  [[nodiscard]] pid_t processOfScript() const {
    for (const auto& process : std::filesystem::directory_iterator("/proc")) {
      if (statusOf(process.path(), "Name") != "vantorix-script") continue;
      std::ifstream parent("/proc/" + statusOf(process.path(), "PPid") + "/cmdline");
      const std::string words((std::istreambuf_iterator<char>(parent)), std::istreambuf_iterator<char>());
      if (words.find(folder.path().string()) != std::string::npos)
        return std::stoi(process.path().filename().string());
    }
    return 0;
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  FakePlugin plugin{bus.address(), withLibrary()};
  ServerProcess server{bus.address(), folder.path() / "data", {"--script-seconds", "10"}};
  WebClient web{server};
};

TEST_F(ScriptPage, AScriptReachesThePlayer) {
  const json run = ranText(
      "print(scriptclass.Title, scriptclass.Play('Album', 'Blue', 'River'))\n"
      "scriptclass.Volume = scriptclass.Volume + 5\n"
      "print(scriptclass.Volume, scriptclass:Play('Album', 'Gone'))\n"
      "print(pcall(scriptclass.Fail))\n"
      "print(vxif.Name(), host.Version())");
  EXPECT_EQ(run.at("error"), "");
  EXPECT_EQ(run.at("output"),
            "River\t0\n55\t-1\nfalse\tfailure 35601: Element not found\nMedia Player\t1.7.0\n");
  EXPECT_TRUE(heard("Play Album/Blue/River"));
}

TEST_F(ScriptPage, AScriptReachesTheHousesOwnObjects) {
  const json run = ranText(
      "local device = host.GetDevice(host.NewDevice('Lamp'))\n"
      "device.location = 'Hall'\n"
      "print(device.name, host.GetDeviceEx('Hall Lamp').location, host.GetDeviceEx('None'))");
  EXPECT_EQ(run.at("error"), "");
  EXPECT_EQ(run.at("output"), "Lamp\tHall\tnil\n");
}

TEST_F(ScriptPage, TheExamplesRun) {
  const json names = web.json("/api/scripts").at("scripts");
  ASSERT_EQ(names.size(), 3U);
  const json albums = ran(json{{"name", "Albums and their titles"}});
  EXPECT_EQ(albums.at("error"), "");
  EXPECT_EQ(albums.at("output"), "  2  Blue\n  0  Green Night\n2 albums\n");
  const json announced = ran(json{{"name", "Announce what plays"}});
  EXPECT_EQ(announced.at("error"), "");
  EXPECT_EQ(announced.at("output"), "This is River by Joni, from Blue\n");
  EXPECT_NE(web.json("/api/log?type=Speech").dump().find("This is River by Joni"), std::string::npos);
  const json random = ran(json{{"name", "Random album of a genre"}});
  EXPECT_EQ(random.at("error"), "");
  EXPECT_EQ(random.at("output"), "Playing Electronic\n");
  EXPECT_TRUE(heard("Play Album/Electronic/"));
}

TEST_F(ScriptPage, TheHouseAnswersWhileAScriptLoops) {
  ASSERT_EQ(web.post("/api/script/run", {{"name", "loop"}, {"text", "print('on')\nwhile true do end"}}), 200);
  EXPECT_EQ(web.post("/api/script/run", {{"name", "other"}, {"text", ""}}), 409);
  EXPECT_EQ(web.get("/api/state")->status, 200);
  EXPECT_EQ(web.json("/api/script/run").at("running"), true);
  ASSERT_TRUE(ended());
  const json run = web.json("/api/script/run");
  EXPECT_EQ(run.at("output"), "on\n");
  EXPECT_EQ(run.at("line"), 2);
  EXPECT_EQ(run.at("error"), "loop:2: the script was stopped: it took too long");
}

TEST_F(ScriptPage, AScriptThatWaitsIsStoppedAtOnce) {
  ASSERT_EQ(web.post("/api/script/run", {{"name", "wait"}, {"text", "while true do house.sleep(100) end"}}),
            200);
  EXPECT_EQ(web.post("/api/script/stop", json::object()), 200);
  ASSERT_TRUE(ended());
  EXPECT_NE(web.json("/api/script/run").at("error").get<std::string>().find("stopped"), std::string::npos);
}

TEST_F(ScriptPage, AStepThatNeverEndsIsEnded) {
  ASSERT_EQ(web.post("/api/script/run", {{"name", "stuck"}, {"text", "string.rep('', 1 << 62)"}}), 200);
  ASSERT_TRUE(ended());
  EXPECT_EQ(web.json("/api/script/run").at("error"), "the script was stopped: it took too long");
  EXPECT_EQ(ranText("print('next')").at("output"), "next\n");
  EXPECT_EQ(server.end(), 0);
}

TEST_F(ScriptPage, TheOutputIsBounded) {
  const json run = ranText("for i = 1, 10000 do print(string.rep('x', 99)) end");
  const std::string output = run.at("output").get<std::string>();
  EXPECT_LT(output.size(), 263000U);
  EXPECT_TRUE(output.ends_with("left out\n"));
  EXPECT_EQ(web.json("/api/script/run?from=" + std::to_string(output.size())).at("output"), "");
}

TEST_F(ScriptPage, ScriptsAreStoredAndDeleted) {
  EXPECT_EQ(web.post("/api/script", {{"name", "Mine"}, {"text", "print('mine')"}}), 200);
  EXPECT_EQ(web.json("/api/script?name=Mine").at("text"), "print('mine')");
  EXPECT_EQ(ran(json{{"name", "Mine"}}).at("output"), "mine\n");
  EXPECT_EQ(web.post("/api/script", {{"name", "../Mine"}, {"text", ""}}), 400);
  EXPECT_EQ(web.get("/api/script?name=..%2Fhouse")->status, 404);
  EXPECT_EQ(web.post("/api/script/run", {{"name", "Unknown"}}), 404);
  EXPECT_EQ(web.post("/api/script/delete", {{"name", "Mine"}}), 200);
  EXPECT_EQ(web.post("/api/script/delete", {{"name", "Mine"}}), 404);
}

TEST_F(ScriptPage, GuestsHaveNoScripts) {
  WebClient guest(server);
  ASSERT_EQ(guest.post("/api/login", {{"name", "guest"}}), 200) << guest.last;
  EXPECT_EQ(guest.get("/api/scripts")->status, 403);
  EXPECT_EQ(guest.get("/api/script?name=Announce%20what%20plays")->status, 403);
  EXPECT_EQ(guest.get("/api/script/run")->status, 403);
  for (const char* path : {"/api/script", "/api/script/run", "/api/script/delete", "/api/script/stop"}) {
    EXPECT_EQ(guest.post(path, {{"name", "test"}, {"text", "print(1)"}}), 403) << path;
  }
  EXPECT_EQ(guest.json("/api/library?category=Album&limit=9").at("total"), 2);
}

TEST_F(ScriptPage, TheServerStopsWithAScriptUnderWay) {
  ASSERT_EQ(web.post("/api/script/run", {{"name", "wait"}, {"text", "house.sleep(100)"}}), 200);
  EXPECT_EQ(server.end(), 0);
}

// Not even one that has no time to end it.
TEST_F(ScriptPage, AScriptEndsWithTheServer) {
  ASSERT_EQ(web.post("/api/script/run", {{"name", "busy"}, {"text", "table.move({}, 1, 2^40, 2)"}}), 200);
  pid_t script = 0;
  ASSERT_TRUE(Eventually([&] { return (script = processOfScript()) != 0; }));
  EXPECT_EQ(server.end(SIGKILL), -SIGKILL);
  EXPECT_TRUE(Eventually([&] { return !computes(script); }));
}

}  // namespace
