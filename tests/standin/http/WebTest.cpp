// The server's web without a plug-in: who may ask, and what is never given.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <fstream>
#include <memory>

#include "files/Descriptor.hpp"
#include "files/WriteFile.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using nlohmann::json;
using support::ServerProcess;
using support::WebClient;

class Web : public testing::Test {
 protected:
  /// A connection that has sent these bytes; null when there is none.
  std::unique_ptr<files::Descriptor> connected(const std::string& request) const {
    auto socket = std::make_unique<files::Descriptor>(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(server.port()));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket->get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return nullptr;
    files::WriteAll(socket->get(), request, "socket");
    return socket;
  }
  /// The first line of the answer to the bytes of a request.
  std::string raw(const std::string& request) const {
    const auto open = connected(request);
    if (!open) return "no connection";
    const files::Descriptor& socket = *open;
    std::string answer;
    std::array<char, 4096> part{};
    while (answer.find("\r\n") == std::string::npos) {
      const ssize_t got = read(socket.get(), part.data(), part.size());
      if (got <= 0) break;
      answer.append(part.data(), static_cast<std::size_t>(got));
    }
    return answer.substr(0, answer.find("\r\n"));
  }
  std::string rawGet(const std::string& target, const std::string& host = "localhost") const {
    return raw("GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\nCookie: " + web.cookie +
               "\r\nConnection: close\r\n\r\n");
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::filesystem::path data = folder.path() / "data";
  ServerProcess server{bus.address(), data};
  WebClient web{server};
};

TEST_F(Web, AForeignHostNameIsRefused) {
  EXPECT_EQ(rawGet("/api/state"), "HTTP/1.1 200 OK");
  EXPECT_EQ(rawGet("/api/state", "evil.example"), "HTTP/1.1 403 Forbidden");
  EXPECT_EQ(rawGet("/", "evil.example:8080"), "HTTP/1.1 403 Forbidden");
  EXPECT_EQ(raw("GET /api/state HTTP/1.0\r\n\r\n"), "HTTP/1.1 403 Forbidden");
}

TEST_F(Web, APostMustComeFromAPageOfTheServer) {
  const std::string type = "application/json";
  EXPECT_EQ(web.postText("/api/voice", R"({"text":"x"})", type, {}), 403);
  EXPECT_EQ(web.postText("/api/voice", R"({"text":"x"})", type, {{"Origin", "http://evil.example"}}), 403);
  EXPECT_EQ(web.postText("/api/voice", R"({"text":"x"})", type, {{"Origin", "null"}}), 403);
  EXPECT_EQ(web.post("/api/voice", {{"text", "x"}}), 404);  // understood: nothing listens yet
}

TEST_F(Web, AnythingElseThanGetAndPostIsRefused) {
  for (const char* method : {"PUT", "DELETE", "PATCH", "OPTIONS"}) {
    EXPECT_EQ(
        raw(std::string(method) + " /api/state HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n"),
        "HTTP/1.1 405 Method Not Allowed")
        << method;
  }
}

TEST_F(Web, ARequestThatIsTooLargeIsRefused) {
  EXPECT_EQ(web.postText("/api/voice", std::string((1U << 20U) + 1, 'x'), "application/json",
                         {{"Origin", web.origin()}}),
            413);
  EXPECT_EQ(rawGet("/" + std::string(3000, 'a')), "HTTP/1.1 414 URI Too Long");
}

TEST_F(Web, AChunkedRequestThatIsTooLargeIsRefused) {
  std::string request =
      "POST /api/voice HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\n"
      "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (int i = 0; i < 20; ++i) request += "10000\r\n" + std::string(65536, 'x') + "\r\n";
  request += "0\r\n\r\n";
  EXPECT_EQ(raw(request), "HTTP/1.1 413 Payload Too Large");
}

TEST_F(Web, ABodyThatIsFarTooLargeIsRefusedInAnAnswerThatArrives) {
  const std::string head = "POST /WMP_Setup HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\n";
  const std::string body(10U << 20U, 'x');
  EXPECT_EQ(raw(head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body),
            "HTTP/1.1 413 Payload Too Large");
  std::string chunks;
  for (int i = 0; i < 160; ++i) chunks += "10000\r\n" + body.substr(0, 65536) + "\r\n";
  EXPECT_EQ(raw(head + "Transfer-Encoding: chunked\r\n\r\n" + chunks + "0\r\n\r\n"),
            "HTTP/1.1 413 Payload Too Large");
  EXPECT_EQ(web.get("/api/state")->status, 200);
}

TEST_F(Web, ABodyThatIsNotUnderstoodIsTheAskersFault) {
  const std::string head = "POST /WMP_Setup HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\n";
  const std::string part = "--b\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\nvalue\r\n";
  const auto answered = [&](const std::string& headers, const std::string& body) {
    return raw(head + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
  };
  const std::string inParts = "Content-Type: multipart/form-data; boundary=b\r\n";
  EXPECT_EQ(answered(inParts, part + "--b--\r\n"), "HTTP/1.1 415 Unsupported Media Type");
  EXPECT_EQ(answered(inParts, part), "HTTP/1.1 400 Bad Request");
  EXPECT_EQ(answered(inParts, "no parts at all"), "HTTP/1.1 400 Bad Request");
  EXPECT_EQ(answered("Content-Type: multipart/form-data\r\n", "a"), "HTTP/1.1 400 Bad Request");
  EXPECT_EQ(answered("Content-Encoding: gzip\r\n", "this was never packed"), "HTTP/1.1 400 Bad Request");
  EXPECT_EQ(raw("POST /" + std::string(3000, 'a') +
                " HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\nContent-Length: 3\r\n\r\na=b"),
            "HTTP/1.1 414 URI Too Long");
}

TEST_F(Web, WhatIsLeftOfARefusedBodyIsNoRequest) {
  const std::string inner = "GET /api/state HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
  for (const std::string& start : {std::string("PUT /x"), "POST /" + std::string(3000, 'a')}) {
    const auto open = connected(start + " HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\n" +
                                "Content-Length: " + std::to_string(inner.size()) + "\r\n\r\n" + inner);
    ASSERT_TRUE(open);
    std::string answer;
    std::array<char, 4096> part{};
    for (ssize_t got = 0; (got = read(open->get(), part.data(), part.size())) > 0;)
      answer.append(part.data(), static_cast<std::size_t>(got));
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 4")) << answer;
    EXPECT_EQ(answer.find("HTTP/1.1", 1), std::string::npos) << answer;
  }
}

TEST_F(Web, WhatPagesOfOtherServersLoadIsRefused) {
  for (const char* path : {"/api/state", "/api/live", "/api/log"}) {
    const auto answer = web.get(path, {{"Sec-Fetch-Site", "cross-site"}, {"Sec-Fetch-Mode", "no-cors"}});
    ASSERT_TRUE(answer) << path;
    EXPECT_EQ(answer->status, 403) << path;
  }
  EXPECT_EQ(web.get("/api/state", {{"Sec-Fetch-Site", "same-origin"}, {"Sec-Fetch-Mode", "cors"}})->status,
            200);
  EXPECT_EQ(web.get("/api/state")->status, 200);
}

TEST_F(Web, APageOfTheServersOwnCanNotMakeAFormAskForWhatScriptsAskFor) {
  EXPECT_EQ(web.postText("/api/logout", R"({"a":"="})", "text/plain", {{"Origin", web.origin()}}), 415);
  EXPECT_EQ(
      web.postText("/api/logout", "a=b", "application/x-www-form-urlencoded", {{"Origin", web.origin()}}),
      415);
}

TEST_F(Web, AMalformedRequestIsTheAskersFault) {
  EXPECT_EQ(web.postText("/api/press", "[1]", "application/json", {{"Origin", web.origin()}}), 400);
  EXPECT_EQ(web.postText("/api/press", "{", "application/json", {{"Origin", web.origin()}}), 400);
  EXPECT_EQ(web.post("/api/press", {{"ref", "x"}, {"caption", 5}}), 400);
  EXPECT_EQ(web.post("/api/press", json::object()), 400);
  EXPECT_EQ(web.post("/api/nothing", json::object()), 404);
  EXPECT_EQ(web.post("/nothing", json::object()), 404);
}

TEST_F(Web, FilesOfTheHouseAreServedAndNothingElse) {
  std::ofstream(data / "html/note.txt") << "hello";
  std::filesystem::create_symlink(data / "house.db", data / "html/leak");
  EXPECT_EQ(web.get("/note.txt")->body, "hello");
  const auto icon = web.get("/images%5CMedia%20Player%5CWMP_Icon.gif");
  EXPECT_EQ(icon->status, 200);
  EXPECT_EQ(icon->get_header_value("Content-Type"), "image/gif");
  for (const char* path : {"/../house.db", "/%2e%2e/house.db", "/..%5Chouse.db", "/%2e%2e%5chouse.db",
                           "/leak", "/images/../../house.db", "/images/%2e%2e/%2e%2e/house.db", "//house.db",
                           "/%00", "/note.txt%00.gif"}) {
    EXPECT_EQ(rawGet(path), "HTTP/1.1 404 Not Found") << path;
  }
}

TEST_F(Web, EveryAnswerCarriesItsRules) {
  for (const char* path : {"/", "/api/state", "/app.js", "/nothing", "/images/Media%20Player/WMP_Icon.gif"}) {
    const auto answer = web.get(path);
    EXPECT_NE(answer->get_header_value("Content-Security-Policy").find("default-src 'self'"),
              std::string::npos);
    EXPECT_EQ(answer->get_header_value("Content-Security-Policy").find("unsafe"), std::string::npos);
    EXPECT_EQ(answer->get_header_value("X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(answer->get_header_value("X-Frame-Options"), "DENY");
  }
}

TEST_F(Web, WhatThePagesLoadIsKeptForGoodAndIsNeverStale) {
  const auto document = web.get("/");
  const auto begin = document->body.find("/v-");
  ASSERT_NE(begin, std::string::npos) << document->body;
  const std::string address = document->body.substr(begin, document->body.find('/', begin + 1) - begin);
  EXPECT_EQ(document->body.find("{{assets}}"), std::string::npos);
  const auto script = web.get(address + "/app.js");
  EXPECT_EQ(script->status, 200);
  EXPECT_EQ(script->get_header_value("Content-Type"), "text/javascript; charset=utf-8");
  EXPECT_EQ(script->get_header_value("Cache-Control"), "public, max-age=31536000, immutable");
  EXPECT_EQ(script->get_header_value_count("Cache-Control"), 1U);
  // An address of another build, or a bare one, promises nothing.
  EXPECT_EQ(web.get("/v-0000000000000000/app.js")->status, 404);
  EXPECT_EQ(web.get(address + "/index.html")->status, 404);
  EXPECT_EQ(web.get(address + "0/app.js")->status, 404);
  EXPECT_EQ(web.get("/app.js")->get_header_value("Cache-Control"), "private, no-cache");
}

TEST_F(Web, WhatABrowserHasAlreadyIsNotSentAgain) {
  std::ofstream(data / "html/note.txt") << "hello";
  for (const char* path : {"/", "/app.js", "/note.txt", "/api/state", "/api/scripts"}) {
    const auto first = web.get(path);
    ASSERT_EQ(first->status, 200) << path;
    EXPECT_EQ(first->get_header_value("Cache-Control"), "private, no-cache") << path;
    const std::string mark = first->get_header_value("ETag");
    const auto again = web.get(path, {{"If-None-Match", mark}});
    EXPECT_EQ(again->status, 304) << path;
    EXPECT_EQ(again->body, "") << path;
    EXPECT_EQ(web.get(path, {{"If-None-Match", "W/\"another\""}})->body, first->body) << path;
  }
  const std::string mark = web.get("/note.txt")->get_header_value("ETag");
  std::ofstream(data / "html/note.txt") << "hallo";
  EXPECT_EQ(web.get("/note.txt", {{"If-None-Match", mark}})->body, "hallo");
}

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

TEST_F(Web, TheHousesFilesAreTheUsersOwn) {
  for (const char* name : {"house.db", "config/settings.journal"}) {
    const auto permissions = std::filesystem::status(data / name).permissions();
    EXPECT_EQ(permissions & (std::filesystem::perms::group_all | std::filesystem::perms::others_all),
              std::filesystem::perms::none)
        << name;
  }
}

TEST_F(Web, ARequestWithoutEndIsCutOff) {
  const auto endless = connected("GET / HTTP/1.1\r\n");
  const std::string line = "X-Filler: " + std::string(1000, 'x') + "\r\n";
  std::size_t sent = 0;
  while (sent < (8U << 20U)) {
    const ssize_t count = ::send(endless->get(), line.data(), line.size(), MSG_NOSIGNAL);
    if (count <= 0) break;
    sent += static_cast<std::size_t>(count);
  }
  EXPECT_LT(sent, 8U << 20U);
  EXPECT_EQ(web.get("/api/state")->status, 200);
}

TEST_F(Web, OnlySoManyPagesAreLiveAtOnce) {
  const WebClient second(server);
  const WebClient third(server);
  WebClient fourth(server);
  std::atomic<int> live = 0;
  std::atomic<bool> over = false;
  std::vector<std::thread> pages;
  for (int i = 0; i < 24; ++i) {
    pages.emplace_back([&, i] {
      httplib::Client client("127.0.0.1", server.port());
      // Three browsers of eight pages: more than eight of one are too many.
      const std::string cookie = i < 8 ? web.cookie : i < 16 ? second.cookie : third.cookie;
      client.set_default_headers({{"Cookie", cookie}});
      bool first = true;
      client.Get("/api/live", [&](const char*, std::size_t) {
        if (std::exchange(first, false)) ++live;
        return !over;
      });
    });
  }
  EXPECT_TRUE(support::Eventually([&] { return live == 24; }));
  EXPECT_EQ(fourth.get("/api/live")->status, 503);
  EXPECT_EQ(web.get("/api/state")->status, 200);
  over = true;
  EXPECT_EQ(server.end(), 0);
  for (std::thread& page : pages) page.join();
}

}  // namespace
