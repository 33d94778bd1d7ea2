// Gestures in any order, with the house, the web and the desktop coming in between.
#include "ui/editor/Gestures.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

std::string Shown(const std::vector<support::Gesture>& played) {
  std::string text;
  for (const auto& [what, first, second] : played)
    text += std::to_string(what) + "," + std::to_string(first) + "," + std::to_string(second) + " ";
  return text;
}

}  // namespace

TEST(Gestures, LeaveWindowAndStoreInStep) {
  for (unsigned seed = 1; seed <= 120; ++seed) {
    std::mt19937 random(seed);
    const auto number = [&] { return static_cast<std::uint8_t>(random() % 256); };
    support::Gestures gestures;
    std::vector<support::Gesture> played;
    for (int i = 0; i < 120; ++i) {
      played.push_back({number(), number(), number()});
      ASSERT_EQ(gestures.play(played.back()), "") << "behind " << Shown(played);
    }
  }
}
