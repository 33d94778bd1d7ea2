// Texts of dialogs with a stored string in their first line and what is done to the controls in their second:
// every one becomes a form of a bounded size, and what a form gives to be stored is read back as it was.
#include <cstdint>
#include <string>

#include "base/Failure.hpp"
#include "fuzz/Alphabet.hpp"
#include "fuzz/Input.hpp"
#include "standin/dialogs/DialogForm.hpp"
#include "standin/dialogs/DialogMessages.hpp"
#include "standin/dialogs/DialogString.hpp"
#include "standin/house/HouseJson.hpp"

namespace {

using standin::DialogForm;
using support::Require;
using support::TakeLine;

/// One step for each two bytes: which control, and what.
void Handle(base::Object& controls, const std::string& steps) {
  const auto count = base::ToInt32(controls.get("Count"));
  for (std::size_t i = 0; i + 1 < steps.size(); i += 2) {
    try {
      const auto number = static_cast<std::int32_t>(static_cast<unsigned char>(steps[i])) % (count + 2);
      const base::ObjectRef control = base::ToObject(controls.invoke("item", number));
      const auto what = static_cast<unsigned char>(steps[i + 1]);
      const auto value = static_cast<std::int32_t>(what / 8) - 2;
      switch (what % 8) {
        case 0: control->call("Clear"); break;
        case 1: control->invoke("AddItem", std::string(1, steps[i]), value); break;
        case 2: control->put("ListIndex", value); break;
        case 3: control->invoke("AddItem", steps); break;
        case 4: control->put("Width", value * 1e6); break;
        case 5: control->put("Text", steps.substr(i)); break;
        case 6: control->put("Top", steps); break;
        default: Require(base::ToText(control->get("Text")).size() <= DialogForm::kFirstOptions << 20U);
      }
    } catch (const base::Failure&) {
      continue;  // refused
    }
  }
}

/// Values with the separator can't be stored, and nobody may fill them in.
bool MayBeStored(const DialogForm& form) {
  for (const std::string& value : form.values())
    if (value.find('\x02') != std::string::npos) return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostRows = 200;
  std::string text = support::Spelled(data, size);
  const std::string stored = TakeLine(text);
  const std::string steps = TakeLine(text);

  const standin::DialogString fields = standin::ReadDialogString(stored);
  if (stored.find('\x02') != std::string::npos) Require(standin::Composed(fields) == stored);

  const standin::DialogText read = standin::ReadDialogText(text);
  Require(read.rows.size() <= kMostRows && read.notes.size() <= kMostRows);
  Require(read.rows.empty() ? !read.strange.empty() : true);
  int changes = 0;
  DialogForm form(read, [&] { ++changes; });
  form.fill(fields.values);
  Handle(base::Deref(form.controls()), steps);
  Require(form.values().size() == read.rows.size());
  if (MayBeStored(form)) {
    const standin::DialogString made{"Media Player", form.title(), form.values()};
    const std::string composed = standin::Composed(made);
    Require(standin::ReadDialogString(composed) == made);
    DialogForm again(read, nullptr);
    again.fill(standin::ReadDialogString(composed).values);
    Require(again.values() == form.values());
  }
  const std::string page = standin::Dump(form.json("Media Player"));
  // Each byte takes at most six in JSON; beside its texts a field has some hundred.
  Require(page.size() <= 1000 + read.rows.size() * 400 +
                             8 * (text.size() + stored.size() + 130 * steps.size() * steps.size()));
  for (const auto& [number, value] : form.numbered()) {
    const auto found = form.options(number, 0, 10, stored);
    Require(found.has_value() && found->lines.size() <= 10);
  }
  for (const auto& [number, message] : standin::FieldsMeant(stored, form.numbered()))
    Require(message == stored);
  return 0;
}
