#include "pictures/Shrinking.hpp"

#include <gtest/gtest.h>

namespace pictures {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Of grey pixels.
Bytes Shrunk(const std::vector<Bytes>& rows, Size to) {
  Shrinking shrinking({static_cast<int>(rows.front().size()), static_cast<int>(rows.size())}, to);
  for (const Bytes& row : rows) {
    Bytes colours;
    for (const std::uint8_t grey : row) colours.insert(colours.end(), 3, grey);
    shrinking.add(colours.data());
  }
  Bytes greys;
  for (std::size_t i = 0; i < shrinking.pixels().size(); i += 3) greys.push_back(shrinking.pixels()[i]);
  return greys;
}

TEST(Shrinking, ANewPixelIsTheMeanOfThoseThatItCovers) {
  EXPECT_EQ(Shrunk({{0, 100, 10, 20}, {200, 100, 30, 40}}, {2, 1}), (Bytes{100, 25}));
  EXPECT_EQ(Shrunk({{255, 255}, {255, 254}}, {1, 1}), (Bytes{255})) << "rounded";
}

TEST(Shrinking, OldPixelsThatLieUnderTwoNewOnesArePartOfBoth) {
  EXPECT_EQ(Shrunk({{0, 90, 210}}, {2, 1}), (Bytes{30, 170}));
  EXPECT_EQ(Shrunk({{0}, {90}, {210}}, {1, 2}), (Bytes{30, 170}));
}

TEST(Shrinking, OneThatIsNotMadeSmallerStaysAsItIs) {
  EXPECT_EQ(Shrunk({{1, 2, 3}, {4, 5, 6}}, {3, 2}), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(Shrinking, EachColourIsByItself) {
  Shrinking shrinking({2, 1}, {1, 1});
  shrinking.add(Bytes{10, 100, 200, 20, 110, 220}.data());
  EXPECT_EQ(shrinking.pixels(), (Bytes{15, 105, 210}));
}

}  // namespace
}  // namespace pictures
