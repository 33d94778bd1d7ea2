#include <gtest/gtest.h>

#include <csignal>

#include "support/ForeignProgram.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using base::Value;

namespace {

constexpr const char* kPlugIn = "org.vantorix.vxif_WMP9";

/// Stops a process until the end of the test.
class Halted {
 public:
  explicit Halted(pid_t process) : process_(process) { ::kill(process_, SIGSTOP); }
  ~Halted() { release(); }
  Halted(const Halted&) = delete;
  Halted& operator=(const Halted&) = delete;
  Halted(Halted&&) = delete;
  Halted& operator=(Halted&&) = delete;
  void release() const { ::kill(process_, SIGCONT); }

 private:
  pid_t process_;
};

}  // namespace

TEST(APlugInWhoseServerHangs, EndsWhenItIsToldToAndItsVolumeIsKept) {
  const support::SmallMusic music(2);
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  connection.proxy(kPlugIn, "/scriptclass")->put("Volume", 33);
  const auto process = static_cast<pid_t>(connection.processOf(kPlugIn));
  const Halted server(house.server().id());

  // The first call waits for the log of a server that doesn't answer; the second is served meanwhile.
  support::ForeignProgram caller(house.busAddress());
  caller.send(kPlugIn, "/vxif", "ButtonPress", "s", "No such button");
  caller.send(kPlugIn, "/vxif", "InterfaceStatus", "");
  caller.serveWhile([&] { return caller.answers.empty(); });
  ASSERT_EQ(caller.answers, std::vector<std::string>{""});

  ::kill(process, SIGTERM);
  EXPECT_TRUE(support::Eventually([&] { return !connection.hasOwner(kPlugIn); }));
  server.release();
  const auto host = connection.proxy("org.vantorix.Host", "/host");
  EXPECT_EQ(Value("33"), host->invoke("GetINISetting", "Settings", "Volume", "", "vxif_WMP.ini"));
  EXPECT_TRUE(house.logHas("Error: Media Player: Invalid button pushed: \"No such button\""));
}

TEST(AServerThatWaitsForAHangingProgram, EndsInOrderWhenItIsToldTo) {
  const support::SmallMusic music(2);
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  connection.proxy(kPlugIn, "/scriptclass")->put("Volume", 34);

  // The server asks whoever registers a page for its address, and waits for the answer.
  support::ForeignProgram hanging(house.busAddress());
  hanging.hangs = true;
  hanging.send("org.vantorix.Host", "/host", "RegisterLink", "(so)", "", "/page");
  hanging.serveWhile([&] { return hanging.asked == 0; });

  house.server().signal(SIGTERM);
  EXPECT_EQ(house.server().wait(), 0);
  EXPECT_TRUE(support::Eventually([&] { return !connection.hasOwner(kPlugIn); }));
  ASSERT_TRUE(house.startReady());
  EXPECT_EQ(connection.proxy(kPlugIn, "/scriptclass")->get("Volume"), Value(std::int16_t{34}));
}

TEST(AServerThatWaitsForAHangingProgram, AnswersTheWebMeanwhileAndEndsBeforeAllIsAnswered) {
  const support::SmallMusic music(2);
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  // Far more than it waits for within the time that a page would wait.
  constexpr std::size_t kCalls = 100;
  support::ForeignProgram hanging(house.busAddress());
  hanging.hangs = true;
  for (std::size_t i = 0; i < kCalls; ++i)
    hanging.send("org.vantorix.Host", "/host", "RegisterLink", "(so)", "", "/page");
  hanging.serveWhile([&] { return hanging.asked == 0; });

  EXPECT_EQ(house.pluginState(), "ready");
  EXPECT_EQ(house.press("Status", "Restart"), 200);
  EXPECT_FALSE(house.get("/").empty());
  int turns = 0;
  hanging.serveWhile([&] { return ++turns < 100 && hanging.answers.size() < kCalls; });
  EXPECT_LT(hanging.answers.size(), kCalls);

  house.server().signal(SIGTERM);
  EXPECT_EQ(house.server().wait(), 0);
  EXPECT_LT(static_cast<std::size_t>(hanging.asked), kCalls);
}
