#include "standin/dialogs/DialogText.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Text.hpp"

namespace standin {
namespace {

constexpr std::size_t kMostRows = 200;
constexpr std::size_t kMostNotes = 20;
constexpr std::size_t kLongestLabel = 1000;                     // bytes
constexpr std::size_t kLongestHelp = 4000;                      // bytes
constexpr std::size_t kLongestOption = std::size_t{16} << 10U;  // bytes
constexpr std::size_t kMostOfOptions = std::size_t{64} << 20U;  // bytes of a dialog's, with their overhead
constexpr std::size_t kOverhead = sizeof(std::string) + 2 * sizeof(std::uint32_t);
constexpr char kSeparator = '\x02';  // of a stored string

/// The pieces of a text, one after the other.
class Pieces {
 public:
  Pieces(std::string_view text, char separator) : rest_(text), separator_(separator) {}
  /// Nothing behind the last one.
  std::optional<std::string_view> next() {
    if (ended_) return std::nullopt;
    const std::size_t end = rest_.find(separator_);
    ended_ = end == std::string_view::npos;
    const std::string_view piece = rest_.substr(0, end);
    if (!ended_) rest_.remove_prefix(end + 1);
    return piece;
  }

 private:
  std::string_view rest_;
  char separator_;
  bool ended_ = false;
};

std::optional<FieldKind> KindOf(std::string_view text) {
  if (text == "1") return FieldKind::kList;
  if (text == "2") return FieldKind::kText;
  if (text == "4") return FieldKind::kButton;
  return std::nullopt;
}

class Reader {
 public:
  DialogText read(std::string_view text) {
    Pieces rows(text, '\r');
    std::size_t number = 0;
    for (auto row = rows.next(); row; row = rows.next()) {
      ++number;
      if (row->starts_with('\n')) row->remove_prefix(1);
      if (row->empty()) continue;
      if (read_.rows.size() >= kMostRows) {
        strange(number, "stands behind too many others and is left out");
        break;
      }
      readRow(*row, number);
    }
    if (read_.rows.empty()) read_.strange.emplace_back("it has no row to fill in");
    return std::move(read_);
  }

 private:
  void readRow(std::string_view row, std::size_t number) {
    constexpr std::string_view kHelp = "5";
    Pieces fields(row, '\t');
    const std::string_view front = *fields.next();
    const bool first = !std::exchange(begun_, true);
    if (first)
      read_.title = ShownText(front, kLongestLabel);
    else if (!front.empty() || fields.next() != std::string_view())
      return note(row, number, "doesn't begin as rows do");
    const auto kind = fields.next();
    fields.next();
    const auto label = fields.next();
    if (first && !kind) return;  // a title alone
    if (!label) return strange(number, "has too few fields and is left out");
    if (first && *kind == kHelp) {
      read_.help = ShownText(*label, kLongestHelp);
      return;
    }
    const std::optional<FieldKind> known = KindOf(*kind);
    if (!known) return note(*label, number, "is of an unknown kind");
    DialogRow made{*known, ShownText(*label, kLongestLabel), {}};
    if (label->size() > kLongestLabel) strange(number, "has a very long label, which is cut");
    std::size_t left = 0;
    for (auto option = fields.next(); option; option = fields.next())
      if (!take(made, *option)) ++left;
    if (left > 0) strange(number, "has " + std::to_string(left) + " lines that can't be kept");
    read_.rows.push_back(std::move(made));
  }
  bool take(DialogRow& row, std::string_view option) {
    if (option.size() > kLongestOption || option.find(kSeparator) != std::string_view::npos) return false;
    const std::size_t costs = option.size() + kOverhead;
    if (spent_ + costs > kMostOfOptions) return false;
    spent_ += costs;
    row.options.emplace_back(option);
    return true;
  }
  void note(std::string_view text, std::size_t number, const std::string& why) {
    strange(number, why + " and is shown as a text");
    if (read_.notes.size() >= kMostNotes) return;
    std::string shown = base::TrimBlanks(ShownText(text, kLongestLabel));
    if (!shown.empty()) read_.notes.push_back(std::move(shown));
  }
  void strange(std::size_t number, const std::string& what) {
    if (read_.strange.size() < kMostNotes)
      read_.strange.push_back("row " + std::to_string(number) + " " + what);
  }

  DialogText read_;
  bool begun_ = false;
  std::size_t spent_ = 0;
};

}  // namespace

std::string NameOf(FieldKind kind) {
  switch (kind) {
    case FieldKind::kText: return "text";
    case FieldKind::kButton: return "button";
    case FieldKind::kList: break;
  }
  return "list";
}

std::string ShownText(std::string_view text, std::size_t most) {
  constexpr unsigned char kFirstByte = 0xC0;  // of a character of several
  constexpr unsigned char kAfter = 0x80;
  if (text.size() > most) {
    text = text.substr(0, most);
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & kFirstByte) == kAfter)
      text.remove_suffix(1);
    if (!text.empty() && static_cast<unsigned char>(text.back()) >= kFirstByte) text.remove_suffix(1);
  }
  std::string shown = base::RepairUtf8(text);
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; },
      ' ');
  return shown;
}

DialogText ReadDialogText(std::string_view text) { return Reader().read(text); }

}  // namespace standin
