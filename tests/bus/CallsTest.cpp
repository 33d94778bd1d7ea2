#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Failure.hpp"
#include "bus/Introspection.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Array;
using base::ObjectRef;
using base::Record;
using support::BusPeer;
using support::FailureNumberOf;
using support::ObjectOf;
using support::TableOf;
using testing::HasSubstr;

const std::string kWithCodeZero{"a\0b\0c", 5};
/// Well-formed, but no text to the bus library.
const std::string kNoncharacters =
    "a\xEF\xBF\xBE"
    "b\xEF\xB7\x90\xF0\x9F\xBF\xBF";

struct Sample {
  std::string field = "before";
  ObjectRef given;
  Array list;
};

/// An object with an operation of every shape.
std::shared_ptr<TableOf> MakeSample(const std::shared_ptr<Sample>& sample) {
  return ObjectOf(
      "Sample",
      {Operation("Echo", {Any("value")}, Type::kAny, [](Args& args) { return args[0]; }),
       Operation("Texts", {Number("count")}, Type::kTextList,
                 [](Args& args) {
                   Array texts;
                   for (int i = 0; i < NumberAt(args, 0); ++i) texts.emplace_back(std::to_string(i));
                   return texts;
                 }),
       Operation("List", {}, Type::kTextList, [sample] { return sample->list; }),
       Operation("Sum", {Number("left"), Number("right", 100)}, Type::kInt32,
                 [](Args& args) { return NumberAt(args, 0) + NumberAt(args, 1); }),
       Operation("Swap", {InOut(Text("first")), Short("between"), InOut(Text("second"))}, Type::kBoolean,
                 [](Args& args) {
                   std::swap(args[0], args[2]);
                   return true;
                 }),
       Command("Count", {InOut(Number("counter"))}, [](Args& args) { args[0] = NumberAt(args, 0) + 1; }),
       Command("Fail", {Number("number"), Text("text")},
               [](Args& args) { throw base::Failure(NumberAt(args, 0), TextAt(args, 1)); }),
       Command("Break", {}, [] { throw std::runtime_error("broken"); }),
       Command("Give", {Reference("object")}, [sample](Args& args) { sample->given = ReferenceAt(args, 0); }),
       Operation("GiveBack", {}, Type::kObject, [sample] { return sample->given; }),
       TextField("Field", sample->field), ReadField("Fixed", Type::kInt16, [] { return 5; })});
}

class Calls : public testing::Test {
 protected:
  support::BusDaemon daemon;
  std::shared_ptr<Sample> sample = std::make_shared<Sample>();
  BusPeer peer{daemon.address(), [this](bus::Connection& connection, bus::PollLoop&) {
                 connection.exportObject("/sample", MakeSample(sample));
                 connection.claimName("org.example.Sample");
               }};
  bus::PollLoop loop;
  bus::Connection connection{loop, daemon.address()};
  ObjectRef remote = connection.proxy("org.example.Sample", "/sample");
};

TEST_F(Calls, EveryKindOfValueComesBackAsItWent) {
  const std::vector<Value> values{
      Value(),
      true,
      false,
      std::int16_t{-5},
      std::int32_t{70000},
      2.5,
      "grün ✓",
      "",
      kWithCodeZero,
      "\xff\xfe",
      kNoncharacters,
      Array{},
      Array{"a", "b"},
      Array{std::int16_t{1}, "b", Array{true}, Value()},
      Array{"a", kWithCodeZero},
      Array{"a", kNoncharacters},
      Array{Array{kNoncharacters}, Record{{kNoncharacters, kNoncharacters}, {"key", 1}}},
      Record{{"key", kNoncharacters}},
      Record{{kWithCodeZero, 1}, {"\xff", Record{}}, {"plain", kWithCodeZero}},
      Record{{"zebra", 1}, {"apple", "x"}, {"list", Array{"p"}}, {"record", Record{{"in", 2.0}}}},
      ObjectRef(),
  };
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(values[i], remote->invoke("Echo", values[i])) << i;
}

TEST_F(Calls, ASingleArrivesAsADouble) { EXPECT_EQ(Value(0.5), remote->invoke("Echo", 0.5F)); }

TEST_F(Calls, AResultAndArgumentsThatAreDeclaredAsTextsMayBeAnyText) {
  for (const std::string& text : {kWithCodeZero, kNoncharacters}) {
    Args args{"one", std::int16_t{0}, text};
    EXPECT_EQ(Value(true), remote->call("Swap", args));
    EXPECT_EQ(Value(text), args[0]);
    sample->list = {text, "b", kNoncharacters};
    EXPECT_EQ(Value(sample->list), remote->invoke("List"));
  }
}

TEST_F(Calls, AListOfTextsStaysAListWhenItIsEmpty) {
  EXPECT_EQ(Value(Array{}), remote->invoke("Texts", 0));
  EXPECT_EQ(Value(Array{"0", "1"}), remote->invoke("Texts", 2));
}

TEST_F(Calls, MissingTrailingArgumentsTakeTheirDefaults) {
  EXPECT_EQ(Value(105), remote->invoke("Sum", 5));
  EXPECT_EQ(Value(7), remote->invoke("Sum", 5, 2));
  EXPECT_EQ(base::number::kWrongArguments, FailureNumberOf([&] { remote->invoke("Sum"); }));
  EXPECT_EQ(base::number::kWrongArguments, FailureNumberOf([&] { remote->invoke("Sum", 1, 2, 3); }));
}

TEST_F(Calls, ArgumentsAreConvertedToTheirDeclaredType) {
  EXPECT_EQ(Value(12), remote->invoke("Sum", "10", 2.0));
  EXPECT_EQ(base::number::kTypeMismatch, FailureNumberOf([&] { remote->invoke("Sum", "ten"); }));
}

TEST_F(Calls, InOutArgumentsComeBackBesideTheResult) {
  Args args{"one", std::int16_t{0}, "two"};
  EXPECT_EQ(Value(true), remote->call("Swap", args));
  EXPECT_EQ(Value("two"), args[0]);
  EXPECT_EQ(Value(std::int16_t{0}), args[1]);
  EXPECT_EQ(Value("one"), args[2]);
}

TEST_F(Calls, AnInOutArgumentIsNotTakenForAResult) {
  Args args{41};
  EXPECT_EQ(Value(), remote->call("Count", args));
  EXPECT_EQ(Value(42), args[0]);
}

TEST_F(Calls, NamesAreFoundWithoutRegardToCase) { EXPECT_EQ(Value(3), remote->invoke("sUM", 1, 2)); }

TEST_F(Calls, AFailureArrivesWithItsNumberAndText) {
  for (const std::int32_t number : {5, 462, 35602, base::number::kNameInUse, -2147483647 - 1, 2147483647}) {
    try {
      remote->invoke("Fail", number, "in words: ä");
      FAIL() << number;
    } catch (const base::Failure& failure) {
      EXPECT_EQ(number, failure.number());
      EXPECT_EQ("in words: ä", failure.description());
    }
  }
}

TEST_F(Calls, AFailureArrivesWithTheVeryTextItHas) {
  for (const std::string& text : {kNoncharacters, std::string("\xff\xfe"), std::string("plain")}) {
    try {
      remote->invoke("Fail", 7, text);
      FAIL() << text;
    } catch (const base::Failure& failure) {
      EXPECT_EQ(7, failure.number());
      EXPECT_EQ(text, failure.description());
    }
  }
}

TEST_F(Calls, NamesOfMembersAndFieldsThatNoObjectCanHaveAreFailure438) {
  for (const std::string& name : {kWithCodeZero, kNoncharacters, std::string("\xff\xfe")}) {
    EXPECT_EQ(base::number::kNoSuchMember, FailureNumberOf([&] { remote->invoke(name); }));
    EXPECT_EQ(base::number::kNoSuchMember, FailureNumberOf([&] { remote->get(name); }));
    EXPECT_EQ(base::number::kNoSuchMember, FailureNumberOf([&] { remote->put(name, 1); }));
  }
  EXPECT_EQ(Value(3), remote->invoke("Sum", 1, 2));
}

TEST_F(Calls, IntrospectionStaysReadableWhateverTheNames) {
  peer.run([](bus::Connection& other, bus::PollLoop&) {
    other.exportObject("/strange",
                       ObjectOf("Strange", {Operation("Take", {Text(kNoncharacters, kNoncharacters)},
                                                      Type::kText, [](Args& args) { return args[0]; })}));
  });
  const auto node = bus::ParseNode(connection.introspect("org.example.Sample", "/strange"));
  ASSERT_NE(nullptr, node.findMethod("Take"));
  EXPECT_EQ("a\uFFFDb\uFFFD\uFFFD", node.findMethod("Take")->arguments[0].fallback);
  EXPECT_EQ(Value(kNoncharacters), connection.proxy("org.example.Sample", "/strange")->invoke("Take"));
}

TEST_F(Calls, AnyOtherExceptionIsFailure51) {
  EXPECT_EQ(base::number::kInternal, FailureNumberOf([&] { remote->invoke("Break"); }));
}

TEST_F(Calls, UnknownMembersAndObjectsAreFailure438) {
  const auto number = base::number::kNoSuchMember;
  EXPECT_EQ(number, FailureNumberOf([&] { remote->invoke("Nothing"); }));
  EXPECT_EQ(number, FailureNumberOf([&] { remote->invoke("no name at all"); }));
  EXPECT_EQ(number, FailureNumberOf([&] { remote->get("Nothing"); }));
  EXPECT_EQ(number, FailureNumberOf([&] { remote->put("Fixed", 1); }));
  const auto nobody = connection.proxy("org.example.Sample", "/nobody");
  EXPECT_EQ(number, FailureNumberOf([&] { nobody->invoke("Echo", 1); }));
  EXPECT_EQ(number, FailureNumberOf([&] { nobody->get("Field"); }));
}

TEST_F(Calls, FieldsAreReadAndWritten) {
  EXPECT_EQ(Value("before"), remote->get("Field"));
  for (const std::string& text : {kWithCodeZero, kNoncharacters}) {
    remote->put("Field", text);
    EXPECT_EQ(Value(text), remote->get("field"));
  }
  EXPECT_EQ(Value(std::int16_t{5}), remote->get("Fixed"));
}

TEST_F(Calls, IntrospectionTellsMembersTypesAndArgumentNames) {
  const std::string text = connection.introspect("org.example.Sample", "/sample");
  EXPECT_THAT(text, HasSubstr("<interface name=\"org.vantorix.Sample\">"));
  const auto node = bus::ParseNode(text);
  const auto* swap = node.findMethod("swap");
  ASSERT_NE(nullptr, swap);
  ASSERT_EQ(6U, swap->arguments.size());
  EXPECT_EQ("first", swap->arguments[0].name);
  EXPECT_EQ("s", swap->arguments[0].type);
  EXPECT_EQ("n", swap->arguments[1].type);
  EXPECT_EQ("result", swap->arguments[3].name);
  EXPECT_TRUE(swap->arguments[3].out);
  EXPECT_EQ("second", swap->arguments[5].name);
  EXPECT_EQ("100", node.findMethod("Sum")->arguments[1].fallback);
  EXPECT_EQ("as", node.findMethod("Texts")->arguments[1].type);
  EXPECT_EQ("v", node.findMethod("Echo")->arguments[0].type);
  ASSERT_NE(nullptr, node.findProperty("Fixed"));
  EXPECT_FALSE(node.findProperty("Fixed")->writable);
  EXPECT_TRUE(node.findProperty("Field")->writable);
}

TEST_F(Calls, IntrospectionOfThePathsAboveLeadsToTheObjects) {
  peer.run([](bus::Connection& other, bus::PollLoop&) { other.exportObject("/deep/er", ObjectOf("Deep")); });
  EXPECT_EQ((std::vector<std::string>{"deep", "sample"}),
            bus::ParseNode(connection.introspect("org.example.Sample", "/")).children);
  EXPECT_EQ(std::vector<std::string>{"er"},
            bus::ParseNode(connection.introspect("org.example.Sample", "/deep")).children);
}

TEST_F(Calls, AnObjectThatComesBackToItsOwnerIsTheVerySameObject) {
  const ObjectRef mine = ObjectOf("Mine");
  remote->invoke("Give", mine);
  EXPECT_EQ(Value(mine), remote->invoke("GiveBack"));
  EXPECT_EQ(connection.uniqueName(), bus::Connection::peerOf(*sample->given));
  EXPECT_EQ("", bus::Connection::peerOf(*mine));
}

TEST_F(Calls, TheOwnersOwnObjectComesBackUnwrappedThere) {
  const auto theirs = ObjectOf("Theirs");
  peer.run([&](bus::Connection&, bus::PollLoop&) { sample->given = theirs; });
  const Value reference = remote->invoke("GiveBack");
  peer.run([&](bus::Connection&, bus::PollLoop&) { sample->given = nullptr; });
  remote->invoke("Give", reference);
  peer.run([&](bus::Connection&, bus::PollLoop&) { EXPECT_EQ(theirs, sample->given); });
}

TEST_F(Calls, ASentObjectLivesUntilItsLastProxyHasGone) {
  auto theirs = ObjectOf("Theirs");
  const std::weak_ptr<TableOf> watched = theirs;
  peer.run([&](bus::Connection&, bus::PollLoop&) { sample->given = std::move(theirs); });
  Value first = remote->invoke("GiveBack");
  Value second = remote->invoke("GiveBack");
  peer.run([&](bus::Connection&, bus::PollLoop&) { sample->given = nullptr; });
  first = Value();
  remote->invoke("Sum", 1);
  EXPECT_FALSE(watched.expired()) << "the second proxy holds it";
  second = Value();
  remote->invoke("Sum", 1);
  EXPECT_TRUE(watched.expired());
}

TEST_F(Calls, ASentObjectGoesWithTheProcessThatHeldIt) {
  auto theirs = ObjectOf("Theirs");
  const std::weak_ptr<TableOf> watched = theirs;
  peer.run([&](bus::Connection&, bus::PollLoop&) { sample->given = std::move(theirs); });
  {
    bus::Connection brief(loop, daemon.address());
    const Value held = brief.proxy("org.example.Sample", "/sample")->invoke("GiveBack");
    peer.run([&](bus::Connection&, bus::PollLoop&) { sample->given = nullptr; });
    EXPECT_FALSE(watched.expired());
  }
  EXPECT_TRUE(support::TurnUntil(loop, [&] { return watched.expired(); }));
}

TEST_F(Calls, ACallOnNothingIsFailure91) {
  EXPECT_EQ(base::number::kObjectMissing,
            FailureNumberOf([&] { base::Deref(remote->invoke("GiveBack")).invoke("Any"); }));
}

TEST_F(Calls, AnObjectWithoutATableGivesItsResultOnly) {
  struct Plain : base::Object {
    Value call(std::string_view name, Args& args) override {
      args.clear();
      return name == "Say" ? Value("said") : Value();
    }
    Value get(std::string_view) override { return 3; }
    void put(std::string_view, const Value&) override {}
  };
  peer.run([](bus::Connection& other, bus::PollLoop&) {
    other.exportObject("/plain", std::make_shared<Plain>());
  });
  const auto plain = connection.proxy(peer.uniqueName(), "/plain");
  EXPECT_EQ(Value("said"), plain->invoke("Say", 1, 2));
  EXPECT_EQ(Value(), plain->invoke("Hush", 1));
  EXPECT_EQ(Value(3), plain->get("Any"));
}

TEST_F(Calls, AWithdrawnObjectIsGone) {
  peer.run([](bus::Connection& other, bus::PollLoop&) { other.withdraw("/sample"); });
  EXPECT_EQ(base::number::kNoSuchMember, FailureNumberOf([&] { remote->invoke("Sum", 1); }));
}

TEST_F(Calls, ANameThatIsTakenIsFailure457) {
  EXPECT_EQ(base::number::kKeyInUse, FailureNumberOf([&] { connection.claimName("org.example.Sample"); }));
  EXPECT_EQ(0, FailureNumberOf([&] { connection.claimName("org.example.Other"); }));
  EXPECT_TRUE(connection.hasOwner("org.example.Other"));
  EXPECT_FALSE(connection.hasOwner("org.example.Nobody"));
  EXPECT_EQ(static_cast<std::uint32_t>(::getpid()), connection.processOf("org.example.Sample"));
  EXPECT_EQ(0U, connection.processOf("org.example.Nobody"));
}

TEST_F(Calls, AnObjectOfTheOwnProcessCanBeCalledOverTheBus) {
  connection.exportObject("/own", MakeSample(sample));
  EXPECT_EQ(Value(3), connection.proxy(connection.uniqueName(), "/own")->invoke("Sum", 1, 2));
}

}  // namespace
