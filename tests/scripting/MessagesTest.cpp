// What a script's process and the server tell each other.
#include "scripting/Messages.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <stdexcept>

#include "scripting/ScriptHouse.hpp"
#include "support/FailureNumber.hpp"

namespace {

using base::Array;
using base::Record;
using base::Value;
using scripting::AnswerIn;
using scripting::Ask;
using scripting::AskIn;
using scripting::Encoded;
using scripting::Framed;
using scripting::MessageKind;

Value Nested(int depth) {
  Value value(true);
  for (int i = 0; i < depth; ++i) value = Value(Array{value});
  return value;
}

TEST(ScriptMessages, AValueComesOverAsItWas) {
  const Value all(Array{Value(), Value(true), Value(false), Value(std::int16_t{-3}),
                        Value(std::int32_t{-70000}), Value(2.5F), Value(-1e300), Value("Ä"),
                        Value(std::string("a\0b", 3)), Value(base::ObjectRef()), Value(Array{}),
                        Value(Record{{"Artist", Value("Joni")}, {"", Value(Array{Value("x")})}})});
  EXPECT_EQ(AnswerIn(Encoded(all)), all);
  const auto handle = AnswerIn(Encoded(Value(std::make_shared<scripting::ScriptHandle>(44))));
  ASSERT_TRUE(handle);
  const auto object = std::dynamic_pointer_cast<scripting::ScriptHandle>(base::ToObject(*handle));
  ASSERT_TRUE(object);
  EXPECT_EQ(object->id(), 44);
  EXPECT_TRUE(std::isnan(base::ToDouble(*AnswerIn(Encoded(Value(std::nan("")))))));
}

TEST(ScriptMessages, EveryQuestionComesOverAsItWas) {
  for (const Ask& ask :
       {Ask{MessageKind::kCall, 3, "Play", {Value("Album"), Value()}}, Ask{MessageKind::kGet, -1, "Volume"},
        Ask{MessageKind::kPut, 2, "Volume", {Value(5)}}, Ask{MessageKind::kIsField, 100000, ""},
        Ask{MessageKind::kSleep, 0, "", {Value(1.5)}}}) {
    const std::string content = Encoded(ask);
    const auto read = AskIn({ask.kind, content});
    ASSERT_TRUE(read);
    EXPECT_EQ(read->kind, ask.kind);
    EXPECT_EQ(read->object, ask.object);
    EXPECT_EQ(read->name, ask.name);
    EXPECT_EQ(read->args, ask.args);
    for (std::size_t size = 0; size < content.size(); ++size)
      EXPECT_FALSE(AskIn({ask.kind, std::string_view(content).substr(0, size)})) << size;
    EXPECT_FALSE(AskIn({ask.kind, content + "x"}));
  }
}

TEST(ScriptMessages, AQuestionWithTheArgumentsOfAnotherIsNone) {
  const std::string put = Encoded(Ask{MessageKind::kPut, 2, "Volume", {Value(5)}});
  EXPECT_FALSE(AskIn({MessageKind::kGet, put}));
  EXPECT_FALSE(AskIn({MessageKind::kIsField, put}));
  EXPECT_FALSE(AskIn({MessageKind::kSleep, put}));
  EXPECT_FALSE(AskIn({MessageKind::kPrint, put}));
  EXPECT_FALSE(AskIn({MessageKind::kPut, Encoded(Ask{MessageKind::kGet, 2, "Volume"})}));
  EXPECT_FALSE(AskIn({MessageKind::kSleep, Encoded(Ask{MessageKind::kSleep, 0, "", {Value("long")}})}));
  EXPECT_FALSE(AskIn({MessageKind::kGet, Encoded(Ask{MessageKind::kGet, 2, std::string(1001, 'x')})}));
}

TEST(ScriptMessages, WhatIsTooLargeOrTooDeepIsNotSaid) {
  EXPECT_NO_THROW(Encoded(Nested(60)));
  EXPECT_EQ(support::FailureNumberOf([] { Encoded(Nested(70)); }), base::number::kInvalidArgument);
  const Value large(std::string(std::size_t{70} << 20U, 'x'));
  EXPECT_NO_THROW(Encoded(large)) << "as an answer";
  EXPECT_EQ(support::FailureNumberOf([&] {
              Encoded(Ask{MessageKind::kCall, 3, "Take", {large}});
            }),
            base::number::kOverflow);
}

// A value of a byte takes many in memory.
TEST(ScriptMessages, ASmallMessageOfManyValuesIsNotRead) {
  std::string content = Encoded(Ask{MessageKind::kCall, 3, "Take"});
  const std::size_t count = (std::size_t{64} << 20U) / 64 + 1;
  content.resize(content.size() - 4);
  for (unsigned shift = 0; shift < 32; shift += 8) content += static_cast<char>(count >> shift);
  content.append(count, '\0');
  EXPECT_FALSE(AskIn({MessageKind::kCall, content}));
}

TEST(ScriptMessages, AnArrayWhoseCountIsALieIsNone) {
  EXPECT_FALSE(AnswerIn(std::string("\12\377\377\377\377\0\0", 7)));
  EXPECT_FALSE(AnswerIn(std::string("\13\1\0\0\0\377\377\377\377", 9)));
  EXPECT_FALSE(AnswerIn("\14")) << "no kind of value";
  EXPECT_FALSE(AnswerIn(std::string("\3\0\0\1\0", 5))) << "no number of 16 bits";
}

TEST(ScriptMessages, AnOrderAFailureAndAnEndComeOverAsTheyWere) {
  const auto order = scripting::OrderIn(Encoded(scripting::Order{"a b", "print(1)", 1, 2, 3, 4}));
  ASSERT_TRUE(order);
  EXPECT_EQ(order->name, "a b");
  EXPECT_EQ(order->text, "print(1)");
  EXPECT_EQ(order->computing, 1U);
  EXPECT_EQ(order->whole, 2U);
  EXPECT_EQ(order->output, 3U);
  EXPECT_EQ(order->memory, 4U);
  const auto failure = scripting::FailureIn(Encoded(base::Failure(base::number::kNameInUse, "taken")));
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number(), base::number::kNameInUse);
  EXPECT_EQ(failure->description(), "taken");
  const auto outcome = scripting::OutcomeIn(Encoded(scripting::ScriptOutcome{std::string(10000, 'x'), 7}));
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->error.size(), scripting::kLongestError);
  EXPECT_EQ(outcome->line, 7);
  EXPECT_FALSE(scripting::OutcomeIn(Encoded(scripting::ScriptOutcome{"", -1})));
}

TEST(ScriptMessages, AMessageIsTakenOnceItIsWhole) {
  const std::string all = Framed(MessageKind::kPrint, "one") + Framed(MessageKind::kPrint, "");
  for (std::size_t size = 0; size < 11; ++size) {
    std::string_view come = std::string_view(all).substr(0, size);
    EXPECT_FALSE(scripting::TakeMessage(come, 3));
    EXPECT_EQ(come.size(), size);
  }
  std::string_view come = all;
  EXPECT_EQ(scripting::TakeMessage(come, 3)->content, "one");
  EXPECT_EQ(scripting::TakeMessage(come, 3)->content, "");
  EXPECT_EQ(come, "");
  come = all;
  EXPECT_THROW(scripting::TakeMessage(come, 2), std::length_error);
}

}  // namespace
