#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace automation {

/// The words that an action string holds and its dialog shows. They are compared exactly, with case.
inline constexpr const char* kNoAction = "No Action";
inline constexpr const char* kEntireListLine = "(Play entire list)";
inline constexpr const char* kUrlPrompt = "Please enter URL below...";
inline constexpr const char* kTitlePrompt = "Please enter title below...";

/// The four actions that play from a group.
struct GroupAction {
  const char* word;      ///< the action word
  const char* category;  ///< the category whose name the action plays from
  std::size_t field;     ///< where the group's name stands in the action string
  std::int32_t control;  ///< the control that offers the names in the dialog
};
inline constexpr GroupAction kGroupActions[] = {{"Play: PlayList", "PlayList", 2, 4},
                                                {"Play: Album", "Album", 3, 6},
                                                {"Play: Artist", "Artist", 4, 8},
                                                {"Play: Genre", "Genre", 5, 10}};
/// The group action of that word, or null.
const GroupAction* FindGroupAction(std::string_view word);

/// A string that the host stores for an action or a trigger, as the plug-in reads it: its fields are
/// separated by the character of code 2, and the first is the host's own and dropped. What is field 2 in the
/// string is thus a[1] here.
class ActionString {
 public:
  static constexpr std::size_t kWord = 1;
  static constexpr std::size_t kTitle = 6;
  static constexpr std::size_t kTypedText = 7;
  static constexpr std::size_t kMode = 8;

  explicit ActionString(std::string_view text);

  /// Throws number 9 for a field that is not there.
  [[nodiscard]] const std::string& operator[](std::size_t index) const;
  std::string& operator[](std::size_t index);
  /// Never below 0, as at least one empty field is left.
  [[nodiscard]] std::int32_t highestIndex() const { return static_cast<std::int32_t>(fields_.size()) - 1; }
  /// Whether the host has built it from all rows of the dialog.
  [[nodiscard]] bool wellFormed() const { return highestIndex() == 9 || highestIndex() == 10; }

 private:
  std::vector<std::string> fields_;
};

}  // namespace automation
