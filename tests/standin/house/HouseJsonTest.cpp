#include "standin/house/HouseJson.hpp"

#include <gtest/gtest.h>

namespace standin {
namespace {

std::string Nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

TEST(JsonFromElsewhere, IsReadAsItIs) {
  EXPECT_EQ(ReadJson(R"({"a": [1, "x", null, {"b": true}]})"),
            nlohmann::json({{"a", {1, "x", nullptr, {{"b", true}}}}}));
  EXPECT_TRUE(ReadJson("{").is_discarded());
  EXPECT_TRUE(ReadJson("").is_discarded());
}

TEST(JsonFromElsewhere, MayLieInItselfSoDeepAndNoDeeper) {
  EXPECT_TRUE(ReadJson(Nested(33)).is_array());
  EXPECT_TRUE(ReadJson(Nested(34)).is_discarded());
  EXPECT_TRUE(ReadJson(R"({"a": )" + Nested(33) + ", \"b\": 1}").is_discarded()) << "none of it is read";
  EXPECT_TRUE(ReadJson(Nested(500'000)).is_discarded()) << "deeper than the stack";
}

}  // namespace
}  // namespace standin
