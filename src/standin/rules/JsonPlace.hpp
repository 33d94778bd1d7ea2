#pragma once
#include <cstdint>
#include <limits>
#include <span>
#include <string>

#include "standin/rules/RuleJson.hpp"

namespace standin {

/// A place in a rule's JSON that is read: it knows where it stands, so that what is wrong there can be told.
class JsonPlace {
 public:
  /// The whole.
  explicit JsonPlace(const nlohmann::json& json) : json_(&json) {}

  /// Throws `BadRule` that says what this place should be.
  [[noreturn]] void refuse(const std::string& why) const;

  /// A field of an object; a place with nothing in it when it is left out.
  [[nodiscard]] JsonPlace field(const char* name) const;
  /// The same for one that must be there.
  [[nodiscard]] JsonPlace needed(const char* name) const;
  [[nodiscard]] bool given() const { return json_ != nullptr; }

  /// An entry of this list; `title` is what a reader calls one of them ("Trigger").
  [[nodiscard]] JsonPlace entry(std::size_t index, const char* title) const;
  /// Its length; 0 when it is left out. Throws when it is no list or holds more.
  [[nodiscard]] std::size_t size(std::size_t most) const;
  /// Throws when it is none.
  void mustBeObject() const;

  [[nodiscard]] std::int64_t whole(std::int64_t least, std::int64_t most) const;
  [[nodiscard]] std::int32_t number(std::int32_t least, std::int32_t most) const {
    return static_cast<std::int32_t>(whole(least, most));
  }
  [[nodiscard]] bool flag(bool usual) const;
  /// Up to `RuleBounds::kText` bytes of plain UTF-8.
  [[nodiscard]] std::string text() const;
  /// The same; an empty one is refused.
  [[nodiscard]] std::string someText() const;
  /// The place in the list of these words.
  [[nodiscard]] std::size_t word(std::span<const char* const> words) const;

 private:
  [[nodiscard]] const nlohmann::json& json() const;

  const nlohmann::json* json_;
  std::string path_;   // for programs
  std::string title_;  // for readers
};

}  // namespace standin
