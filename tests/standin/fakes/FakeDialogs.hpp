#pragma once
#include <mutex>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "base/Members.hpp"

namespace support {

/// The dialogs of a plug-in, as far as a server can tell. What it does with the controls it does as a plug-in
/// would, over the bus. May be asked from any thread.
class FakeDialogs {
 public:
  std::string action;     ///< the text of an action's dialog
  std::string trigger;    ///< that of a trigger's
  std::string condition;  ///< those of conditions
  std::string message;    ///< what ValidateActionUI answers
  std::string words = "in words";
  std::vector<std::string> titles{"River", "Carey"};  ///< for the button
  base::ObjectRef controls;                           ///< as they were handed over

  [[nodiscard]] std::vector<std::string> calls() {
    const std::lock_guard lock(mutex_);
    return calls_;
  }

  /// The plug-in's operations for them.
  std::vector<base::Member> members() {
    using base::Args;
    using base::Type;
    using base::Value;
    const base::Param text{"text", Type::kText, {}, true};
    const base::Param all{"controls", Type::kObject, {}, true};
    const auto answers = [this, text](const char* name, const std::string FakeDialogs::*answer) {
      return base::Member{
          name, base::MemberKind::kOperation, {text}, Type::kText, [this, name, answer](Args& args) {
            note(std::string(name) + " " + base::ToText(args[0]));
            return Value(this->*answer);
          }};
    };
    std::vector<base::Member> made{
        answers("ActionUI", &FakeDialogs::action),         answers("ValidateActionUI", &FakeDialogs::message),
        answers("ActionUIFormat", &FakeDialogs::words),    answers("TriggerUI", &FakeDialogs::trigger),
        answers("ValidateTriggerUI", &FakeDialogs::none_), answers("TriggerUIFormat", &FakeDialogs::words),
        answers("ConditionUI", &FakeDialogs::condition),   answers("ConditionUIFormat", &FakeDialogs::words)};
    made.push_back({"ModifyActionUI", base::MemberKind::kOperation, {all}, Type::kNone, [this](Args& args) {
                      controls = base::ToObject(args[0]);
                      note("ModifyActionUI " + base::ToText(base::Deref(controls).get("Count")));
                      base::Deref(control(12)).put("Width", std::int16_t{7000});
                      return Value();
                    }});
    made.push_back({"ModifyTriggerUI", base::MemberKind::kOperation, {all}, Type::kNone, [this](Args&) {
                      note("ModifyTriggerUI");
                      return Value();
                    }});
    made.push_back({"CustomActionDialogUI", base::MemberKind::kOperation, {}, Type::kAny, [this](Args&) {
                      note("CustomActionDialogUI");
                      refill();
                      return Value();
                    }});
    return made;
  }
  [[nodiscard]] base::ObjectRef control(std::int32_t number) const {
    return base::ToObject(base::Deref(controls).invoke("item", number));
  }

 private:
  void note(const std::string& call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(call);
  }
  void refill() const {
    const base::ObjectRef list = control(12);
    const std::string group = base::ToText(base::Deref(control(6)).get("Text"));
    list->call("Clear");
    list->invoke("AddItem", "", 0);
    for (std::size_t i = 0; i < titles.size(); ++i)
      list->invoke("AddItem", titles[i] + " of " + group, static_cast<std::int32_t>(i) + 1);
    list->put("ListIndex", 1);
    base::Deref(control(4)).put("ListIndex", 0);
  }

  const std::string none_;
  std::mutex mutex_;
  std::vector<std::string> calls_;
};

}  // namespace support
