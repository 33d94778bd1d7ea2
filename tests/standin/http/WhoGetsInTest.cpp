// Who gets in to the server's web: by the printed key, by a password, as a guest.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>

#include "standin/http/WebOfServer.hpp"

namespace standin::testing {
namespace {

using nlohmann::json;

TEST_F(Web, WithAPasswordOnlyTheOwnerGetsIn) {
  EXPECT_EQ(web.post("/api/password", {{"password", "s3cret-enough"}}), 200);
  EXPECT_NE(web.cookieHeader.find("HttpOnly"), std::string::npos);
  EXPECT_NE(web.cookieHeader.find("SameSite=Strict"), std::string::npos);
  EXPECT_EQ(web.get("/api/state")->status, 200);

  WebClient stranger(server.port());
  for (const char* path :
       {"/api/state", "/api/log", "/api/live", "/api/values?ref=1", "/images/Media%20Player/WMP_Icon.gif"}) {
    EXPECT_EQ(stranger.get(path)->status, 401) << path;
  }
  EXPECT_EQ(stranger.get("/")->status, 200);  // the page that asks for the password
  EXPECT_EQ(stranger.post("/api/voice", {{"text", "stop"}}), 401);
  EXPECT_EQ(stranger.post("/api/password", {{"password", "mine"}}), 401);
  EXPECT_EQ(stranger.post("/api/login", {{"name", "owner"}, {"password", "wrong"}}), 403);
  EXPECT_EQ(stranger.post("/api/login", {{"name", "nobody"}, {"password", "wrong"}}), 403);
  EXPECT_EQ(stranger.post("/api/login", {{"name", "OWNER"}, {"password", "s3cret-enough"}}), 200);
  EXPECT_EQ(stranger.get("/api/state")->status, 200);
  EXPECT_EQ(stranger.post("/api/password", {{"old", "wrong"}, {"password", "mine-alone"}}), 403);
  EXPECT_EQ(stranger.post("/api/logout", json::object()), 200);
  EXPECT_EQ(stranger.get("/api/state")->status, 401);

  // Without it the key is what lets the owner in; his own browser stays his.
  EXPECT_EQ(web.post("/api/password", {{"old", "s3cret-enough"}, {"password", ""}}), 200);
  EXPECT_EQ(web.get("/api/state")->status, 200);
  EXPECT_EQ(stranger.get("/api/state")->status, 401);
  EXPECT_EQ(stranger.post("/api/login", {{"name", "owner"}}), 403);
}

TEST_F(Web, AServerThatOthersReachByANameNeedsAPasswordForItsOwner) {
  const support::BusDaemon otherBus;
  ServerProcess open(otherBus.address(), folder.path() / "second", {"--allow-host", "house.example"});
  EXPECT_EQ(open.wait(), 1);
  EXPECT_NE(open.errors().find("its owner has no password"), std::string::npos) << open.errors();
}

TEST_F(Web, WithoutThePrintedKeyAVisitorOfTheMachineIsNobody) {
  WebClient stranger(server.port());
  const auto answer = stranger.get("/api/state");
  EXPECT_EQ(answer->status, 401);
  EXPECT_EQ(support::JsonOf(answer->body).at("way"), "key");
  EXPECT_NE(support::JsonOf(answer->body).at("error").get<std::string>().find("vantorix-standin --address"),
            std::string::npos);
  for (const char* path : {"/api/log", "/api/live", "/images/Media%20Player/WMP_Icon.gif", "/WMP_Setup"})
    EXPECT_EQ(stranger.get(path)->status, 401) << path;
  EXPECT_EQ(stranger.post("/api/login", {{"name", "owner"}}), 403);
  EXPECT_EQ(stranger.post("/api/login", {{"name", "guest"}}), 403);
  EXPECT_EQ(stranger.post("/api/password", {{"password", "mine-alone"}}), 401);
  for (const std::string& key : {std::string(), std::string("0"), server.key() + "0", std::string(64, '0')}) {
    stranger.enter(key);
    EXPECT_EQ(stranger.cookie, "") << key;
  }
}

TEST_F(Web, ThePrintedAddressLetsABrowserInAtOneClick) {
  WebClient browser(server.port());
  const auto answer = browser.get("/?key=" + server.key());
  EXPECT_EQ(answer->status, 303);
  EXPECT_EQ(answer->get_header_value("Location"), "/");  // and the key is in no history
  browser.enter(server.key());
  EXPECT_NE(browser.cookieHeader.find("HttpOnly"), std::string::npos);
  EXPECT_EQ(browser.json("/api/state").at("user").at("name"), "owner");
  // A browser that is known gets no second cookie.
  EXPECT_FALSE(browser.get("/?key=" + server.key())->has_header("Set-Cookie"));
  // It stays known when the server starts again, with another key.
  const std::string before = server.key();
  EXPECT_EQ(server.end(), 0);
  const ServerProcess next(bus.address(), data);
  EXPECT_NE(next.key(), before);
  WebClient later(next.port());
  later.cookie = "vantorix-" + std::to_string(next.port()) + browser.cookie.substr(browser.cookie.find('='));
  EXPECT_EQ(later.get("/api/state")->status, 200);
}

TEST_F(Web, TwoHousesOfAMachineLeaveEachOthersSessionAlone) {
  const support::BusDaemon otherBus;
  const ServerProcess other(otherBus.address(), folder.path() / "second");
  WebClient there(other);
  // A browser sends what it has from one port to every other one.
  const std::string both = there.cookie + "; " + web.cookie;
  web.cookie = there.cookie = both;
  EXPECT_EQ(web.json("/api/state").at("user").at("name"), "owner");
  EXPECT_EQ(there.json("/api/state").at("user").at("name"), "owner");
  EXPECT_EQ(there.post("/api/logout", json::object()), 200);
  EXPECT_TRUE(there.cookieHeader.starts_with("vantorix-" + std::to_string(other.port()) + "=;"));
  EXPECT_EQ(web.get("/api/state")->status, 200);
}

TEST_F(Web, TheKeyIsNoWayRoundAPassword) {
  EXPECT_EQ(web.post("/api/password", {{"password", "s3cret-enough"}}), 200);
  WebClient stranger(server.port());
  stranger.enter(server.key());
  EXPECT_EQ(stranger.cookie, "");
  EXPECT_EQ(stranger.json("/api/state").at("way"), "password");
}

TEST_F(Web, TheAddressIsPrintedAgainForItsUserAlone) {
  const auto printed = [&] {
    support::Process again({STANDIN_PROGRAM, "--address", "--data", data.string()});
    const int code = again.wait();
    return std::to_string(code) + " " + again.output();
  };
  EXPECT_EQ(printed(), "0 " + server.address() + "\n");
  EXPECT_EQ(std::filesystem::status(data / "address").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_EQ(web.post("/api/password", {{"password", "s3cret-enough"}}), 200);
  EXPECT_EQ(printed(), "0 " + web.origin() + "/\n");
  // A server that was killed has left its file behind.
  server.end(SIGKILL);
  EXPECT_TRUE(std::filesystem::exists(data / "address"));
  EXPECT_EQ(printed(), "1 vantorix-standin: No server is running on " + data.string() + "\n");
}

TEST_F(Web, APasswordOfTheOwnersHasEightCharacters) {
  EXPECT_EQ(web.post("/api/password", {{"password", "1234567"}}), 400);
  EXPECT_NE(web.last.find("at least 8 characters"), std::string::npos);
  EXPECT_EQ(web.post("/api/password", {{"password", "ÄÄÄÄ567"}}), 400);
  EXPECT_EQ(web.post("/api/password", {{"password", "ÄÄÄÄ5678"}}), 200);
}

TEST_F(Web, AGuestIsAGuestAlsoWhereNoPasswordIsNeeded) {
  EXPECT_EQ(web.post("/api/login", {{"name", "guest"}}), 200);
  EXPECT_EQ(web.json("/api/state").at("user").at("name"), "guest");
  EXPECT_EQ(web.post("/api/password", {{"password", "mine-alone"}}), 403);
  web.enter(server.key());
  EXPECT_EQ(web.json("/api/state").at("user").at("name"), "owner");
}

TEST_F(Web, TheOwnerSaysWhetherGuestsAreLetIn) {
  WebClient guest(server.port());
  EXPECT_EQ(web.json("/api/state").at("user").at("guests"), "off");
  EXPECT_EQ(guest.post("/api/login", {{"name", "guest"}}), 403);
  EXPECT_EQ(web.post("/api/guests", {{"guests", "open"}}), 200);
  EXPECT_EQ(web.json("/api/state").at("user").at("guests"), "open");
  EXPECT_EQ(guest.post("/api/login", {{"name", "guest"}}), 200);
  EXPECT_EQ(guest.post("/api/guests", {{"guests", "open"}}), 403);
  EXPECT_EQ(web.post("/api/password", {{"password", "s3cret-enough"}}), 200);
  EXPECT_EQ(web.post("/api/guests", {{"guests", "off"}}), 200);
  EXPECT_EQ(guest.get("/api/state")->status, 401);
  EXPECT_EQ(guest.post("/api/login", {{"name", "guest"}}), 403);
  EXPECT_EQ(web.post("/api/guests", {{"guests", "password"}, {"password", "come in"}}), 200);
  EXPECT_EQ(guest.post("/api/login", {{"name", "guest"}}), 403);
  EXPECT_EQ(guest.post("/api/login", {{"name", "guest"}, {"password", "come in"}}), 200);
  EXPECT_EQ(guest.get("/api/state")->status, 200);
  EXPECT_EQ(web.json("/api/state").at("user").at("guests"), "password");
  EXPECT_EQ(web.post("/api/guests", {{"guests", "maybe"}}), 400);
}

}  // namespace
}  // namespace standin::testing
