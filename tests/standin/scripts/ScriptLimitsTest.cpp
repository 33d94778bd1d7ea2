// What a script may take, and how what takes more is ended.
#include "standin/scripts/ScriptStage.hpp"

namespace {

using standin::ScriptLimits;
using standin::ScriptRunner;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* kTooLong = "the script was stopped: it took too long";

/// Generous where nothing is to be ended.
constexpr ScriptLimits kPatient{.computing = std::chrono::minutes(10), .whole = std::chrono::hours(1)};
constexpr ScriptLimits kImpatient{.computing = std::chrono::milliseconds(300),
                                  .whole = std::chrono::hours(1),
                                  .grace = std::chrono::milliseconds(0)};

class ScriptLimitsTest : public support::ScriptStage {};

TEST_F(ScriptLimitsTest, AStepThatNeverEndsIsEnded) {
  for (const char* text : {
           "table.move({}, 1, 2^40, 2)",
           "string.rep('', 1 << 62)",
           "string.find(string.rep('a', 60), string.rep('a-', 30) .. 'b')",
           "xpcall(function() error() end, function() while true do end end)",
           "local function again() xpcall(error, again) end while true do again() end",
       }) {
    EXPECT_THAT(errorOf(runnerWith(kImpatient), text), EndsWith(kTooLong)) << text;
  }
}

TEST_F(ScriptLimitsTest, ALoopIsEndedWithTheLineItStoodIn) {
  ScriptLimits limits = kImpatient;
  limits.grace = std::chrono::minutes(10);
  EXPECT_EQ(errorOf(runnerWith(limits), "local i = 0\nwhile true do i = i + 1 end"),
            std::string("test:2: ") + kTooLong);
}

TEST_F(ScriptLimitsTest, WhatWaitsTooLongInAllIsEnded) {
  ScriptLimits limits = kPatient;
  limits.whole = std::chrono::milliseconds(300);
  limits.grace = std::chrono::milliseconds(0);
  EXPECT_EQ(errorOf(runnerWith(limits), "while true do house.sleep(3600) end"), kTooLong);
}

TEST_F(ScriptLimitsTest, AWaitForTheHouseIsNoComputing) {
  ScriptLimits limits = kImpatient;
  limits.grace = std::chrono::minutes(10);
  EXPECT_EQ(errorOf(runnerWith(limits), "house.sleep(0.5)"), "");
}

TEST_F(ScriptLimitsTest, MemoryIsBounded) {
  ScriptRunner& runner = runnerWith(kPatient);
  EXPECT_THAT(errorOf(runner, "local s = 'x' while true do s = s .. s end"), EndsWith("not enough memory"));
  EXPECT_THAT(errorOf(runner, "local t = {} for i = 1, 1e9 do t[i] = {i} end"),
              HasSubstr("not enough memory"));
}

TEST_F(ScriptLimitsTest, WhatTheHouseAnswersIsBoundedToo) {
  const base::Value large(std::string(std::size_t{140} << 20U, 'x'));
  host->does["All"] = [&](base::Args&) { return large; };
  ScriptRunner& runner = runnerWith(kPatient);
  EXPECT_EQ(errorOf(runner, "print(select(2, pcall(house.call, host, 'All')))"), "");
  EXPECT_EQ(runner.report(0)->output, "failure 6: The value is too large\n");
}

TEST_F(ScriptLimitsTest, TheProcessOfAScriptCanReachNothingButTheServer) {
  ScriptRunner& runner = runnerWith(kPatient);
  ASSERT_EQ(runner.start("test", "print('on') house.sleep(3600)"), "");
  ASSERT_TRUE(eventually([&] { return !runner.report(0)->output.empty(); }));
  const std::filesystem::path process = "/proc/" + std::to_string(runner.process());
  std::map<std::string, std::string> limits;
  std::ifstream file(process / "limits");
  for (std::string line; std::getline(file, line);)
    limits[line.substr(0, line.find("  "))] = line.substr(26, line.find(' ', 26) - 26);
  EXPECT_EQ(limits["Max open files"], "3");
  EXPECT_EQ(limits["Max processes"], "0");
  EXPECT_EQ(limits["Max file size"], "0");
  EXPECT_EQ(limits["Max core file size"], "0");
  EXPECT_EQ(limits["Max cpu time"], "630");
  const std::filesystem::directory_iterator open(process / "fd");
  EXPECT_EQ(std::distance(begin(open), end(open)), 3);
  std::ifstream status(process / "status");
  const std::string told((std::istreambuf_iterator<char>(status)), std::istreambuf_iterator<char>());
  EXPECT_THAT(told, HasSubstr("NoNewPrivs:\t1"));
  EXPECT_THAT(told, HasSubstr("Seccomp:\t2"));  // a filter
}

TEST_F(ScriptLimitsTest, AllOfTheLanguageGoesOnInTheProcess) {
  ScriptRunner& runner = runnerWith(kPatient);
  host->does["Ask"] = [](base::Args&) { return base::Value("answered"); };
  const char* text = R"(
    local now = os.time()
    print(os.date("!%Y-%m-%d %H:%M", 86400), os.time(os.date("*t", now)) == now, os.difftime(now, now), os.clock() >= 0)
    print(#os.date(), #string.rep("x", 2^24), ("%5.2f|%q"):format(1.5, "a"), ("a,b"):gsub(",", ";"))
    local many = {}
    for i = 1, 200000 do many[i] = { tostring(200001 - i) } end
    table.sort(many, function(a, b) return tonumber(a[1]) < tonumber(b[1]) end)
    print(many[1][1], #many, table.concat({1, 2, 3}, "-"), select("#", table.unpack({1, 2})))
    print(math.random(1, 1), math.type(2^53 // 1 | 0), utf8.len("Grüße"), pcall(error, "told"))
    print(house.call(host, "Ask"), pcall(house.call, host, 7))
    house.sleep(0)
  )";
  EXPECT_EQ(errorOf(runner, text), "");
  EXPECT_EQ(runner.report(0)->output,
            "1970-01-02 00:00\ttrue\t0.0\ttrue\n24\t16777216\t 1.50|\"a\"\ta;b\t1\n1\t200000\t1-2-3\t2\n"
            "1\tinteger\t5\tfalse\ttold\nanswered\tfalse\tfailure 13: The name of a member is a text\n");
}

TEST_F(ScriptLimitsTest, OneRunsAtATime) {
  ScriptRunner& runner = runnerWith(kPatient);
  ASSERT_EQ(runner.start("one", "house.sleep(3600)"), "");
  EXPECT_EQ(runner.start("two", ""), "A script is running; stop it first");
  runner.stop();
  ASSERT_TRUE(ends(runner));
  EXPECT_EQ(errorOf(runner, ""), "");
}

TEST_F(ScriptLimitsTest, AStoppedScriptIsGoneAtOnceWhateverItDoes) {
  for (const char* text : {"print('on') house.sleep(3600)", "print('on') while true do end",
                           "print('on') table.move({}, 1, 2^40, 2)"}) {
    ScriptRunner& runner = runnerWith(kPatient);
    ASSERT_EQ(runner.start("test", text), "");
    ASSERT_TRUE(eventually([&] { return !runner.report(0)->output.empty(); }));
    const pid_t process = runner.process();
    ASSERT_TRUE(isThere(process));
    runner.stop();
    ASSERT_TRUE(ends(runner));
    EXPECT_TRUE(support::Eventually([&] { return !isThere(process); })) << text;
    EXPECT_EQ(runner.report(0)->outcome.error, "the script was stopped") << text;
  }
}

TEST_F(ScriptLimitsTest, TheEndOfTheServerIsTheEndOfItsScript) {
  ScriptRunner& runner = runnerWith(kPatient);
  ASSERT_EQ(runner.start("test", "print('on') while true do end"), "");
  ASSERT_TRUE(eventually([&] { return !runner.report(0)->output.empty(); }));
  const pid_t process = runner.process();
  runnerWith(kPatient);  // in place of the one before, which ends
  EXPECT_TRUE(support::Eventually([&] { return !isThere(process); }));
}

// A wait on the loop ends after those that have begun later, so that of a stopped script would hold them up.
TEST_F(ScriptLimitsTest, TheWaitsOfStoppedScriptsHoldUpNobody) {
  ScriptRunner& runner = runnerWith(kPatient);
  for (int i = 0; i < 60; ++i) {
    ASSERT_EQ(runner.start("test", "print('on') house.call(host, 'WaitSecs', 600)"), "");
    ASSERT_TRUE(eventually([&] { return !runner.report(0)->output.empty(); }));
    runner.stop();
    ASSERT_TRUE(ends(runner));
  }
  EXPECT_THAT(host->calls, ElementsAre()) << "no wait has begun on the loop";
  EXPECT_EQ(errorOf(runner, "house.call(host, 'waitsecs', 0) house.call(host, 'WaitSecs', 0) print('over')"),
            "");
  EXPECT_EQ(runner.report(0)->output, "over\n");
}

TEST_F(ScriptLimitsTest, WhatStoppedScriptsHaveAskedForIsBounded) {
  ScriptRunner& runner = runnerWith(kPatient);
  bool done = false;
  host->does["Long"] = [&](base::Args&) {
    loop.whileOpen([&] {
      if (host->calls.size() == 4) {
        runner.stop();
        EXPECT_TRUE(ends(runner));
        EXPECT_EQ(runner.start("fifth", ""), "What stopped scripts have asked for is still being done");
        done = true;
      } else {
        runner.stop();
        EXPECT_TRUE(ends(runner));
        EXPECT_EQ(runner.start("next", "house.call(host, 'Long')"), "");
        EXPECT_TRUE(eventually([&] { return done; }));
      }
    });
    return base::Value();
  };
  ASSERT_EQ(runner.start("first", "house.call(host, 'Long')"), "");
  ASSERT_TRUE(eventually([&] { return done; }));
  EXPECT_EQ(host->calls.size(), 4U);
  EXPECT_EQ(errorOf(runner, ""), "") << "all of it is over";
}

TEST_F(ScriptLimitsTest, WhatIsPrintedIsThereWhileItRunsAndIsBounded) {
  ScriptRunner& runner = runnerWith(kPatient);
  ASSERT_EQ(runner.start("test", "print('now') house.sleep(3600)"), "");
  EXPECT_TRUE(eventually([&] { return runner.report(0)->output == "now\n"; }));
  runner.stop();
  ASSERT_TRUE(ends(runner));
  EXPECT_EQ(errorOf(runner, "for i = 1, 10000 do print(string.rep('x', 99)) end"), "");
  EXPECT_THAT(runner.report(0)->output, EndsWith("x\n… the rest of the output is left out\n"));
}

}  // namespace
