#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bus/Marshal.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

using base::Array;
using base::Record;
using support::FailureNumberOf;

constexpr std::size_t kMebibyte = std::size_t{1} << 20U;
/// Well-formed, but no text to the bus library.
const std::string kNoncharacter = "\xEF\xBF\xBE";

std::string Large(std::size_t mebibytes) { return std::string(mebibytes * kMebibyte, 'x'); }

/// Lists within lists.
Value Nested(int levels) {
  Value inner = 1;
  for (int i = 0; i < levels; ++i) inner = Array{inner, "beside"};
  return inner;
}

/// An object whose answers are as large as its caller asks, on a bus that cuts off whoever sends too much.
class Limits : public testing::Test {
 protected:
  template <class Answer>
  static Member sized(std::string name, Type result, Answer answer) {
    return Operation(std::move(name), {Any("argument", Value())}, result, std::move(answer));
  }
  void expectRefused(const std::function<void()>& call) {
    try {
      call();
      ADD_FAILURE() << "nothing is refused";
    } catch (const base::Failure& failure) {
      EXPECT_EQ(base::number::kOverflow, failure.number());
      EXPECT_THAT(failure.description(), testing::HasSubstr("can't be larger than"));
    }
    EXPECT_EQ(Value("well"), remote->invoke("Echo", "well")) << "both connections live";
  }

  support::BusDaemon daemon;
  std::string field;
  support::BusPeer peer{
      daemon.address(), [this](bus::Connection& connection, bus::PollLoop&) {
        connection.exportObject(
            "/large",
            support::ObjectOf(
                "Large",
                {sized("Echo", Type::kAny, [](Args& args) { return args[0]; }),
                 sized("Text", Type::kText, [](Args& args) { return Large(NumberAt(args, 0)); }),
                 sized("Bytes", Type::kText,
                       [](Args& args) { return Large(NumberAt(args, 0)) + kNoncharacter; }),
                 sized("List", Type::kTextList,
                       [](Args& args) { return Array(NumberAt(args, 0), Large(1)); }),
                 sized("Record", Type::kRecord,
                       [](Args& args) {
                         return Record(NumberAt(args, 0), {"key", Large(1)});
                       }),
                 sized("Nested", Type::kArray, [](Args& args) { return Nested(NumberAt(args, 0)); }),
                 sized("Fail", Type::kNone,
                       [](Args& args) -> Value { throw base::Failure(7, Large(NumberAt(args, 0))); }),
                 Command("Back", {InOut(Text("text"))}, [](Args& args) { args[0] = Large(128); }),
                 Field(
                     "Field", Type::kText, [] { return Large(128); },
                     [this](const Value& value) { field = base::ToText(value); })}));
        connection.claimName("org.example.Large");
      }};
  bus::PollLoop loop;
  bus::Connection connection{loop, daemon.address()};
  base::ObjectRef remote = connection.proxy("org.example.Large", "/large");
};

TEST_F(Limits, ALargeReplyArrives) {
  EXPECT_EQ(Value(Large(8)), remote->invoke("Text", 8));
  EXPECT_EQ(Value(Large(8) + kNoncharacter), remote->invoke("Bytes", 8));
}

TEST_F(Limits, AReplyThatIsTooLargeIsAFailureToTheCaller) {
  expectRefused([&] { remote->invoke("Text", 128); });
  expectRefused([&] { remote->invoke("Bytes", 65); });
  expectRefused([&] { remote->invoke("List", 65); });
  expectRefused([&] { remote->invoke("Record", 65); });
  expectRefused([&] { remote->invoke("Back", "x"); });
}

TEST_F(Limits, AFieldThatIsTooLargeIsAFailureToItsReader) {
  expectRefused([&] { remote->get("Field"); });
}

TEST_F(Limits, ACallThatIsTooLargeIsNotSent) {
  expectRefused([&] { remote->invoke("Echo", Large(128)); });
  expectRefused([&] { remote->invoke("Echo", Large(70), Large(70)); });
  expectRefused([&] { remote->put("Field", Large(128)); });
  expectRefused([&] { remote->invoke("Echo", Array(65, Large(1))); });
  peer.stop();
  EXPECT_EQ("", field);
}

TEST_F(Limits, WhatAFailureHasToSayIsCut) {
  try {
    remote->invoke("Fail", 2);
    FAIL();
  } catch (const base::Failure& failure) {
    EXPECT_EQ(7, failure.number());
    EXPECT_EQ(Large(1), failure.description());
  }
}

TEST_F(Limits, ListsWithinListsAreSentAsDeepAsTheBusTakesThem) {
  int deepest = 0;
  for (int levels = 1; levels <= 80; ++levels) {
    const int number = FailureNumberOf([&] { EXPECT_EQ(Nested(levels), remote->invoke("Nested", levels)); });
    EXPECT_TRUE(number == 0 || number == base::number::kInvalidArgument) << number << " at " << levels;
    if (number == 0) deepest = levels;
  }
  EXPECT_GE(deepest, 30);
  EXPECT_EQ(Value("well"), remote->invoke("Echo", "well"));
}

}  // namespace
