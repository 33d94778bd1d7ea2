#pragma once
#include <string>
#include <utility>
#include <vector>

#include "base/Attempt.hpp"
#include "base/Members.hpp"
#include "plugin/PluginState.hpp"

namespace script {

/// Makes members that skip failures, and that give the empty value of their type until start-up is over.
class Slots {
 public:
  explicit Slots(const plugin::PluginState& state) : state_(state) {}

  template <class Answer>
  base::Member operation(const char* name, std::vector<base::Param> params, base::Type type, Answer answer) {
    return operation(name, std::move(params), type, base::EmptyOf(type), std::move(answer));
  }
  /// An operation whose collection is no object at all before start-up is over.
  template <class Answer>
  base::Member collection(const char* name, std::vector<base::Param> params, Answer answer) {
    return operation(name, std::move(params), base::Type::kAny, base::ObjectRef(), std::move(answer));
  }
  /// An operation without result.
  template <class Act>
  base::Member command(const char* name, std::vector<base::Param> params, Act act) {
    return operation(name, std::move(params), base::Type::kNone, [act = std::move(act)](base::Args& args) {
      act(args);
      return base::Value();
    });
  }
  template <class Read>
  base::Member readField(const char* name, base::Type type, Read read) {
    base::Member member = Named(name, base::MemberKind::kReadField, type);
    member.handler =
        guarded(type, base::EmptyOf(type), [read = std::move(read)](base::Args&) { return read(); });
    return member;
  }
  template <class Write>
  base::Member writeField(const char* name, base::Type type, Write write) {
    base::Member member = Named(name, base::MemberKind::kWriteField, type);
    member.writer = guardedWriter(std::move(write));
    return member;
  }
  template <class Read, class Write>
  base::Member field(const char* name, base::Type type, Read read, Write write) {
    base::Member member = readField(name, type, std::move(read));
    member.kind = base::MemberKind::kField;
    member.writer = guardedWriter(std::move(write));
    return member;
  }

 private:
  static base::Member Named(const char* name, base::MemberKind kind, base::Type type) {
    base::Member member;
    member.name = name;
    member.kind = kind;
    member.result = type;
    return member;
  }
  template <class Answer>
  base::Member operation(const char* name, std::vector<base::Param> params, base::Type type, base::Value none,
                         Answer answer) {
    base::Member member = Named(name, base::MemberKind::kOperation, type);
    member.params = std::move(params);
    member.handler = guarded(type, std::move(none), std::move(answer));
    return member;
  }
  template <class Answer>
  std::function<base::Value(base::Args&)> guarded(base::Type type, base::Value none, Answer answer) {
    return [&state = state_, type, none = std::move(none), answer = std::move(answer)](base::Args& args) {
      base::Value result = none;
      base::Attempt step;
      if (state.Initialized) step([&] { result = base::Convert(base::Value(answer(args)), type); });
      return result;
    };
  }
  template <class Write>
  std::function<void(const base::Value&)> guardedWriter(Write write) {
    return [&state = state_, write = std::move(write)](const base::Value& value) {
      base::Attempt step;
      if (state.Initialized) step([&] { write(value); });
    };
  }

  const plugin::PluginState& state_;
};

}  // namespace script
