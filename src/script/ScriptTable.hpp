#pragma once
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/Attempt.hpp"
#include "base/Members.hpp"
#include "plugin/host/PluginState.hpp"

namespace script {

/// Makes members that skip failures, the conversion of their arguments among them, and that give the empty
/// value of their type until start-up is over.
class Slots {
 public:
  explicit Slots(const plugin::PluginState& state) : state_(state) {}

  template <class Answer>
  base::Member operation(const char* name, std::vector<base::Param> params, base::Type type, Answer answer) {
    const base::Value none = base::EmptyOf(type);
    return operation(name, std::move(params), type, {none, none}, std::move(answer));
  }
  /// An operation whose collection is no object at all before start-up is over, and is made in any case
  /// afterwards.
  template <class Answer>
  base::Member collection(const char* name, std::vector<base::Param> params, Answer answer) {
    return operation(name, std::move(params), base::Type::kAny, {base::ObjectRef(), base::Array()},
                     std::move(answer));
  }
  /// An operation that gives `unread` where it fails.
  template <class Answer>
  base::Member record(const char* name, std::vector<base::Param> params, base::Record unread, Answer answer) {
    return operation(name, std::move(params), base::Type::kRecord, {base::Record(), std::move(unread)},
                     std::move(answer));
  }
  /// An operation without result.
  template <class Act>
  base::Member command(const char* name, std::vector<base::Param> params, Act act) {
    return operation(name, std::move(params), base::Type::kNone, [act = std::move(act)](base::Args& args) {
      act(args);
      return base::Value();
    });
  }
  /// An operation that also works before start-up is over.
  template <class Answer>
  static base::Member always(const char* name, std::vector<base::Param> params, base::Type type,
                             Answer answer) {
    base::Member member = Named(name, base::MemberKind::kOperation, type);
    member.handler = [type, convert = Converter(params), answer = std::move(answer)](base::Args& args) {
      return Skipping(base::EmptyOf(type), type, [&] {
        convert(args);
        return answer(args);
      });
    };
    member.params = std::move(params);
    return member;
  }
  template <class Read>
  base::Member readField(const char* name, base::Type type, Read read) {
    base::Member member = Named(name, base::MemberKind::kReadField, type);
    member.handler = [&state = state_, type, read = std::move(read)](base::Args&) {
      const base::Value none = base::EmptyOf(type);
      return state.Initialized ? Skipping(none, type, read) : none;
    };
    return member;
  }
  template <class Write>
  base::Member writeField(const char* name, base::Type type, Write write) {
    base::Member member = Named(name, base::MemberKind::kWriteField, type);
    member.writer = writer(type, std::move(write));
    return member;
  }
  template <class Read, class Write>
  base::Member field(const char* name, base::Type type, Read read, Write write) {
    base::Member member = readField(name, type, std::move(read));
    member.kind = base::MemberKind::kField;
    member.writer = writer(type, std::move(write));
    return member;
  }

 private:
  /// What an operation answers when it can't do its work.
  struct Without {
    base::Value start;    ///< before start-up is over
    base::Value failure;  ///< where it fails
  };

  static base::Member Named(const char* name, base::MemberKind kind, base::Type type) {
    base::Member member;
    member.name = name;
    member.kind = kind;
    member.result = type;
    member.convertsItself = true;
    return member;
  }
  static std::function<void(base::Args&)> Converter(std::vector<base::Param> params) {
    return [params = std::move(params)](base::Args& args) { base::ConvertArguments(params, args); };
  }
  template <class Answer>
  static base::Value Skipping(base::Value result, base::Type type, Answer&& answer) {
    base::Attempt step;
    step([&] { result = base::Convert(base::Value(answer()), type); });
    return result;
  }

  template <class Answer>
  base::Member operation(const char* name, std::vector<base::Param> params, base::Type type, Without without,
                         Answer answer) {
    base::Member member = Named(name, base::MemberKind::kOperation, type);
    member.handler = [&state = state_, type, without = std::move(without), convert = Converter(params),
                      answer = std::move(answer)](base::Args& args) {
      if (!state.Initialized) return without.start;
      return Skipping(without.failure, type, [&] {
        convert(args);
        return answer(args);
      });
    };
    member.params = std::move(params);
    return member;
  }
  template <class Write>
  std::function<void(const base::Value&)> writer(base::Type type, Write write) {
    return [&state = state_, type, write = std::move(write)](const base::Value& value) {
      base::Attempt step;
      if (state.Initialized) step([&] { write(base::Convert(value, type)); });
    };
  }

  const plugin::PluginState& state_;
};

}  // namespace script
