#include <gtest/gtest.h>

#include "plugin/commands/VoiceTable.hpp"
#include "standin/hearing/PlayerPhrases.hpp"

// The server says what the plug-in is about to do: it has to look for the same phrases in the same order.
TEST(VoicePhrases, AreTheSameOnBothSides) { EXPECT_EQ(standin::PlayerPhrases(), plugin::VoicePhrases()); }
