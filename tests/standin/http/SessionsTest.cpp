// What ends with a session.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "standin/fakes/WebHouse.hpp"
#include "support/FailureNumber.hpp"
#include "support/Process.hpp"

namespace {

using support::Eventually;
using testing::HasSubstr;
using testing::Not;

class Sessions : public testing::Test {
 protected:
  int post(const std::string& path, const std::string& cookie, const std::string& body) {
    httplib::Client client("127.0.0.1", house.port());
    const std::string origin = "http://127.0.0.1:" + std::to_string(house.port());
    const auto answer = client.Post(path, {{"Origin", origin}, {"Cookie", cookie}}, body, "application/json");
    return answer ? answer->status : 0;
  }
  int look(const std::string& cookie) {
    httplib::Client client("127.0.0.1", house.port());
    const auto answer = client.Get("/api/state", {{"Cookie", cookie}});
    return answer ? answer->status : 0;
  }

  support::WebHouse house;
};

/// A page's stream, read to its end.
class Stream {
 public:
  Stream(int port, const std::string& cookie)
      : thread_([this, port, cookie] {
          httplib::Client client("127.0.0.1", port);
          client.set_read_timeout(60);
          client.Get("/api/live", {{"Cookie", cookie}}, [this](const char* text, std::size_t size) {
            const std::lock_guard lock(mutex_);
            heard_.append(text, size);
            return true;
          });
        }) {}
  std::string heard() {
    const std::lock_guard lock(mutex_);
    return heard_;
  }
  std::string toItsEnd() {
    thread_.join();
    return heard();
  }

 private:
  std::mutex mutex_;
  std::string heard_;
  std::thread thread_;
};

}  // namespace

TEST_F(Sessions, TakeTheirStreamsAlongBeforeAnythingMoreIsHeard) {
  const std::string cookie = house.sessionOf(standin::kFirstUser);
  Stream stream(house.port(), cookie);
  ASSERT_TRUE(Eventually([&] { return !stream.heard().empty(); }));
  house.onLoop([](standin::House& all) { all.log.write("Info", "for all to hear"); });
  EXPECT_TRUE(Eventually([&] { return stream.heard().find("for all to hear") != std::string::npos; }));
  EXPECT_EQ(post("/api/logout", cookie, "{}"), 200);
  house.onLoop([](standin::House& all) { all.log.write("Info", "not for strangers"); });
  EXPECT_THAT(stream.toItsEnd(), Not(HasSubstr("not for strangers")));
}

TEST_F(Sessions, OfOneBrowserFollowEachOther) {
  house.onLoop([](standin::House& all) { all.users.setHash(standin::kGuest, standin::kAdmitted); });
  const std::string cookie = house.sessionOf(standin::kFirstUser);
  EXPECT_EQ(look(cookie), 200);
  EXPECT_EQ(post("/api/login", cookie, R"({"name": "guest"})"), 200);
  EXPECT_EQ(look(cookie), 401);
}

TEST_F(Sessions, AreRefusedAsSuchWhereTheDiskIsFullAndTheOneBeforeLivesOn) {
  const std::string before = house.sessionOf(standin::kGuest);
  house.onLoop([](standin::House& all) { all.users.setHash(standin::kGuest, standin::kAdmitted); });
  const std::string guest = house.sessionOf(standin::kGuest);
  EXPECT_EQ(look(before), 401);
  ASSERT_EQ(look(guest), 200);
  house.onLoop([](standin::House& all) {
    all.database.run("PRAGMA max_page_count=1");  // which stands for as many as there are
    database::Statement fill(all.database,
                             "INSERT INTO session (token, user, expires) VALUES (?, 'owner', 1 << 40)");
    const auto one = [&] { fill.with(standin::RandomToken()).run(); };
    int filled = 0;
    while (support::FailureNumberOf(one) == 0) ASSERT_LT(++filled, 1000);
  });
  httplib::Client client("127.0.0.1", house.port());
  const std::string origin = "http://127.0.0.1:" + std::to_string(house.port());
  const auto answer = client.Post("/api/login", {{"Origin", origin}, {"Cookie", guest}},
                                  R"({"name": "guest"})", "application/json");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 507);
  EXPECT_EQ(answer->body, R"({"error":"The house's disk is full"})");
  EXPECT_FALSE(answer->has_header("Set-Cookie"));
  EXPECT_EQ(look(guest), 200);
  house.onLoop([](standin::House& all) { all.database.run("PRAGMA max_page_count=100000"); });
  EXPECT_EQ(post("/api/login", guest, R"({"name": "guest"})"), 200);
  EXPECT_EQ(look(guest), 401);
}
