// What ends with a session.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <list>
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
    client.set_read_timeout(60);
    const std::string origin = "http://127.0.0.1:" + std::to_string(house.port());
    const auto answer = client.Post(path, {{"Origin", origin}, {"Cookie", cookie}}, body, "application/json");
    return answer ? answer->status : 0;
  }
  int look(const std::string& cookie) {
    httplib::Client client("127.0.0.1", house.port());
    client.set_read_timeout(60);
    const auto answer = client.Get("/api/state", {{"Cookie", cookie}});
    return answer ? answer->status : 0;
  }

  support::WebHouse house;
};

/// A page's stream, read to its end; of one that was refused nothing is heard.
class Stream {
 public:
  Stream(int port, const std::string& cookie)
      : thread_([this, port, cookie] {
          httplib::Client client("127.0.0.1", port);
          client.set_read_timeout(60);
          client.Get(
              "/api/live", {{"Cookie", cookie}},
              [this](const httplib::Response& head) {
                status_ = head.status;
                return status_ == 200;
              },
              [this](const char* text, std::size_t size) {
                const std::lock_guard lock(mutex_);
                heard_.append(text, size);
                return !over_;
              });
        }) {}
  ~Stream() {
    over_ = true;
    if (thread_.joinable()) thread_.join();
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  Stream(Stream&&) = delete;
  Stream& operator=(Stream&&) = delete;

  std::string heard() {
    const std::lock_guard lock(mutex_);
    return heard_;
  }
  /// The status of the answer, once something has come; 0 where nothing does.
  int status() {
    Eventually([this] { return status_ != 0 && (status_ != 200 || !heard().empty()); });
    return status_;
  }
  std::string toItsEnd() {
    thread_.join();
    return heard();
  }

 private:
  std::mutex mutex_;
  std::string heard_;
  std::atomic<int> status_ = 0;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

void Say(support::WebHouse& house, const std::string& line) {
  house.onLoop([&](standin::House& all) { all.log.write("Info", line); });
}

}  // namespace

TEST_F(Sessions, TakeTheirStreamsAlongBeforeAnythingMoreIsHeard) {
  const std::string cookie = house.sessionOf(standin::kFirstUser);
  Stream stream(house.port(), cookie);
  ASSERT_TRUE(Eventually([&] { return !stream.heard().empty(); }));
  Say(house, "for all to hear");
  EXPECT_TRUE(Eventually([&] { return stream.heard().find("for all to hear") != std::string::npos; }));
  EXPECT_EQ(post("/api/logout", cookie, "{}"), 200);
  Say(house, "not for strangers");
  EXPECT_THAT(stream.toItsEnd(), Not(HasSubstr("not for strangers")));
}

TEST_F(Sessions, EndWithAPasswordThatIsChangedAndWithGuestsThatAreNoLongerLetIn) {
  house.onLoop([](standin::House& all) { all.users.setHash(standin::kGuest, standin::kAdmitted); });
  Stream guest(house.port(), house.sessionOf(standin::kGuest));
  Stream owner(house.port(), house.sessionOf(standin::kFirstUser));
  ASSERT_EQ(guest.status(), 200);
  ASSERT_EQ(owner.status(), 200);
  EXPECT_EQ(post("/api/guests", house.sessionOf(standin::kFirstUser), R"({"guests": "off"})"), 200);
  Say(house, "not for guests");
  EXPECT_THAT(guest.toItsEnd(), Not(HasSubstr("not for guests")));
  EXPECT_TRUE(Eventually([&] { return owner.heard().find("not for guests") != std::string::npos; }));
  EXPECT_EQ(post("/api/password", house.sessionOf(standin::kFirstUser), R"({"password": "long enough"})"),
            200);
  Say(house, "not for who had no password");
  EXPECT_THAT(owner.toItsEnd(), Not(HasSubstr("not for who had no password")));
}

TEST(SessionsByKey, EndWithAPasswordThatIsChangedWhateverBecomesOfThePrintedAddress) {
  support::WebHouse house(std::chrono::minutes(1), true);
  Stream before(house.port(), house.sessionOf(standin::kFirstUser));
  ASSERT_EQ(before.status(), 200);
  house.onLoop([&](standin::House&) {
    house.visitors().passwordChanged = [] { throw base::Failure(base::number::kDiskFull, "No room"); };
  });
  support::WebClient owner(house.port());
  owner.enter(house.key());
  EXPECT_EQ(owner.post("/api/password", {{"password", "long enough"}}), 200) << owner.last;
  EXPECT_EQ(owner.get("/api/state")->status, 200) << "with the cookie that came with the answer";
  Say(house, "not for who had no password");
  EXPECT_THAT(before.toItsEnd(), Not(HasSubstr("not for who had no password")));
  house.onLoop([](standin::House& all) {
    const auto told = all.log.newest(1, "Warning");
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0].text, HasSubstr("No room"));
  });
}

TEST(SessionsByKey, MakeRoomForOneMoreWithTheirStreams) {
  support::WebHouse house(std::chrono::minutes(1), true);
  Stream oldest(house.port(), house.sessionOf(standin::kFirstUser));
  ASSERT_EQ(oldest.status(), 200);
  house.onLoop([](standin::House& all) {
    for (int i = 0; i < 49; ++i) all.users.begin(standin::kFirstUser);
  });
  support::WebClient(house.port()).enter(house.key());
  Say(house, "not for the oldest");
  EXPECT_THAT(oldest.toItsEnd(), Not(HasSubstr("not for the oldest")));
}

TEST_F(Sessions, OfGuestsLeaveTheOwnerAPlaceToHearOfItAll) {
  house.onLoop([](standin::House& all) { all.users.setHash(standin::kGuest, standin::kAdmitted); });
  std::list<Stream> guests;
  for (int i = 0; i < 2; ++i) {
    const std::string cookie = house.sessionOf(standin::kGuest);
    for (int k = 0; k < 8; ++k) guests.emplace_back(house.port(), cookie);
  }
  for (Stream& each : guests) ASSERT_EQ(each.status(), 200);
  Stream oneMore(house.port(), house.sessionOf(standin::kGuest));
  EXPECT_EQ(oneMore.status(), 503);
  Stream owner(house.port(), house.sessionOf(standin::kFirstUser));
  EXPECT_EQ(owner.status(), 200);
  house.end();
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
