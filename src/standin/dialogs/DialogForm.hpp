#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "standin/dialogs/DialogControl.hpp"
#include "standin/dialogs/DialogText.hpp"

namespace standin {

/// The values of a dialog's fields by the numbers of their controls.
using DialogValues = std::map<std::int32_t, std::string>;

/// A dialog with its controls, filled in by a user on one side and changed by the plug-in on the other.
///
/// Controls are numbered from 1 in the order of the rows: a label and a control for each list and text box,
/// one for each button. They stand below each other until the plug-in moves them.
class DialogForm {
 public:
  /// `changed` is called whenever the plug-in has changed a control.
  DialogForm(DialogText text, const DialogControl::Changed& changed);
  /// Whoever still holds one of the controls changes nothing by it from now on.
  ~DialogForm();
  DialogForm(const DialogForm&) = delete;
  DialogForm& operator=(const DialogForm&) = delete;
  DialogForm(DialogForm&&) = delete;
  DialogForm& operator=(DialogForm&&) = delete;

  [[nodiscard]] const std::string& title() const { return text_.title; }
  [[nodiscard]] bool hasFields() const { return !fields_.empty(); }
  /// The collection that the plug-in is handed: `Count`, and `item(number)` from 1.
  [[nodiscard]] const base::ObjectRef& controls() const { return controls_; }

  /// Fills in the rows in their order, as far as there are values; buttons have none.
  void fill(const std::vector<std::string>& values);
  /// Fills in the fields of these numbers; numbers that no field has are passed over.
  void fill(const DialogValues& values);
  /// What the rows hold, in their order; empty for a button.
  [[nodiscard]] std::vector<std::string> values() const;
  [[nodiscard]] DialogValues numbered() const;
  [[nodiscard]] bool isButton(std::int32_t number) const;

  static constexpr std::size_t kFirstOptions = 200;
  /// What a page shows, with the first options of each list.
  [[nodiscard]] nlohmann::json json(const std::string& interface) const;
  /// A page of a list's options; nothing where the number is no field's.
  [[nodiscard]] std::optional<DialogControl::Page> options(std::int32_t number, std::size_t from,
                                                           std::size_t most, const std::string& sought) const;

 private:
  struct Field {
    std::int32_t number = 0;
    std::shared_ptr<DialogControl> control{};
  };
  [[nodiscard]] const Field* find(std::int32_t number) const;

  DialogText text_;  ///< without the lists, which their controls have
  std::vector<std::shared_ptr<DialogControl>> all_;
  std::vector<Field> fields_;  ///< one a row
  base::ObjectRef controls_;
};

}  // namespace standin
