// The server's web without a plug-in: what is asked for, and what is never given.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <set>

#include "standin/http/WebOfServer.hpp"

namespace standin::testing {
namespace {

using nlohmann::json;

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
      "POST /api/voice HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\nCookie: " + web.cookie +
      "\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (int i = 0; i < 20; ++i) request += "10000\r\n" + std::string(65536, 'x') + "\r\n";
  request += "0\r\n\r\n";
  EXPECT_EQ(raw(request), "HTTP/1.1 413 Payload Too Large");
}

TEST_F(Web, ABodyThatIsFarTooLargeIsRefusedInAnAnswerThatArrives) {
  const std::string head =
      "POST /WMP_Setup HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\nCookie: " + web.cookie +
      "\r\n" + kForm;
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
  EXPECT_EQ(answered(kForm + "Content-Encoding: gzip\r\n", "this was never packed"),
            "HTTP/1.1 415 Unsupported Media Type");
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
  EXPECT_EQ(web.postForm("/api/logout", "a=b"), 415);
}

TEST_F(Web, APageOfThePluginTakesWhatAFormSendsAndNothingElse) {
  for (const char* type : {"text/plain", "application/json", ""})
    EXPECT_EQ(web.postText("/WMP_Setup", "a=b", type, {{"Origin", web.origin()}}), 415) << type;
  EXPECT_EQ(web.postText("/WMP_Setup", "a=b", "application/x-www-form-urlencoded; charset=utf-8",
                         {{"Origin", web.origin()}}),
            404)
      << "understood: there is no plug-in yet";
}

TEST_F(Web, AMalformedRequestIsTheAskersFault) {
  EXPECT_EQ(web.postText("/api/press", "[1]", "application/json", {{"Origin", web.origin()}}), 400);
  EXPECT_EQ(web.postText("/api/press", "{", "application/json", {{"Origin", web.origin()}}), 400);
  EXPECT_EQ(web.post("/api/press", {{"ref", "x"}, {"caption", 5}}), 400);
  EXPECT_EQ(web.post("/api/press", json::object()), 400);
  EXPECT_EQ(web.post("/api/nothing", json::object()), 404);
  EXPECT_EQ(web.postForm("/nothing", "a=b"), 404);
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
    ASSERT_EQ(web.get(path)->status, 200) << path;
    EXPECT_EQ(web.get(path)->get_header_value("Cache-Control"), "private, no-cache") << path;
    // The house may change between two looks at it.
    EXPECT_TRUE(support::Eventually([&] {
      const auto first = web.get(path);
      const auto again = web.get(path, {{"If-None-Match", first->get_header_value("ETag")}});
      const auto other = web.get(path, {{"If-None-Match", "W/\"another\""}});
      return again->status == 304 && again->body.empty() && other->body == first->body;
    })) << path;
  }
  const std::string mark = web.get("/note.txt")->get_header_value("ETag");
  std::ofstream(data / "html/note.txt") << "hallo";
  EXPECT_EQ(web.get("/note.txt", {{"If-None-Match", mark}})->body, "hallo");
}

TEST_F(Web, ALargeFileIsGivenInPiecesAndAPartOfItWithoutTheRest) {
  std::string large;
  while (large.size() < (std::size_t{3} << 20U)) large += std::to_string(large.size()) + ' ';
  std::ofstream(data / "html/large.txt", std::ios::binary) << large;
  const auto whole = web.get("/large.txt");
  EXPECT_EQ(whole->status, 200);
  EXPECT_TRUE(whole->body == large);
  const std::string mark = whole->get_header_value("ETag");
  EXPECT_EQ(web.get("/large.txt", {{"If-None-Match", mark}})->status, 304);
  const auto part = web.get("/large.txt", {{"Range", "bytes=1000000-1099999"}});
  EXPECT_EQ(part->status, 206);
  EXPECT_EQ(part->get_header_value("Content-Range"), "bytes 1000000-1099999/" + std::to_string(large.size()));
  EXPECT_TRUE(part->body == large.substr(1000000, 100000));
  const auto beyond = web.get("/large.txt", {{"Range", "bytes=9999999-"}});
  EXPECT_EQ(beyond->status, 416);
  EXPECT_EQ(beyond->get_header_value("Content-Range"), "bytes */" + std::to_string(large.size()));
  std::filesystem::resize_file(data / "html/large.txt",
                               std::uintmax_t{1} << 40U);  // far more than any memory
  const auto first = web.get("/large.txt", {{"Range", "bytes=0-0"}});
  EXPECT_EQ(first->body, "0");
  EXPECT_EQ(first->get_header_value("Content-Range"),
            "bytes 0-0/" + std::to_string(std::uintmax_t{1} << 40U));
  EXPECT_NE(first->get_header_value("ETag"), mark);
  EXPECT_EQ(web.get("/large.txt", {{"Range", "bytes=-1"}})->body, std::string(1, '\0'));
}

TEST_F(Web, TheHousesFilesAreTheUsersOwn) {
  constexpr auto kOthers = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(data)) {
    names.insert(entry.path().filename());
    EXPECT_EQ(entry.symlink_status().permissions() & kOthers, std::filesystem::perms::none) << entry.path();
  }
  for (const char* name : {"house.db", "config", "settings.journal", "address", "html"})
    EXPECT_TRUE(names.contains(name)) << name;
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
  // Three browsers of eight pages.
  for (const std::string& cookie : {web.cookie, second.cookie, third.cookie}) {
    for (int i = 0; i < 8; ++i) {
      pages.emplace_back([&, cookie] {
        httplib::Client client("127.0.0.1", server.port());
        client.set_default_headers({{"Cookie", cookie}});
        bool first = true;
        client.Get("/api/live", [&](const char*, std::size_t) {
          if (std::exchange(first, false)) ++live;
          return !over;
        });
      });
    }
    const int all = static_cast<int>(pages.size());
    EXPECT_TRUE(support::Eventually([&] { return live == all; }));
    if (all == 8) {
      EXPECT_EQ(web.get("/api/live")->status, 503) << "more than eight of one are too many";
    }
  }
  EXPECT_EQ(fourth.get("/api/live")->status, 503);
  EXPECT_EQ(web.get("/api/state")->status, 200);
  over = true;
  EXPECT_EQ(server.end(), 0);
  for (std::thread& page : pages) page.join();
}

}  // namespace
}  // namespace standin::testing
