#pragma once
#include <array>

// The words that a rule's JSON has for what the program counts, in the order of the kinds that they name.
namespace standin::rulenames {

inline constexpr std::array kFields{"status", "value", "text"};
inline constexpr std::array kCompared{"changes", "equals", "above", "below"};
inline constexpr std::array kCommands{"on", "off", "value", "press"};
inline constexpr std::array kThen{"nothing", "pause", "stop"};
inline constexpr std::array kAgain{"leave", "restart", "queue", "together"};

}  // namespace standin::rulenames
