#pragma once
#include <chrono>

#include "base/Loop.hpp"

namespace bus {

/// How long a call's reply is waited for.
enum class Patience {
  kCall,      ///< it may do anything
  kField,     ///< a value is read, or what an object can do
  kUntilQuit  ///< it may do anything, and doesn't hold up an end
};

/// The longest that any reply may take.
constexpr base::Milliseconds kLongestReply = std::chrono::minutes(30);
/// That a field may take of the process that is vouched for.
constexpr base::Milliseconds kLongestField = std::chrono::seconds(10);
/// That a stranger may take with anything.
constexpr base::Milliseconds kLongestOfStrangers = std::chrono::seconds(5);
/// How many strangers are waited for at once.
constexpr int kMostStrangers = 4;

}  // namespace bus
