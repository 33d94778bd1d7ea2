#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// What the house stores for a filled-in dialog: the plug-in's name and the dialog's title, then the values
/// of its rows in their order, separated by the character of code 2.
struct DialogString {
  std::string interface {};
  std::string title{};
  std::vector<std::string> values{};  ///< empty for the empty line of a list, and for a button

  bool operator==(const DialogString&) const = default;
};

/// No field may hold the character of code 2, see `MayBeStored`.
std::string Composed(const DialogString& fields);
/// The way back; what isn't there is empty. A text of the plug-in's own making may have any number of fields.
DialogString ReadDialogString(std::string_view stored);
/// False for a text that would not come back as it was, or that the plug-in takes for none: it holds one of
/// the codes 0 to 3.
bool MayBeStored(std::string_view text);

}  // namespace standin
