#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Members.hpp"
#include "standin/dialogs/DialogText.hpp"
#include "standin/player/SearchTable.hpp"

namespace standin {

/// Where a control stands in its dialog, in twips.
struct ControlPlace {
  float left = 0;
  float top = 0;
  float width = 0;
};

/// One control of an open dialog, as the plug-in changes it by name and the pages show it: a label, a list, a
/// text box or a button. All have `Width`, `Top`, `Left` and `Text`, the default value; a list has
/// `ListIndex`, `ListCount`, `Clear`, `AddItem` and, for many in one call, `AddItems` besides. On the loop's
/// thread.
class DialogControl : public base::TableObject {
 public:
  using Changed = std::function<void()>;
  /// Without a kind it is a label. `changed` is called after each change from outside, until `forget`.
  DialogControl(std::optional<FieldKind> kind, std::string text, std::vector<std::string> lines,
                ControlPlace place, Changed changed);

  [[nodiscard]] const ControlPlace& place() const { return place_; }
  /// The selected line of a list, or what was put in its place; what a text box holds; a caption.
  [[nodiscard]] const std::string& text() const;
  /// Selects the first line of that text; a list without one shows it all the same, and keeps it.
  void show(const std::string& text);
  /// The line selected, -1 when the text is none of the lines.
  [[nodiscard]] std::int32_t selected() const { return selected_; }
  [[nodiscard]] std::size_t count() const { return lines_.size(); }

  struct Page {
    std::size_t count = 0;  ///< of all lines that fit
    std::vector<std::string> lines{};
  };
  /// The lines that hold all the words of `sought`, from `from` on: at most `most`, fewer where they are
  /// long.
  [[nodiscard]] Page page(std::size_t from, std::size_t most, const std::string& sought) const;

  /// Its dialog has gone: whoever still holds the control changes nothing by it, and its lines are let go.
  void forget();

  static constexpr std::size_t kMostLines = 1'000'000;
  static constexpr std::size_t kLongestLine = std::size_t{64} << 10U;  ///< bytes
  static constexpr std::size_t kMostBytes = std::size_t{128} << 20U;   ///< of all lines, with what they cost

 private:
  base::MemberTable table();
  base::Member sizeField(const char* name, float ControlPlace::*size);
  std::vector<base::Member> listMembers();
  void addItems(std::vector<std::string> texts, std::int32_t at);
  void select(std::int32_t line);
  void clear();
  void change();

  std::optional<FieldKind> kind_;
  std::string text_;  ///< while no line is selected
  std::vector<std::string> lines_;
  std::int32_t selected_ = -1;
  std::size_t bytes_ = 0;
  ControlPlace place_;
  Changed changed_;
  bool gone_ = false;                            ///< its dialog has
  mutable std::unique_ptr<SearchTable> folded_;  ///< of the lines, while they are the same
};

}  // namespace standin
