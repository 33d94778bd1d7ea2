#include "base/Members.hpp"

#include <gtest/gtest.h>

#include "support/FailureNumber.hpp"

using base::Args;
using base::MemberKind;
using base::Type;
using base::Value;

namespace {

class Lamp : public base::TableObject {
 public:
  using base::TableObject::call;
  Lamp() {
    setTable({"Lamp",
              {{"Dim",
                MemberKind::kOperation,
                {{"by", Type::kInt16, Value(std::int16_t{10})}},
                Type::kInt32,
                [this](Args& args) { return Value(level -= base::ToInt16(args[0])); }},
               {"Swap",
                MemberKind::kOperation,
                {{"text", Type::kText, {}, true}},
                Type::kNone,
                [](Args& args) {
                  args[0] = "swapped " + base::ToText(args[0]);
                  return Value();
                }},
               {"Level",
                MemberKind::kField,
                {},
                Type::kInt32,
                [this](Args&) { return Value(level); },
                [this](const Value& value) { level = base::ToInt32(value); }},
               {"Watts", MemberKind::kReadField, {}, Type::kInt16, [](Args&) { return Value(40); }},
               {"Paint",
                MemberKind::kField,
                {},
                Type::kInt16,
                [](Args&) { return Value(); },
                [this](const Value& value) { painted = value; },
                true},
               {"Spray",
                MemberKind::kOperation,
                {{"colour", Type::kInt16}},
                Type::kNone,
                [this](Args& args) {
                  painted = args[0];
                  return Value();
                },
                {},
                true}}});
  }
  std::int32_t level = 100;
  Value painted;
};

}  // namespace

TEST(TableObject, FillsInTheDefaultOfAMissingArgument) {
  Lamp lamp;
  EXPECT_EQ(lamp.invoke("Dim"), Value(90));
  EXPECT_EQ(lamp.invoke("Dim", "5"), Value(85));
}

TEST(TableObject, GivesChangedArgumentsBack) {
  Lamp lamp;
  Args args{Value("me")};
  EXPECT_TRUE(lamp.call("Swap", args).empty());
  EXPECT_EQ(args[0], Value("swapped me"));
}

TEST(TableObject, FindsMembersWithoutRegardToCase) {
  Lamp lamp;
  EXPECT_EQ(lamp.get("LEVEL"), Value(100));
  lamp.put("level", "7");
  EXPECT_EQ(lamp.level, 7);
}

TEST(TableObject, ReadsAFieldThatIsCalled) {
  Lamp lamp;
  EXPECT_EQ(lamp.invoke("Level"), Value(100));
}

TEST(TableObject, RefusesWhatItsTableDoesNotHold) {
  Lamp lamp;
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.invoke("Explode"); }), base::number::kNoSuchMember);
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.put("Watts", 5); }), base::number::kNoSuchMember);
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.get("Dim"); }), base::number::kNoSuchMember);
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.invoke("Dim", 1, 2); }), base::number::kWrongArguments);
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.invoke("Swap"); }), base::number::kWrongArguments);
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.invoke("Dim", 99999); }), base::number::kOverflow);
}

TEST(TableObject, ConvertsItsResultToTheDeclaredType) {
  Lamp lamp;
  EXPECT_EQ(lamp.get("Watts"), Value(std::int16_t{40}));
}

TEST(TableObject, HandsValuesAsTheyComeToAMemberThatConvertsItself) {
  Lamp lamp;
  lamp.invoke("Spray", "red");
  EXPECT_EQ(lamp.painted, Value("red"));
  lamp.put("Paint", "blue");
  EXPECT_EQ(lamp.painted, Value("blue"));
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.put("Level", "blue"); }), base::number::kTypeMismatch);
}
