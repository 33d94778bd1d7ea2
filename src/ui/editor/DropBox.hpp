#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ui::editor {

/// A drop-down list of names that keeps them in alphabetical order by itself. Adding many and then reading
/// costs one sort.
class DropBox {
 public:
  /// While one lives, the view is not told of changes; at its end it is told of all of them.
  class Filling {
   public:
    explicit Filling(DropBox& box) : box_(box) { ++box_.fillings_; }
    ~Filling() {
      if (--box_.fillings_ == 0) box_.changed();
    }
    Filling(const Filling&) = delete;
    Filling& operator=(const Filling&) = delete;
    Filling(Filling&&) = delete;
    Filling& operator=(Filling&&) = delete;

   private:
    DropBox& box_;
  };

  /// Whether a choice is refused now: then the list index stays, and the view is told to show it again.
  std::function<bool()> refuses = [] { return false; };
  /// Runs whenever the list index is written, before the writer goes on.
  std::function<void()> Click = [] {};
  /// For the view: the entries or the list index are others.
  std::function<void()> changed = [] {};

  void clear();
  void add(const std::string& name);
  /// Throws 9 for a position without an entry, as does `entry`. The chosen entry stays the chosen one; where
  /// it is removed itself, none is.
  void remove(std::size_t position);
  [[nodiscard]] std::size_t count() const { return sorted().size(); }
  /// By position from 0.
  [[nodiscard]] const std::string& entry(std::size_t position) const;
  /// The position of the entry that was added last, -1 for none.
  [[nodiscard]] std::int32_t newIndex() const;

  /// The chosen entry's position, -1 for none.
  [[nodiscard]] std::int32_t listIndex() const;
  /// Throws 9 for a position without an entry, other than -1.
  void listIndex(std::int32_t position);
  /// The chosen entry, empty for none.
  [[nodiscard]] std::string text() const;

 private:
  struct Name {
    std::string folded;
    std::string text;
    std::int64_t number;  // of the add
    bool operator<(const Name& other) const {
      return folded != other.folded ? folded < other.folded : text < other.text;
    }
  };
  void tell() const {
    if (fillings_ == 0) changed();
  }
  std::vector<Name>& sorted() const;
  [[nodiscard]] std::int32_t where(std::int64_t number) const;
  [[nodiscard]] Name& at(std::size_t position) const;

  mutable std::vector<Name> names_;
  mutable bool inOrder_ = true;
  std::int64_t last_ = 0;    // the number of the last add
  std::int64_t chosen_ = 0;  // 0 for none
  int fillings_ = 0;
};

}  // namespace ui::editor
