// What guests read in the log: nothing of what is said in the house.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "standin/fakes/WebHouse.hpp"
#include "support/JsonText.hpp"
#include "support/Process.hpp"

namespace {

using support::Eventually;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kHeard = "play night shift";
constexpr const char* kAnswered = "Playing Night Shift";

class TheLog : public testing::Test {
 protected:
  TheLog() {
    house.onLoop([](standin::House& all) { all.users.setHash(standin::kGuest, standin::kAdmitted); });
    owner = house.sessionOf(standin::kFirstUser);
    guest = house.sessionOf(standin::kGuest);
  }
  /// Somebody has spoken in the house, and it has answered; then something happens that is for all.
  void speak() {
    house.onLoop([](standin::House& all) {
      all.log.write("Voice", kHeard);
      all.log.write("Speech", kAnswered);
      all.log.write("Info", "The lamp is on");
    });
  }
  std::string log(const std::string& cookie, const std::string& type = {}) {
    httplib::Client client("127.0.0.1", house.port());
    const auto answer = client.Get("/api/log?type=" + type + "&before=0", {{"Cookie", cookie}});
    return answer && answer->status == 200 ? answer->body : "no answer";
  }

  support::WebHouse house;
  std::string owner;
  std::string guest;
};

/// What a page's stream has heard until the lamp is on.
std::string HeardUntilTheLamp(int port, const std::string& cookie, const std::function<void()>& whenOpen) {
  std::mutex mutex;
  std::string heard;
  const auto now = [&] {
    const std::lock_guard lock(mutex);
    return heard;
  };
  std::thread reader([&] {
    httplib::Client client("127.0.0.1", port);
    client.set_read_timeout(60);
    client.Get("/api/live", {{"Cookie", cookie}}, [&](const char* text, std::size_t size) {
      const std::lock_guard lock(mutex);
      heard.append(text, size);
      return heard.find("The lamp is on") == std::string::npos;
    });
  });
  EXPECT_TRUE(Eventually([&] { return !now().empty(); }));
  whenOpen();
  reader.join();
  return now();
}

TEST_F(TheLog, TellsTheOwnerWhatWasSaidAndNoGuest) {
  speak();
  EXPECT_THAT(log(owner), AllOf(HasSubstr(kHeard), HasSubstr(kAnswered), HasSubstr("The lamp is on")));
  EXPECT_EQ(support::JsonOf(log(owner))["types"].dump(), R"(["Info","Speech","Voice"])");
  EXPECT_THAT(log(guest),
              AllOf(Not(HasSubstr(kHeard)), Not(HasSubstr(kAnswered)), HasSubstr("The lamp is on")));
  EXPECT_EQ(support::JsonOf(log(guest))["types"].dump(), R"(["Info"])");
  for (const std::string type : {"Voice", "Speech"}) {
    EXPECT_EQ(support::JsonOf(log(owner, type))["lines"].size(), 1U) << type;
    EXPECT_EQ(support::JsonOf(log(guest, type))["lines"].size(), 0U) << "asked for by name: " << type;
  }
}

TEST_F(TheLog, GivesAGuestAWholePageOfWhatIsForHim) {
  house.onLoop([](standin::House& all) {
    all.log.write("Info", "long ago");
    for (int i = 0; i < 400; ++i) all.log.write("Voice", kHeard);
  });
  EXPECT_THAT(log(guest), HasSubstr("long ago"));
}

TEST_F(TheLog, IsFollowedLiveByTheSameRule) {
  EXPECT_THAT(HeardUntilTheLamp(house.port(), owner, [&] { speak(); }),
              AllOf(HasSubstr(kHeard), HasSubstr(kAnswered)));
  EXPECT_THAT(HeardUntilTheLamp(house.port(), guest, [&] { speak(); }),
              AllOf(HasSubstr("The lamp is on"), Not(HasSubstr(kHeard)), Not(HasSubstr(kAnswered))));
}

}  // namespace
