// The dialogs in which the plug-in lets a user put together its actions, triggers and conditions.
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// What a row of a dialog is filled in with.
enum class FieldKind { kList, kText, kButton };

/// "list", "text", "button".
std::string NameOf(FieldKind kind);

struct DialogRow {
  FieldKind kind = FieldKind::kList;
  std::string label{};
  std::vector<std::string> options{};  ///< the lines of a list; what a text box holds at first, as one
};

/// A dialog as the plug-in describes it, read once.
struct DialogText {
  std::string title{};
  std::string help{};
  std::vector<DialogRow> rows{};
  std::vector<std::string> notes{};    ///< what can't be filled in, as a text to show
  std::vector<std::string> strange{};  ///< for the log: what was left out or is shown as a text, and why
};

/// Reads the plug-in's text: rows end with a carriage return, their fields with a tab. The first row begins
/// with the title, each other one with two empty fields; then kind (1 list, 2 text, 4 button; 5 is a help
/// text), a number without a meaning, the label, and the options. Never fails: what isn't understood is a
/// note or left out, and bounded.
DialogText ReadDialogText(std::string_view text);

/// The text with its characters of control made blanks, cut where it has more than `most` bytes.
std::string ShownText(std::string_view text, std::size_t most);

}  // namespace standin
