// The scripts' language, with a house that is made up.
#include <gtest/gtest.h>

#include <chrono>
#include <map>

#include "base/Failure.hpp"
#include "scripting/lua/LuaScript.hpp"

namespace {

using base::Args;
using base::Array;
using base::Failure;
using base::Record;
using base::Value;
using scripting::RunLua;
using scripting::ScriptHandle;
using scripting::ScriptOutcome;

class House : public scripting::ScriptHouse {
 public:
  Value call(std::int32_t object, const std::string& name, Args args) override {
    calls.push_back(std::to_string(object) + " " + name);
    given = std::move(args);
    const auto found = answers.find(name);
    if (found == answers.end()) throw Failure(base::number::kNoSuchMember, "No such member");
    return found->second;
  }
  Value get(std::int32_t, const std::string& name) override { return fields.at(name); }
  void put(std::int32_t, const std::string& name, const Value& value) override { fields[name] = value; }
  bool isField(std::int32_t, const std::string& name) override { return fields.contains(name); }
  void sleep(double seconds) override { slept += seconds; }
  void print(std::string_view text) override { output += text; }
  /// Counts how often it was asked instead of the time, which passes differently on every machine.
  const char* endReason() override { return ++looks > kMostLooks ? "it took too long" : nullptr; }

  std::map<std::string, Value> answers;
  std::map<std::string, Value> fields;
  std::vector<std::string> calls;
  Args given;
  std::string output;
  double slept = 0;
  int looks = 0;
  static constexpr int kMostLooks = 3000;
};

class Script : public testing::Test {
 protected:
  std::string errorOf(const std::string& text) {
    return RunLua("test", text, house, std::size_t{8} << 20U).error;
  }
  std::string outputOf(const std::string& text) {
    house.output.clear();
    EXPECT_EQ(errorOf(text), "");
    return house.output;
  }
  House house;
};

TEST_F(Script, ValuesGoToTheHouse) {
  house.answers["Take"] = Value();
  outputOf("scriptclass.Take(true, 7, 2.5, 'Ä', {1, 'two'}, {Artist = 'Joni'}, nil, host, 3000000000, {})");
  ASSERT_EQ(house.given.size(), 10U);
  EXPECT_EQ(house.given[0], Value(true));
  EXPECT_EQ(house.given[1], Value(std::int32_t{7}));
  EXPECT_EQ(house.given[2], Value(2.5));
  EXPECT_EQ(house.given[3], Value("Ä"));
  EXPECT_EQ(house.given[4], Value(Array{Value(std::int32_t{1}), Value("two")}));
  EXPECT_EQ(house.given[5], Value(Record{{"Artist", Value("Joni")}}));
  EXPECT_TRUE(house.given[6].empty());
  const auto handle = std::dynamic_pointer_cast<ScriptHandle>(base::ToObject(house.given[7]));
  ASSERT_TRUE(handle);
  EXPECT_EQ(handle->id(), scripting::kHostHandle);
  EXPECT_EQ(house.given[8], Value(3000000000.0));
  EXPECT_EQ(house.given[9], Value(Array{}));
}

TEST_F(Script, ValuesComeFromTheHouse) {
  house.answers["List"] = Value(Array{Value("a"), Value(std::int16_t{-3}), Value(Array{Value(true)})});
  house.answers["Info"] = Value(Record{{"Artist", Value("Joni")}, {"Duration", Value(2.5)}});
  house.answers["Nothing"] = Value();
  house.answers["Device"] = Value(base::ObjectRef(std::make_shared<ScriptHandle>(44)));
  EXPECT_EQ(outputOf("local t = scriptclass.List() print(#t, t[1], t[2], t[3][1])"), "3\ta\t-3\ttrue\n");
  EXPECT_EQ(outputOf("local i = scriptclass.Info() print(i.Artist, i.Duration)"), "Joni\t2.5\n");
  EXPECT_EQ(outputOf("print(scriptclass.Nothing())"), "nil\n");
  EXPECT_EQ(outputOf("local d = host.Device() d.List() print(d)"), "object\n");
  EXPECT_EQ(house.calls.back(), "44 List");
}

TEST_F(Script, MembersAreReachedInEveryWay) {
  house.answers["Add"] = Value("done");
  house.fields["Volume"] = Value(std::int16_t{40});
  EXPECT_EQ(outputOf("print(vxif.Add(1), vxif:Add(1), house.call(vxif, 'Add', 1))"), "done\tdone\tdone\n");
  EXPECT_EQ(house.given, Args{Value(std::int32_t{1})});
  EXPECT_EQ(house.calls, (std::vector<std::string>{"2 Add", "2 Add", "2 Add"}));
  EXPECT_EQ(outputOf("vxif.Volume = vxif.Volume + 2 print(house.get(vxif, 'Volume'))"), "42\n");
  EXPECT_EQ(outputOf("house.put(vxif, 'Volume', 5) print(vxif.Volume)"), "5\n");
  outputOf("house.sleep(1.5)");
  EXPECT_EQ(house.slept, 1.5);
}

TEST_F(Script, ErrorsNameTheirLine) {
  const ScriptOutcome syntax = RunLua("test", "print(1)\nif if", house);
  EXPECT_EQ(syntax.line, 2);
  EXPECT_TRUE(syntax.error.starts_with("test:2: unexpected symbol")) << syntax.error;
  const ScriptOutcome error = RunLua("a b", "\n\nerror('oh')", house);
  EXPECT_EQ(error.line, 3);
  EXPECT_EQ(error.error, "a b:3: oh");
  const ScriptOutcome failure = RunLua("test", "\nscriptclass.Missing(1)", house);
  EXPECT_EQ(failure.line, 2);
  EXPECT_EQ(failure.error, "test:2: failure 438: No such member");
  EXPECT_EQ(RunLua("test", "error({})", house).error, "The script raised an error that is no text");
}

TEST_F(Script, AFailureCanBeCaught) {
  EXPECT_EQ(outputOf("print(pcall(scriptclass.Missing, 1))"), "false\tfailure 438: No such member\n");
  EXPECT_EQ(outputOf("print(select(2, pcall(scriptclass.Missing, print)))"),
            "failure 13: A function can't be handed to the house\n");
  EXPECT_EQ(outputOf("local t = {} t[1] = t print((pcall(scriptclass.Missing, t)))"), "false\n");
}

TEST_F(Script, AnEndlessLoopIsStopped) {
  EXPECT_EQ(errorOf("while true do end"), "test:1: it took too long");
}

TEST_F(Script, AnEndlessLoopCannotHideBehindAProtectedCall) {
  EXPECT_NE(errorOf("while true do pcall(function() while true do end end) end").find("it took too long"),
            std::string::npos);
}

TEST_F(Script, AMemoryBombIsStopped) {
  const std::string table = errorOf("local t = {} for i = 1, 1e9 do t[i] = i .. 'some text' end");
  EXPECT_NE(table.find("not enough memory"), std::string::npos) << table;
  const std::string text = errorOf("local s = 'x' while true do s = s .. s end");
  EXPECT_NE(text.find("not enough memory"), std::string::npos) << text;
  EXPECT_NE(errorOf("string.rep('x', 1 << 40)"), "");
  house.answers["List"] = Value(Array(400000, Value("a name that is long enough to count")));
  const std::string list = errorOf("local t = {} for i = 1, 100 do t[i] = scriptclass.List() end");
  EXPECT_NE(list.find("not enough memory"), std::string::npos) << list;
}

TEST_F(Script, NothingLeadsOutOfTheSandbox) {
  for (const char* name : {"io", "debug", "package", "require", "dofile", "loadfile", "load", "loadstring",
                           "collectgarbage", "coroutine", "os.execute", "os.exit", "os.getenv", "os.remove",
                           "os.rename", "os.tmpname", "os.setlocale", "string.dump"}) {
    EXPECT_EQ(outputOf(std::string("print(") + name + ")"), "nil\n") << name;
  }
  EXPECT_NE(errorOf("setmetatable({}, {__gc = function() while true do end end})"), "");
  EXPECT_EQ(outputOf("print(getmetatable(host))"), "object\n");
  EXPECT_NE(errorOf("setmetatable(host, {})"), "");
  EXPECT_NE(errorOf("\x1bLua"), "");
  EXPECT_EQ(outputOf("print(type(os.time()), type(os.date()), type(os.clock()))"),
            "number\tstring\tnumber\n");
  EXPECT_EQ(outputOf("print(setmetatable({}, {__index = {a = 1}}).a)"), "1\n");
}

TEST_F(Script, AStrangeValueIsNoWayToHarm) {
  EXPECT_NE(errorOf("house.call(nil, 'Play')").find("failure 91"), std::string::npos);
  EXPECT_NE(errorOf("house.call({}, 'Play')").find("failure 91"), std::string::npos);
  EXPECT_NE(errorOf("house.call(host, {})").find("failure 13"), std::string::npos);
  EXPECT_NE(errorOf("local f = host.Anything; f(f)").find("failure 13"), std::string::npos);
  EXPECT_NE(errorOf("house.call()").find("failure 91"), std::string::npos);
  EXPECT_NE(errorOf("scriptclass.Take({[true] = 1})").find("failure 13"), std::string::npos);
  EXPECT_NE(errorOf("print(setmetatable({}, {__tostring = function() error('no') end}))").find("no"),
            std::string::npos);
}

// A small table can stand for more than any memory holds.
TEST_F(Script, WhatIsHandedOverHasALimitHoweverSmallItIsInTheScript) {
  house.answers["Take"] = Value();
  EXPECT_NE(
      errorOf("local t = {} for i = 1, 12 do t = {t, t, t, t, t, t, t, t, t, t} end scriptclass.Take(t)")
          .find("The value is too large"),
      std::string::npos);
  EXPECT_NE(errorOf("local s, t = string.rep('x', 1000000), {} for i = 1, 200 do t[i] = s end "
                    "scriptclass.Take(table.unpack(t))")
                .find("The value is too large"),
            std::string::npos);
  house.looks = 0;
  EXPECT_EQ(errorOf("local t = {} for i = 1, 10000 do t[i] = 'title' end scriptclass.Take(t, t)"), "");
}

}  // namespace
