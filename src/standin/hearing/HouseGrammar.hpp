#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "standin/grammar/Grammar.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// The grammar of all events of the house, made anew when one of their patterns has changed.
class HouseGrammar {
 public:
  explicit HouseGrammar(House& house) : house_(house) {}

  struct Entry {
    std::int32_t event = 0;
    std::shared_ptr<const Pattern> pattern;
  };

  /// As the patterns are now. What it answers stays as it is when they change.
  std::shared_ptr<const Grammar> now();
  /// Of the events with a pattern, by their number.
  const std::vector<Entry>& entries();
  /// The library's own name for one that stands in a pattern; the same where it has no other.
  [[nodiscard]] std::string libraryName(const std::string& category, const std::string& words) const;
  /// Grows when `now` answers something else.
  [[nodiscard]] std::uint64_t revision() const { return house_.events.patternsRevision(); }

 private:
  void refresh();

  House& house_;
  std::uint64_t revision_ = 0;
  std::vector<Entry> entries_;
  std::shared_ptr<const Grammar> grammar_;
};

}  // namespace standin
