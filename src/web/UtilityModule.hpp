#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/Collection.hpp"

namespace web {

/// Replaces every character of a set that `text` holds by `replacement`, then collapses runs of blanks to one
/// blank, whether or not a character was found. `characters` names a set, without regard to case: "HTML" for
/// > & " < ^ ~, "VX" for the codes 1 to 3, "VX+" for these, tab and carriage return; any other text is itself
/// the set. Answers the characters that were found, in the order of the set.
std::string FilterString(std::string& text, std::string_view characters, std::string_view replacement);

/// Puts a new collection in the place of `list`: the same texts, without keys, sorted without regard to case.
/// The collection that was referred to is left as it was.
void SortCollection(base::TextListRef& list);

/// Takes the first element away. What is left of an array of one element, or of none, is one empty element.
void ArrayDropFirst(std::vector<std::string>& array);

/// The window system, as far as stacking goes.
class WindowStack {
 public:
  WindowStack() = default;
  WindowStack(const WindowStack&) = delete;
  WindowStack& operator=(const WindowStack&) = delete;
  WindowStack(WindowStack&&) = delete;
  WindowStack& operator=(WindowStack&&) = delete;
  virtual ~WindowStack() = default;
  /// Lengths are in pixels; `insertAfter` and `flags` as the window system numbers them.
  virtual void SetWindowPos(std::int32_t handle, std::int32_t insertAfter, std::int32_t x, std::int32_t y,
                            std::int32_t width, std::int32_t height, std::int32_t flags) = 0;
};

/// Puts a window above all others, or back among them, without moving, sizing or activating it.
void SetTopMost(WindowStack& windows, std::int32_t handle, bool flag, std::int32_t x, std::int32_t y,
                std::int32_t width, std::int32_t height);

}  // namespace web
