#include "standin/dialogs/DialogControl.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"
#include "standin/text/Folding.hpp"

namespace standin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

constexpr float kFarthest = 1'000'000;  // twips, in every direction
constexpr std::size_t kLineCosts = sizeof(std::string) + 2 * sizeof(std::size_t);
constexpr std::size_t kLargestPage = std::size_t{512} << 10U;  // bytes

}  // namespace

DialogControl::DialogControl(std::optional<FieldKind> kind, std::string text, std::vector<std::string> lines,
                             ControlPlace place, Changed changed)
    : kind_(kind),
      text_(std::move(text)),
      lines_(std::move(lines)),
      place_(place),
      changed_(std::move(changed)) {
  for (const std::string& line : lines_) bytes_ += line.size() + kLineCosts;
  if (!lines_.empty()) selected_ = 0;
  setTable(table());
}

const std::string& DialogControl::text() const {
  return selected_ < 0 ? text_ : lines_[static_cast<std::size_t>(selected_)];
}

void DialogControl::show(const std::string& text) {
  if (selected_ >= 0 && this->text() == text) return;  // of lines that are the same, the one selected
  const auto found = std::find(lines_.begin(), lines_.end(), text);
  selected_ = found == lines_.end() ? -1 : static_cast<std::int32_t>(found - lines_.begin());
  text_ = selected_ < 0 ? text : std::string();
}

DialogControl::Page DialogControl::page(std::size_t from, std::size_t most, const std::string& sought) const {
  Page page;
  std::size_t bytes = 0;
  const auto take = [&](const std::string& line) {
    if (page.lines.size() >= most || (bytes += line.size()) > kLargestPage) return false;
    page.lines.push_back(line);
    return true;
  };
  const std::vector<std::string> words = SoughtWords(sought);
  if (words.empty()) {
    page.count = lines_.size();
    for (std::size_t i = from; i < lines_.size() && take(lines_[i]);) ++i;
    return page;
  }
  if (!folded_) {
    folded_ = std::make_unique<SearchTable>();
    folded_->reserve(lines_.size());
    for (const std::string& line : lines_) folded_->add({line});
  }
  const std::vector<std::uint32_t> found = folded_->find(words);
  page.count = found.size();
  for (std::size_t i = from; i < found.size() && take(lines_[found[i]]);) ++i;
  return page;
}

void DialogControl::forget() {
  gone_ = true;
  clear();
  lines_.shrink_to_fit();
}

void DialogControl::change() {
  if (changed_ && !gone_) changed_();
}

void DialogControl::clear() {
  lines_.clear();
  text_.clear();
  folded_.reset();
  selected_ = -1;
  bytes_ = 0;
}

void DialogControl::addItems(std::vector<std::string> texts, std::int32_t at) {
  if (gone_) return;
  const auto count = static_cast<std::int32_t>(lines_.size());
  if (at < 0 || at > count || lines_.size() + texts.size() > kMostLines)
    throw base::Failure(base::number::kInvalidArgument);
  std::size_t costs = 0;
  for (const std::string& text : texts) {
    if (text.size() > kLongestLine) throw base::Failure(base::number::kInvalidArgument);
    costs += text.size() + kLineCosts;
  }
  if (bytes_ + costs > kMostBytes) throw base::Failure(base::number::kOverflow, "The list is full");
  bytes_ += costs;
  // The same line stays selected.
  if (selected_ >= at) selected_ += static_cast<std::int32_t>(texts.size());
  lines_.insert(lines_.begin() + at, std::make_move_iterator(texts.begin()),
                std::make_move_iterator(texts.end()));
  folded_.reset();
  change();
}

void DialogControl::select(std::int32_t line) {
  if (gone_) return;
  if (line < -1 || line >= static_cast<std::int32_t>(lines_.size()))
    throw base::Failure(base::number::kInvalidArgument);
  selected_ = line;
  text_.clear();
  change();
}

base::Member DialogControl::sizeField(const char* name, float ControlPlace::*size) {
  return Field(
      name, Type::kSingle, [this, size] { return place_.*size; },
      [this, size](const Value& value) {
        const float given = base::ToSingle(value);
        if (!std::isfinite(given)) throw base::Failure(base::number::kInvalidArgument);
        place_.*size = std::clamp(given, size == &ControlPlace::width ? 0 : -kFarthest, kFarthest);
        change();
      });
}

std::vector<base::Member> DialogControl::listMembers() {
  return {Field(
              "ListIndex", Type::kInt32, [this] { return selected_; },
              [this](const Value& value) { select(base::ToInt32(value)); }),
          ReadField("ListCount", Type::kInt32, [this] { return static_cast<std::int32_t>(lines_.size()); }),
          Command("Clear", {},
                  [this] {
                    clear();
                    change();
                  }),
          // Without a place, behind the last line.
          Command("AddItem", {Text("text"), Any("index", Value())},
                  [this](Args& args) {
                    addItems({TextAt(args, 0)},
                             args[1].empty() ? static_cast<std::int32_t>(lines_.size()) : NumberAt(args, 1));
                  }),
          Command("AddItems", {Number("index"), Texts("texts")}, [this](Args& args) {
            std::vector<std::string> texts;
            for (const Value& text : args[1].array()) texts.push_back(base::ToText(text));
            addItems(std::move(texts), NumberAt(args, 0));
          })};
}

base::MemberTable DialogControl::table() {
  std::vector<base::Member> members{sizeField("Width", &ControlPlace::width),
                                    sizeField("Top", &ControlPlace::top),
                                    sizeField("Left", &ControlPlace::left),
                                    Field(
                                        "Text", Type::kText, [this] { return text(); },
                                        [this](const Value& value) {
                                          const std::string given = base::ToText(value);
                                          if (given.size() > kLongestLine)
                                            throw base::Failure(base::number::kInvalidArgument);
                                          if (!gone_) show(given);
                                          change();
                                        })};
  if (kind_ == FieldKind::kList) members = Joined(std::move(members), listMembers());
  return {"Control", std::move(members)};
}

}  // namespace standin
