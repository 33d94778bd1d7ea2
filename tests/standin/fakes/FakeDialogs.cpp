#include "standin/fakes/FakeDialogs.hpp"

#include "base/MemberWords.hpp"
#include "base/Object.hpp"

namespace support {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

std::vector<Member> FakeDialogs::members() {
  const auto answers = [this](const char* name, const std::string FakeDialogs::*answer) {
    return Operation(name, {InOut(Text("text"))}, Type::kText, [this, name, answer](const Args& args) {
      note(std::string(name) + " " + TextAt(args, 0));
      return this->*answer;
    });
  };
  const Param all = InOut(Reference("controls"));
  return {answers("ActionUI", &FakeDialogs::action),
          answers("ValidateActionUI", &FakeDialogs::message),
          answers("ActionUIFormat", &FakeDialogs::words),
          answers("TriggerUI", &FakeDialogs::trigger),
          answers("ValidateTriggerUI", &FakeDialogs::none_),
          answers("TriggerUIFormat", &FakeDialogs::words),
          answers("ConditionUI", &FakeDialogs::condition),
          answers("ConditionUIFormat", &FakeDialogs::words),
          Command("ModifyActionUI", {all},
                  [this](const Args& args) {
                    controls = ReferenceAt(args, 0);
                    note("ModifyActionUI " + base::ToText(base::Deref(controls).get("Count")));
                    base::Deref(control(12)).put("Width", std::int16_t{7000});
                  }),
          Command("ModifyTriggerUI", {all}, [this] { note("ModifyTriggerUI"); }),
          Operation("CustomActionDialogUI", {}, Type::kAny, [this] {
            note("CustomActionDialogUI");
            refill();
            return Value();
          })};
}

base::ObjectRef FakeDialogs::control(std::int32_t number) const {
  return base::ToObject(base::Deref(controls).invoke("item", number));
}

void FakeDialogs::note(const std::string& call) {
  const std::lock_guard lock(mutex_);
  calls_.push_back(call);
}

void FakeDialogs::refill() const {
  const base::ObjectRef list = control(12);
  const std::string group = base::ToText(base::Deref(control(6)).get("Text"));
  list->call("Clear");
  list->invoke("AddItem", "", 0);
  for (std::size_t i = 0; i < titles.size(); ++i)
    list->invoke("AddItem", titles[i] + " of " + group, static_cast<std::int32_t>(i) + 1);
  list->put("ListIndex", 1);
  base::Deref(control(4)).put("ListIndex", 0);
}

}  // namespace support
