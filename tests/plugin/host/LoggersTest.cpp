#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;

namespace {
class Loggers : public House {
 protected:
  void SetUp() override {
    connect();
    journal.clear();
  }
};
}  // namespace

TEST_F(Loggers, EachHasItsOwnWords) {
  plugin.loggers.LogPluginError(5, "Invalid argument", "InitIO");
  plugin.loggers.LogModuleError(9, "Index out of range", "WebModule", "GenPage");
  plugin.loggers.LogFormError(13, "Type mismatch", "MyPlayStateChange");
  EXPECT_THAT(journal.lines(),
              ElementsAre("WriteLog(\"Error\", \"Media Player: Could not complete procedure Media "
                          "Player/InitIO Error # 5: Invalid argument\")",
                          "WriteLog(\"Error\", \"Media Player Could not complete procedure "
                          "WebModule/GenPage Error # 9: Index out of range\")",
                          "WriteLog(\"Error\", \"Media Player Error# 13: Type mismatch\")"));
  EXPECT_FALSE(platform.ended);
}

TEST_F(Loggers, AGoneHostEndsTheProcessWithoutALine) {
  plugin.loggers.LogFormError(462, "gone", "MyPlayStateChange");
  EXPECT_THAT(journal.lines(), ElementsAre("End"));
}

TEST_F(Loggers, AFormErrorThatCannotBeLoggedEndsTheProcess) {
  host->failing = {"WriteLog"};
  plugin.loggers.LogFormError(13, "Type mismatch", "MyPlayStateChange");
  EXPECT_TRUE(platform.ended);
}

TEST_F(Loggers, TheOtherLoggersSkipAFailedLogCall) {
  host->failing = {"WriteLog"};
  plugin.loggers.LogPluginError(5, "x", "InitIO");
  plugin.loggers.LogModuleError(5, "x", "CommonModule", "InitHW");
  EXPECT_FALSE(platform.ended);
}

TEST_F(Loggers, DebugLinesAreWrittenOnlyWhileDebugging) {
  plugin.loggers.Debug("quiet");
  plugin.state.DebugMessages = true;
  plugin.loggers.Debug("told");
  EXPECT_THAT(journal.lines(), ElementsAre("WriteLog(\"Debug\", \"told\")"));
}
