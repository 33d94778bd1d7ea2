#include "standin/dialogs/OpenDialog.hpp"

#include <array>
#include <chrono>
#include <ctime>
#include <utility>

#include "base/Failure.hpp"
#include "standin/dialogs/DialogMessages.hpp"
#include "standin/dialogs/DialogString.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {
namespace {

using Kind = DialogAnswer::Kind;

/// What the plug-in is asked for a dialog; empty where it isn't.
struct Operations {
  const char* name;
  const char* describe;
  const char* modify;
  const char* judge;
  const char* word;
};
/// In the order of `DialogKind`.
constexpr std::array<Operations, 4> kOperations{
    {{"action", "ActionUI", "ModifyActionUI", "ValidateActionUI", "ActionUIFormat"},
     {"trigger", "TriggerUI", "ModifyTriggerUI", "ValidateTriggerUI", "TriggerUIFormat"},
     {"condition 1", "ConditionUI", "", "", "ConditionUIFormat"},
     {"condition 2", "ConditionUI", "", "", "ConditionUIFormat"}}};

const Operations& Of(DialogKind kind) { return kOperations.at(static_cast<std::size_t>(kind)); }

std::string TimeOfDay() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::localtime_r(&now, &parts);
  std::array<char, 8> text{};
  const std::size_t size = std::strftime(text.data(), text.size(), "%H:%M", &parts);
  return {text.data(), size};
}

DialogAnswer Closed() { return {.kind = Kind::kClosed, .error = "This form isn't open any more"}; }

/// The plug-in gets a copy of a text that it may change.
std::string Asked(base::Object& vxif, const char* operation, base::Value argument) {
  base::Args args{std::move(argument)};
  return base::ToText(vxif.call(operation, args));
}

}  // namespace

std::optional<DialogKind> DialogKindOf(const std::string& name) {
  for (std::size_t i = 0; i < kOperations.size(); ++i)
    if (name == kOperations[i].name) return static_cast<DialogKind>(i);
  return std::nullopt;
}

OpenDialog::OpenDialog(base::Loop& loop, PluginKeeper& plugin, House& house, Limits limits)
    : loop_(loop),
      plugin_(plugin),
      house_(house),
      limits_(limits),
      // A page of an earlier run of the server must not take this run's dialog for its own.
      lastId_(std::chrono::duration_cast<std::chrono::milliseconds>(
                  std::chrono::system_clock::now().time_since_epoch())
                  .count()),
      changeTimer_(loop.makeTimer(limits.joined,
                                  [this] {
                                    changeTimer_->enabled(false);
                                    if (current_) tell(*current_, "changed");
                                  })),
      lookTimer_(loop.makeTimer(limits.look, [this] { lookForBrowser(); })) {
  plugin_.onPhase([this](PluginPhase phase) { hearPhase(phase); });
}

void OpenDialog::open(DialogKind kind, const std::string& stored, const DialogAsker& asker, bool take,
                      Told told) {
  if (current_ && current_->asker.session != asker.session && !take) {
    return told({.kind = Kind::kHeld,
                 .error = "Another browser has the player's form open",
                 .who = current_->asker.user + ", since " + current_->since});
  }
  if (current_) {
    tell(*current_, "taken");
    end();
  }
  const auto open = std::make_shared<Open>();
  open->id = ++lastId_;
  open->kind = kind;
  open->asker = asker;
  open->since = TimeOfDay();
  open->seen = loop_.now();
  open->busy = true;
  current_ = open;
  lookTimer_->enabled(true);
  plugin_.command(
      [this, open, stored](base::Object& vxif) {
        if (isOpen(open)) describe(vxif, open, stored);
      },
      [this, open, told = std::move(told)](const std::string& failure) {
        open->busy = false;
        if (!isOpen(open)) return told(Closed());
        if (failure.empty()) return told(formOf(*open));
        end();
        told({.kind = Kind::kAway, .error = failure});
      });
}

void OpenDialog::describe(base::Object& vxif, const OpenRef& open, const std::string& stored) {
  const Operations& operations = Of(open->kind);
  base::Value argument(stored);
  if (open->kind == DialogKind::kFirstCondition) argument = std::int16_t{1};
  if (open->kind == DialogKind::kSecondCondition) argument = std::int16_t{2};
  DialogText text = ReadDialogText(Asked(vxif, operations.describe, std::move(argument)));
  if (!isOpen(open)) return;
  logStrange(text);
  open->form = std::make_unique<DialogForm>(std::move(text), [this, raw = open.get()] { changed(*raw); });
  if (!stored.empty()) open->form->fill(ReadDialogString(stored).values);
  if (*operations.modify == '\0') return;
  try {
    vxif.invoke(operations.modify, open->form->controls());
  } catch (const base::Failure& failure) {
    if (failure.number() == base::number::kHostGone) throw;
    // The form stands as it was described.
    house_.log.write("Warning", "The plug-in could not change its form: " + failure.description());
  }
}

void OpenDialog::logStrange(const DialogText& text) {
  if (text.strange.empty()) return;
  std::string line = "The form “" + text.title + "” of the plug-in is odd: ";
  for (std::size_t i = 0; i < text.strange.size(); ++i) line += (i == 0 ? "" : "; ") + text.strange[i];
  house_.log.write("Warning", line);
}

OpenDialog::OpenRef OpenDialog::usable(std::int64_t dialog) {
  if (!current_ || current_->id != dialog || !current_->form) return nullptr;
  current_->seen = loop_.now();
  return current_;
}

DialogAnswer OpenDialog::formOf(const Open& open) {
  return {.dialog = open.id, .form = open.form->json(plugin_.name())};
}

DialogAnswer OpenDialog::refusalOf(const DialogValues& values) const {
  DialogAnswer answer{.kind = Kind::kRefused};
  for (const auto& [number, value] : values)
    if (!MayBeStored(value)) answer.fields.emplace(number, "This holds a character that can't be kept");
  if (!answer.fields.empty()) answer.error = answer.fields.begin()->second;
  return answer;
}

void OpenDialog::press(std::int64_t dialog, std::int32_t button, const DialogValues& values, Told told) {
  const OpenRef open = usable(dialog);
  if (!open) return told(Closed());
  if (open->gone) return told({.kind = Kind::kAway, .error = "The player has gone; open the form again"});
  if (!open->form->isButton(button)) return told({.kind = Kind::kWrong, .error = "There is no such button"});
  DialogAnswer refused = refusalOf(values);
  if (!refused.fields.empty()) return told(refused);
  plugin_.command(
      [this, open, values](base::Object& vxif) {
        if (!isOpen(open) || open->gone) return;
        open->form->fill(values);
        open->busy = true;
        vxif.call("CustomActionDialogUI");
      },
      [this, open, told = std::move(told)](const std::string& failure) {
        open->busy = false;
        if (!isOpen(open)) return told(Closed());
        if (!failure.empty()) return told({.kind = Kind::kAway, .error = failure});
        told(formOf(*open));
      });
}

void OpenDialog::judge(base::Object& vxif, Open& open, DialogAnswer& answer) {
  const Operations& operations = Of(open.kind);
  answer.stored = Composed({plugin_.name(), open.form->title(), open.form->values()});
  if (answer.stored.size() > kLongestStored) {
    answer.error = "This is more than can be kept";
    return;
  }
  const DialogValues values = open.form->numbered();
  if (DialogAnswer refused = refusalOf(values); !refused.fields.empty()) {
    answer.error = refused.error;
    answer.fields = std::move(refused.fields);
    return;
  }
  if (*operations.judge != '\0') answer.error = Asked(vxif, operations.judge, answer.stored);
  if (answer.error.empty())
    answer.words = Asked(vxif, operations.word, answer.stored);
  else if (open.kind == DialogKind::kAction)
    answer.fields = FieldsMeant(answer.error, values);
}

void OpenDialog::submit(std::int64_t dialog, const DialogValues& values, Told told) {
  const OpenRef open = usable(dialog);
  if (!open) return told(Closed());
  if (open->gone) return told({.kind = Kind::kAway, .error = "The player has gone; open the form again"});
  if (!open->form->hasFields())
    return told({.kind = Kind::kRefused, .error = "The player's form has nothing to fill in"});
  DialogAnswer refused = refusalOf(values);
  if (!refused.fields.empty()) return told(refused);
  const auto answer = std::make_shared<DialogAnswer>();
  answer->dialog = dialog;
  plugin_.command(
      [this, open, values, answer](base::Object& vxif) {
        if (!isOpen(open) || open->gone) return;
        open->form->fill(values);
        judge(vxif, *open, *answer);
      },
      [this, open, answer, told = std::move(told)](const std::string& failure) {
        if (!isOpen(open)) return told(Closed());
        if (!failure.empty() || open->gone)
          return told({.kind = Kind::kAway, .error = failure.empty() ? "The player has gone" : failure});
        answer->kind = answer->error.empty() ? Kind::kDone : Kind::kRefused;
        if (answer->kind == Kind::kDone) end();
        told(*answer);
      });
}

DialogAnswer OpenDialog::look(std::int64_t dialog) {
  const OpenRef open = usable(dialog);
  return open ? formOf(*open) : Closed();
}

std::optional<DialogControl::Page> OpenDialog::options(std::int64_t dialog, std::int32_t field,
                                                       std::size_t from, std::size_t most,
                                                       const std::string& sought) {
  const OpenRef open = usable(dialog);
  if (!open) return std::nullopt;
  return open->form->options(field, from, most, sought);
}

void OpenDialog::close(std::int64_t dialog) {
  if (current_ && current_->id == dialog) end();
}

void OpenDialog::end() {
  current_ = nullptr;
  changeTimer_->enabled(false);
  lookTimer_->enabled(false);
}

void OpenDialog::tell(const Open& open, const char* what) {
  nlohmann::json told{{"dialog", open.id}, {"taken", false}, {"gone", false}, {"changed", false}};
  told[what] = true;
  house_.live.tell("dialog", Dump(told));
}

void OpenDialog::changed(const Open& open) {
  if (!open.busy && current_.get() == &open && !changeTimer_->enabled()) changeTimer_->enabled(true);
}

void OpenDialog::hearPhase(PluginPhase phase) {
  // What it has described before it was ready stays good when it is.
  if (!current_ || current_->gone || phase == PluginPhase::kReady) return;
  current_->gone = true;
  tell(*current_, "gone");
}

void OpenDialog::lookForBrowser() {
  if (!current_) return;
  if (house_.live.readersOf(current_->asker.session) > 0) current_->seen = loop_.now();
  if (loop_.now() - current_->seen >= limits_.alone) end();
}

}  // namespace standin
