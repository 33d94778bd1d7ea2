#pragma once
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace engine {

/// Finds numbers by what they stand for, at some six bytes a number: only the numbers are kept, and who asks
/// says what they stand for. Nothing is ever taken out.
class IdTable {
 public:
  using Id = std::uint32_t;
  static constexpr Id kNone = std::numeric_limits<Id>::max();

  /// The number with that hash for which `same` is true, or `kNone`.
  template <typename Same>
  [[nodiscard]] Id find(std::size_t hash, const Same& same) const {
    if (slots_.empty()) return kNone;
    for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
      const Id id = slots_[at];
      if (id == kNone || same(id)) return id;
    }
  }

  /// Adds a number that is not in it. `hashOf` answers the hash of any number in it.
  template <typename HashOf>
  void insert(Id id, const HashOf& hashOf) {
    if ((count_ + 1) * 4 > slots_.size() * 3) {
      std::vector<Id> old(slots_.empty() ? 64 : slots_.size() * 2, kNone);
      old.swap(slots_);
      for (const Id moved : old) {
        if (moved != kNone) place(moved, hashOf(moved));
      }
    }
    place(id, hashOf(id));
    ++count_;
  }

 private:
  [[nodiscard]] std::size_t mask() const { return slots_.size() - 1; }
  void place(Id id, std::size_t hash) {
    std::size_t at = hash & mask();
    while (slots_[at] != kNone) at = (at + 1) & mask();
    slots_[at] = id;
  }

  std::vector<Id> slots_;  ///< as many as a power of two, a quarter of them free
  std::size_t count_ = 0;
};

}  // namespace engine
