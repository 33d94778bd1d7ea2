#include "standin/player/PluginKeeper.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

TEST(PluginKeeper, ACommandWhoseAnswerCannotBeTakenHoldsUpNoOther) {
  const support::BusDaemon bus;
  const support::TempFolder folder;
  bus::PollLoop loop;
  bus::Connection connection(loop, bus.address());
  standin::House house(folder.path());
  standin::PluginKeeper keeper(loop, connection, house, nullptr);
  EXPECT_NO_THROW(
      keeper.command([](base::Object&) {}, [](const std::string&) { throw std::runtime_error("no room"); }));
  std::string answer;
  keeper.command([](base::Object&) {}, [&](const std::string& failure) { answer = failure; });
  EXPECT_EQ(answer, "The plug-in isn't running");
  const auto lines = house.log.newest(1);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_THAT(lines[0].text, testing::HasSubstr("no room"));
}
