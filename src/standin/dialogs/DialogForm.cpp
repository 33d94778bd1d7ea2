#include "standin/dialogs/DialogForm.hpp"

#include <algorithm>
#include <utility>

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"

namespace standin {
namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

// Twips. A label stands above its control, so that both may be widened.
constexpr float kEdge = 120;
constexpr float kLine = 300;
constexpr float kRow = 720;
constexpr float kLabelWidth = 2400;
constexpr float kControlWidth = 3000;
constexpr float kButtonWidth = 1500;

/// The controls as a collection.
class DialogControls : public base::TableObject {
 public:
  explicit DialogControls(std::vector<std::shared_ptr<DialogControl>> all) : all_(std::move(all)) {
    setTable({"Controls",
              {ReadField("Count", Type::kInt32, [this] { return static_cast<std::int32_t>(all_.size()); }),
               Operation("item", {Number("index")}, Type::kObject,
                         [this](Args& args) { return item(NumberAt(args, 0)); })}});
  }

 private:
  [[nodiscard]] Value item(std::int32_t number) const {
    if (number < 1 || static_cast<std::size_t>(number) > all_.size())
      throw base::Failure(base::number::kIndex);
    return all_[static_cast<std::size_t>(number) - 1];
  }
  std::vector<std::shared_ptr<DialogControl>> all_;
};

}  // namespace

DialogForm::DialogForm(DialogText text, const DialogControl::Changed& changed) : text_(std::move(text)) {
  float top = kEdge;
  for (DialogRow& row : text_.rows) {
    const bool button = row.kind == FieldKind::kButton;
    std::vector<std::string> lines = std::exchange(row.options, {});
    if (!button) {
      all_.push_back(std::make_shared<DialogControl>(std::nullopt, row.label, std::vector<std::string>(),
                                                     ControlPlace{kEdge, top, kLabelWidth}, changed));
    }
    std::string first = button ? row.label : std::string();
    if (row.kind == FieldKind::kText && !lines.empty()) first = lines.front();
    if (row.kind != FieldKind::kList) lines.clear();
    all_.push_back(std::make_shared<DialogControl>(
        row.kind, std::move(first), std::move(lines),
        ControlPlace{kEdge, button ? top : top + kLine, button ? kButtonWidth : kControlWidth}, changed));
    fields_.push_back({static_cast<std::int32_t>(all_.size()), all_.back()});
    top += kRow;
  }
  controls_ = std::make_shared<DialogControls>(all_);
}

DialogForm::~DialogForm() {
  for (const auto& control : all_) control->forget();
}

const DialogForm::Field* DialogForm::find(std::int32_t number) const {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const Field& field) { return field.number == number; });
  return found == fields_.end() ? nullptr : &*found;
}

bool DialogForm::isButton(std::int32_t number) const {
  const Field* const field = find(number);
  return field != nullptr &&
         text_.rows[static_cast<std::size_t>(field - fields_.data())].kind == FieldKind::kButton;
}

void DialogForm::fill(const std::vector<std::string>& values) {
  for (std::size_t i = 0; i < fields_.size() && i < values.size(); ++i)
    if (text_.rows[i].kind != FieldKind::kButton) fields_[i].control->show(values[i]);
}

void DialogForm::fill(const DialogValues& values) {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const auto value = values.find(fields_[i].number);
    if (value != values.end() && text_.rows[i].kind != FieldKind::kButton)
      fields_[i].control->show(value->second);
  }
}

std::vector<std::string> DialogForm::values() const {
  std::vector<std::string> values;
  for (std::size_t i = 0; i < fields_.size(); ++i)
    values.push_back(text_.rows[i].kind == FieldKind::kButton ? std::string() : fields_[i].control->text());
  return values;
}

DialogValues DialogForm::numbered() const {
  DialogValues values;
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (text_.rows[i].kind != FieldKind::kButton)
      values.emplace(fields_[i].number, fields_[i].control->text());
  return values;
}

nlohmann::json DialogForm::json(const std::string& interface) const {
  nlohmann::json fields = nlohmann::json::array();
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const DialogRow& row = text_.rows[i];
    const DialogControl& control = *fields_[i].control;
    const ControlPlace& place = control.place();
    nlohmann::json field{{"number", fields_[i].number},
                         {"kind", NameOf(row.kind)},
                         {"label", row.label},
                         {"value", row.kind == FieldKind::kButton ? std::string() : control.text()},
                         {"width", place.width},
                         {"top", place.top},
                         {"left", place.left},
                         {"error", ""}};
    if (row.kind == FieldKind::kList) {
      field["count"] = control.count();
      field["options"] = control.page(0, kFirstOptions, {}).lines;
      field["listed"] = control.selected() >= 0;
    }
    fields.push_back(std::move(field));
  }
  return {{"title", text_.title},
          {"help", text_.help},
          {"notes", text_.notes},
          {"interface", interface},
          {"fields", std::move(fields)}};
}

std::optional<DialogControl::Page> DialogForm::options(std::int32_t number, std::size_t from,
                                                       std::size_t most, const std::string& sought) const {
  const Field* const field = find(number);
  if (field == nullptr) return std::nullopt;
  return field->control->page(from, most, sought);
}

}  // namespace standin
