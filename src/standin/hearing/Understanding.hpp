#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace standin {

/// What has become of something that was said.
struct Understanding {
  enum class Kind {
    kDone,     ///< it was understood and done
    kUnclear,  ///< one of `choices` may have been meant; nothing was done
    kUnknown,  ///< nothing that can be said fits
    kSilence,  ///< nobody has spoken
    kDeaf,     ///< there is nobody who could listen
    kFailed,   ///< it was understood, and could not be done
  };
  /// A command to choose, and how a person knows it: with the library's own names in it.
  struct Choice {
    std::string command;
    std::string label;
    bool operator==(const Choice&) const = default;
  };
  Kind kind = Kind::kUnknown;
  std::string heard{};                 ///< as it was typed or recognised
  std::string command{};               ///< in the pattern's words, where it was understood
  std::vector<std::string> events{};   ///< names of those that it was for
  std::string says{};                  ///< the house's answer, in words
  std::vector<Choice> choices{};       ///< for `kUnclear`
  std::optional<double> confidence{};  ///< of what was heard
};

}  // namespace standin
