#include "base/MemberWords.hpp"

#include <gtest/gtest.h>

#include "support/FailureNumber.hpp"

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

class Lamp : public base::TableObject {
 public:
  using base::TableObject::call;
  Lamp() {
    Member paint = Field(
        "Paint", Type::kInt16, [] { return Value(); }, [this](const Value& value) { painted = value; });
    Member spray = Command("Spray", {Short("colour")}, [this](Args& args) { painted = args[0]; });
    paint.convertsItself = spray.convertsItself = true;
    setTable(
        {"Lamp",
         {Operation("Dim", {Short("by", 10)}, Type::kInt32,
                    [this](Args& args) { return level -= ShortAt(args, 0); }),
          Command("Swap", {InOut(Text("text"))}, [](Args& args) { args[0] = "swapped " + TextAt(args, 0); }),
          Field(
              "Level", Type::kInt32, [this] { return level; },
              [this](const Value& value) { level = base::ToInt32(value); }),
          ReadField("Watts", Type::kInt16, [] { return 40; }), std::move(paint), std::move(spray),
          WriteField("Secret", Type::kText, [this](const Value& value) { painted = value; }),
          TextField("Label", label), Constant("Maker", Type::kText, "Vantorix"),
          Operation("Colours", {}, Type::kTextList, [] {
            return base::Array{"red", 7};
          })}});
  }
  std::int32_t level = 100;
  std::string label = "desk";
  Value painted;
};

std::vector<std::string> NamesOf(const std::vector<Member>& members) {
  std::vector<std::string> names;
  for (const Member& member : members) names.push_back(member.name);
  return names;
}

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

TEST(MemberWords, AHandlerMayTakeNothingAndGiveNothing) {
  Lamp lamp;
  EXPECT_EQ(lamp.invoke("Colours"), Value(base::Array{"red", "7"}));
  EXPECT_EQ(lamp.invoke("Maker"), Value("Vantorix"));
  EXPECT_TRUE(lamp.invoke("Spray", 1).empty());
}

TEST(MemberWords, ATextFieldIsTheObjectsOwnText) {
  Lamp lamp;
  lamp.put("Label", 7);
  EXPECT_EQ(lamp.label, "7");
  EXPECT_EQ(lamp.get("Label"), Value("7"));
}

TEST(MemberWords, AWriteFieldIsNotRead) {
  Lamp lamp;
  lamp.put("Secret", 5);
  EXPECT_EQ(lamp.painted, Value("5"));
  EXPECT_EQ(support::FailureNumberOf([&] { lamp.get("Secret"); }), base::number::kNoSuchMember);
}

TEST(MemberWords, AnArgumentHasItsTypeAndMayHaveAFallback) {
  const std::vector<Param> params{Any("a"),      Flag("b", true), Short("c", 3), Number("d", 4),
                                  Text("e", ""), Texts("f"),      List("g"),     InOut(Reference("h"))};
  const std::vector<Type> types{Type::kAny,  Type::kBoolean,  Type::kInt16, Type::kInt32,
                                Type::kText, Type::kTextList, Type::kArray, Type::kObject};
  for (std::size_t i = 0; i < params.size(); ++i) {
    EXPECT_EQ(params[i].type, types[i]) << params[i].name;
    EXPECT_EQ(params[i].inOut, params[i].name == "h");
    EXPECT_EQ(params[i].fallback.has_value(), i >= 1 && i <= 4) << params[i].name;
  }
  EXPECT_EQ(params[1].fallback, Value(true));
  EXPECT_EQ(params[2].fallback, Value(std::int16_t{3}));
  EXPECT_EQ(params[3].fallback, Value(4));
  EXPECT_EQ(params[4].fallback, Value(""));
}

TEST(MemberWords, PartsAreJoinedInTheirOrder) {
  const auto part = [](const char* first, const char* second) {
    return std::vector<Member>{Command(first, {}, [] {}), Command(second, {}, [] {})};
  };
  EXPECT_EQ(NamesOf(Joined(part("a", "b"), part("c", "d"), part("e", "f"))),
            (std::vector<std::string>{"a", "b", "c", "d", "e", "f"}));
}
