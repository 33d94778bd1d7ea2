#include "base/Value.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "base/Object.hpp"
#include "support/FailureNumber.hpp"

using base::Value;

TEST(ToBoolean, TakesWordsInAnyCaseAndNumbers) {
  EXPECT_TRUE(ToBoolean(Value("True")));
  EXPECT_TRUE(ToBoolean(Value("TRUE")));
  EXPECT_FALSE(ToBoolean(Value("false")));
  EXPECT_TRUE(ToBoolean(Value("-1")));
  EXPECT_FALSE(ToBoolean(Value(" 0 ")));
  EXPECT_TRUE(ToBoolean(Value(0.5)));
  EXPECT_FALSE(ToBoolean(Value()));
  EXPECT_TRUE(ToBoolean(Value(std::int16_t{2})));
}

TEST(ToBoolean, RefusesOtherTexts) {
  for (const char* text : {"", "yes", "1x", "tru", "--1", "+-1", "+", "nan", "inf"})
    EXPECT_EQ(support::FailureNumberOf([&] { ToBoolean(Value(text)); }), base::number::kTypeMismatch) << text;
}

TEST(ToInt16, RoundsHalfToEvenAndOverflowsPastItsRange) {
  EXPECT_EQ(ToInt16(Value(2.5)), 2);
  EXPECT_EQ(ToInt16(Value(3.5)), 4);
  EXPECT_EQ(ToInt16(Value("32767")), 32767);
  EXPECT_EQ(support::FailureNumberOf([] { ToInt16(Value(32768)); }), base::number::kOverflow);
  EXPECT_EQ(ToInt16(Value(true)), -1);
}

TEST(ToInt32, OverflowsPastItsRange) {
  EXPECT_EQ(ToInt32(Value(2147483647.0)), 2147483647);
  EXPECT_EQ(support::FailureNumberOf([] { ToInt32(Value(2147483648.0)); }), base::number::kOverflow);
  EXPECT_EQ(support::FailureNumberOf([] { ToInt32(Value("1e999")); }), base::number::kOverflow);
  EXPECT_EQ(support::FailureNumberOf([] { ToInt32(Value(std::numeric_limits<double>::quiet_NaN())); }),
            base::number::kOverflow);
}

TEST(ToText, WritesNumbersAsPeopleReadThem) {
  EXPECT_EQ(ToText(Value(100000.0F)), "100000");
  EXPECT_EQ(ToText(Value(1.25)), "1.25");
  EXPECT_EQ(ToText(Value(-7)), "-7");
  EXPECT_EQ(ToText(Value(true)), "True");
  EXPECT_EQ(ToText(Value(false)), "False");
  EXPECT_EQ(ToText(Value()), "");
  EXPECT_EQ(ToText(Value(1e300)), "1e+300");
}

TEST(Conversions, RefuseObjectsAndArrays) {
  EXPECT_EQ(support::FailureNumberOf([] { ToText(Value(base::ObjectRef())); }), base::number::kTypeMismatch);
  EXPECT_EQ(support::FailureNumberOf([] { ToDouble(Value(base::Array{})); }), base::number::kTypeMismatch);
  EXPECT_EQ(support::FailureNumberOf([] { ToObject(Value("text")); }), base::number::kTypeMismatch);
}

TEST(Deref, FailsWithNumber91OnNothing) {
  EXPECT_EQ(support::FailureNumberOf([] { base::Deref(Value()); }), base::number::kObjectMissing);
  EXPECT_EQ(support::FailureNumberOf([] { base::Deref(Value(base::ObjectRef())); }),
            base::number::kObjectMissing);
}

TEST(NumericPrefix, ReadsTheNumberThatATextBeginsWith) {
  EXPECT_EQ(base::NumericPrefix("12abc"), 12);
  EXPECT_EQ(base::NumericPrefix("  -3.5 dB"), -3.5);
  EXPECT_EQ(base::NumericPrefix("1 2 3"), 123);
  EXPECT_EQ(base::NumericPrefix("+4"), 4);
  EXPECT_EQ(base::NumericPrefix("1e2x"), 100);
  EXPECT_EQ(base::NumericPrefix("abc"), 0);
  EXPECT_EQ(base::NumericPrefix(""), 0);
  EXPECT_EQ(base::NumericPrefix("-"), 0);
  EXPECT_EQ(base::NumericPrefix("9.0.1"), 9);
}

TEST(Value, ComparesKindAndContent) {
  EXPECT_EQ(Value(1), Value(1));
  EXPECT_FALSE(Value(1) == Value(std::int16_t{1}));
  EXPECT_EQ(Value(base::Array{1, "a"}), Value(base::Array{1, "a"}));
  EXPECT_FALSE(Value(base::Array{1}) == Value(base::Array{2}));
  EXPECT_EQ(Value(base::Record{{"k", 1}}), Value(base::Record{{"k", 1}}));
}
