// What the web takes of a request before it looks at its body: hostile heads, packed bodies, ranges.
#include <gtest/gtest.h>

#include <fstream>

#include "standin/http/HostileHeads.hpp"
#include "standin/http/WebOfServer.hpp"

namespace standin::testing {
namespace {

class TheFrontOfTheWeb : public Web {
 protected:
  /// All that is answered to some bytes, up to the connection's end.
  [[nodiscard]] std::string all(const std::string& request) const {
    const auto open = connected(request);
    std::string answer;
    std::array<char, 4096> part{};
    for (ssize_t got = 0; open && (got = read(open->get(), part.data(), part.size())) > 0;)
      answer.append(part.data(), static_cast<std::size_t>(got));
    return answer;
  }
  /// The first line of the answer to a post whose body never comes.
  [[nodiscard]] std::string unsent(const std::string& path, const std::string& headers) const {
    const std::string answer = all("POST " + path + " HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n");
    return answer.substr(0, answer.find("\r\n"));
  }
  [[nodiscard]] std::string session() const { return "Cookie: " + web.cookie + "\r\n"; }

  static constexpr const char* kOrigin = "Origin: http://localhost\r\n";
  static constexpr const char* kJson = "Content-Type: application/json\r\n";
  static constexpr const char* kThree = "Content-Length: 3\r\n";
};

TEST_F(TheFrontOfTheWeb, EndsTheConnectionAfterAHeadOfTwoMeanings) {
  const std::string second = "GET /api/state HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
  for (const std::string& head : HeadsOfTwoMeanings()) {
    const std::string answer = all(head + second);
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 400 Bad Request\r\n")) << head << "\n" << answer;
    EXPECT_NE(answer.find("\r\nConnection: close\r\n"), std::string::npos) << head;
    EXPECT_EQ(answer.find("HTTP/1.1", 1), std::string::npos) << head << "\n" << answer;
  }
  EXPECT_EQ(web.get("/api/state")->status, 200);
}

TEST_F(TheFrontOfTheWeb, EndsTheConnectionAfterChunksOfTwoMeanings) {
  const std::string second = "GET /api/state HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
  const std::string head = "POST /api/logout HTTP/1.1\r\nHost: localhost\r\n" + std::string(kOrigin) + kJson +
                           "Transfer-Encoding: chunked\r\n\r\n";
  for (const char* body : {"0x2\r\n{}\r\n0\r\n\r\n", "2;a\r\n{}\r\n0\r\n\r\n", "2\n{}\n0\n\n",
                           "2\r\n{}\r\n0\r\nX: y\r\n\r\n", "-1\r\n", "2\r\n{}}\r\n0\r\n\r\n"}) {
    const std::string answer = all(head + body + second);
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 400 Bad Request\r\n")) << body << "\n" << answer;
    EXPECT_EQ(answer.find("HTTP/1.1", 1), std::string::npos) << body << "\n" << answer;
  }
  const std::string understood = all(head + "2\r\n{}\r\n0\r\n\r\n" + second);
  EXPECT_TRUE(understood.starts_with("HTTP/1.1 200 OK\r\n")) << understood;
  EXPECT_NE(understood.find("HTTP/1.1 401", 1), std::string::npos) << "the next request is one";
}

TEST_F(TheFrontOfTheWeb, RefusesAPostBeforeAByteOfItsBodyIsThere) {
  const std::string origin = kOrigin;
  const std::string json = kJson;
  const std::string three = kThree;
  EXPECT_EQ(unsent("/api/press", origin + json + three), "HTTP/1.1 401 Unauthorized");
  EXPECT_EQ(unsent("/WMP_Setup", origin + kForm + three), "HTTP/1.1 401 Unauthorized");
  EXPECT_EQ(unsent("/api/press", session() + json + three), "HTTP/1.1 403 Forbidden");
  EXPECT_EQ(unsent("/api/press", session() + origin + three), "HTTP/1.1 415 Unsupported Media Type");
  EXPECT_EQ(unsent("/api/nothing", session() + origin + json + three), "HTTP/1.1 404 Not Found");
  EXPECT_EQ(unsent("/api/press", session() + origin + json + "Content-Length: 65537\r\n"),
            "HTTP/1.1 413 Payload Too Large");
  EXPECT_EQ(unsent("/api/press", session() + origin + json), "HTTP/1.1 411 Length Required");
}

TEST_F(TheFrontOfTheWeb, UnpacksNoBody) {
  const std::string mine = session() + kOrigin + kThree;
  EXPECT_EQ(unsent("/api/press", mine + kJson + "Content-Encoding: gzip\r\n"),
            "HTTP/1.1 415 Unsupported Media Type");
  EXPECT_EQ(unsent("/WMP_Setup", mine + kForm + "Content-Encoding: br\r\n"),
            "HTTP/1.1 415 Unsupported Media Type");
  for (const char* type : {"multipart/form-data; boundary=b", "%6dultipart/form-data; boundary=b"})
    EXPECT_EQ(unsent("/WMP_Setup", mine + "Content-Type: " + type + "\r\n"),
              "HTTP/1.1 415 Unsupported Media Type");
}

TEST_F(TheFrontOfTheWeb, GivesOneRange) {
  std::ofstream(data / "html/note.txt") << "hello";
  const auto given = [&](const char* range) { return web.get("/note.txt", {{"Range", range}}); };
  const auto middle = given("bytes=1-3");
  EXPECT_EQ(middle->status, 206);
  EXPECT_EQ(middle->body, "ell");
  EXPECT_EQ(middle->get_header_value("Content-Range"), "bytes 1-3/5");
  EXPECT_EQ(given("bytes=3-")->body, "lo");
  EXPECT_EQ(given("bytes=-2")->body, "lo");
  EXPECT_EQ(given("bytes=0-99")->body, "hello");
  EXPECT_EQ(given("bytes=0-99")->get_header_value("Content-Range"), "bytes 0-4/5");
  for (const char* range : {"bytes=5-", "bytes=99-100", "bytes=-0"}) {
    EXPECT_EQ(given(range)->status, 416) << range;
    EXPECT_EQ(given(range)->get_header_value("Content-Range"), "bytes */5") << range;
  }
  EXPECT_EQ(web.get("/note.txt", {{"Range", "bytes=1-3"}, {"If-Range", "W/\"x\""}})->body, "hello");
  EXPECT_EQ(web.get("/nothing", {{"Range", "bytes=1-3"}})->status, 404);
}

TEST_F(TheFrontOfTheWeb, GivesAPartUnpacked) {
  std::ofstream(data / "html/note.txt") << std::string(5000, 'x');
  const auto part = web.get("/note.txt", {{"Range", "bytes=0-3999"}, {"Accept-Encoding", "gzip, br"}});
  EXPECT_EQ(part->status, 206);
  EXPECT_EQ(part->get_header_value("Content-Length"), "4000");
  EXPECT_FALSE(part->has_header("Content-Encoding"));
  EXPECT_EQ(part->body, std::string(4000, 'x'));
}

TEST_F(TheFrontOfTheWeb, GivesNoSecondRange) {
  std::ofstream(data / "html/note.txt") << "hello";
  std::string ranges = "bytes=0-4";
  for (int i = 0; i < 2700; ++i) ranges += ",-1";
  for (const std::string& each : {std::string("bytes=0-1,3-4"), ranges}) {
    EXPECT_EQ(all("GET /note.txt HTTP/1.1\r\nHost: localhost\r\n" + session() + "Range: " + each + "\r\n\r\n")
                  .substr(0, 38),
              "HTTP/1.1 416 Range Not Satisfiable\r\nCo");
  }
}

}  // namespace
}  // namespace standin::testing
