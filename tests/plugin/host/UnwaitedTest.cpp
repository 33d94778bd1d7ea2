// Calls to the host of which nothing is wanted back.
#include "plugin/host/Unwaited.hpp"

#include "support/FailureNumber.hpp"
#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

class Unwaited : public House {
 protected:
  void SetUp() override {
    connect();
    journal.clear();
  }
  static std::string line(const std::string& key) {
    return "SaveINISetting(\"s\", \"" + key + "\", \"v\", \"f\")";
  }
  static void save(plugin::Unwaited& calls, const std::string& key) {
    calls.SaveINISetting("s", key, "v", "f");
  }
};

}  // namespace

TEST_F(Unwaited, CallsGoTogetherWhenTheyAreSettled) {
  plugin::Unwaited calls(plugin.host);
  save(calls, "one");
  save(calls, "two");
  EXPECT_THAT(journal.lines(), IsEmpty());
  calls.settle();
  EXPECT_THAT(journal.lines(), ElementsAre(line("one"), line("two")));
  calls.settle();
  EXPECT_THAT(journal.lines(), SizeIs(2));
}

TEST_F(Unwaited, CallsGoBeforeWhateverElseIsAskedByWhomever) {
  plugin::Unwaited calls(plugin.host);
  save(calls, "one");
  plugin.host.WaitEvents();
  save(calls, "two");
  plugin.host.GetVXIface();
  EXPECT_THAT(journal.lines(), ElementsAre(line("one"), "WaitEvents()", line("two"), "GetVXIface()"));
}

TEST_F(Unwaited, CallsGoWithTheEndOfTheProcedureAtTheLatest) {
  EXPECT_THROW(
      {
        const plugin::Unwaited first(plugin.host);
        plugin::Unwaited calls(plugin.host);
        save(calls, "one");
        throw base::Failure(base::number::kDiskFull);
      },
      base::Failure);
  EXPECT_THAT(journal.lines(), ElementsAre(line("one")));
}

TEST_F(Unwaited, SoManyThatTheyDontWaitForTheEnd) {
  plugin::Unwaited calls(plugin.host);
  for (int i = 0; i < 250; ++i) save(calls, std::to_string(i));
  EXPECT_THAT(journal.lines(), SizeIs(200));
  calls.settle();
  EXPECT_THAT(journal.lines(), SizeIs(250));
  EXPECT_EQ(journal.lines().back(), line("249"));
}

TEST_F(Unwaited, TheFirstFailureIsMetWhereTheyAreSettledAndStopsNone) {
  host->answers["SaveINISetting"] = [](base::Args& args) -> base::Value {
    const std::string key = base::ToText(args[1]);
    if (key == "two") throw base::Failure(base::number::kDiskFull);
    if (key == "three") throw base::Failure(base::number::kPermissionDenied);
    return {};
  };
  plugin::Unwaited calls(plugin.host);
  for (const char* key : {"one", "two", "three", "four"}) save(calls, key);
  plugin.host.WaitEvents();  // they are sent with it, but the failure isn't its own
  EXPECT_EQ(support::FailureNumberOf([&] { calls.settle(); }), base::number::kDiskFull);
  EXPECT_THAT(journal.with("SaveINISetting("), SizeIs(4));
  calls.settle();  // it was met
}

TEST_F(Unwaited, AFailureBelongsToTheProcedureThatMadeTheCall) {
  plugin::Unwaited mine(plugin.host);
  plugin::Unwaited other(plugin.host);
  save(mine, "one");
  save(other, "two");
  host->answers["SaveINISetting"] = [](base::Args& args) -> base::Value {
    if (base::ToText(args[1]) == "one") throw base::Failure(base::number::kDiskFull);
    return {};
  };
  other.settle();
  EXPECT_EQ(support::FailureNumberOf([&] { mine.settle(); }), base::number::kDiskFull);
}

TEST_F(Unwaited, WhatTheHostLetsInMeanwhileGoesBehindThem) {
  plugin::Unwaited calls(plugin.host);
  host->answers["SaveINISetting"] = [this](base::Args& args) -> base::Value {
    if (base::ToText(args[1]) == "one") plugin.host.SaveINISetting("s", "within", "v", "f");
    return {};
  };
  save(calls, "one");
  calls.settle();
  save(calls, "two");
  calls.settle();
  EXPECT_THAT(journal.lines(), ElementsAre(line("one"), line("within"), line("two")));
}

TEST_F(Unwaited, WithoutAHostTheyFailAsEveryCallDoes) {
  plugin.host.Host = nullptr;
  plugin::Unwaited calls(plugin.host);
  save(calls, "one");
  EXPECT_EQ(support::FailureNumberOf([&] { calls.settle(); }), base::number::kObjectMissing);
}

TEST_F(Unwaited, ATurnForTheHostComesBehindThemAndMeetsTheirFailure) {
  plugin::Unwaited calls(plugin.host);
  save(calls, "one");
  loop.post([this] { journal.add("an event of the plug-in's"); });
  calls.WaitEvents();
  EXPECT_THAT(journal.lines(), ElementsAre(line("one"), "WaitEvents()", "an event of the plug-in's"));
  host->failing = {"SaveINISetting"};
  save(calls, "two");
  EXPECT_EQ(support::FailureNumberOf([&] { calls.WaitEvents(); }), host->failureNumber);
  EXPECT_EQ(journal.count("WaitEvents()"), 2U) << "the host has had its turn all the same";
}
