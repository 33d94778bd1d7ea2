#include "script/ScriptTable.hpp"

#include <utility>

#include "base/Attempt.hpp"

namespace script {

using base::Args;
using base::Attempt;
using base::Member;
using base::Value;

namespace {

Member Skipping(const plugin::PluginState& state, Slot slot) {
  Member& member = slot.member;
  member.convertsItself = true;
  if (member.handler)
    member.handler = [&state, slot](Args& args) {
      if (!slot.always && !state.Initialized) return slot.start;
      Value result = slot.failure;
      Attempt step;
      step([&] {
        base::ConvertArguments(slot.member.params, args);
        result = base::Convert(slot.member.handler(args), slot.member.result);
      });
      return result;
    };
  if (member.writer)
    member.writer = [&state, type = member.result, write = std::move(member.writer)](const Value& value) {
      Attempt step;
      if (state.Initialized) step([&] { write(base::Convert(value, type)); });
    };
  return std::move(member);
}

}  // namespace

Slot::Slot(Member member)
    : member(std::move(member)), start(base::EmptyOf(this->member.result)), failure(start) {}

Slot Collection(Member member) {
  Slot slot(std::move(member));
  slot.start = base::ObjectRef();
  slot.failure = base::Array();
  return slot;
}

Slot Unread(Member member, base::Record unread) {
  Slot slot(std::move(member));
  slot.failure = std::move(unread);
  return slot;
}

Slot Always(Member member) {
  Slot slot(std::move(member));
  slot.always = true;
  return slot;
}

std::vector<Member> Skipping(const plugin::PluginState& state, std::vector<Slot> slots) {
  std::vector<Member> members;
  members.reserve(slots.size());
  for (Slot& slot : slots) members.push_back(Skipping(state, std::move(slot)));
  return members;
}

}  // namespace script
