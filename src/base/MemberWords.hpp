#pragma once
#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/Members.hpp"

/// The words in which the tables of members are written, in the order in which they are used: arguments, what
/// a handler reads of them, operations, fields. A handler takes the arguments, or nothing where it needs
/// none; what it gives is turned into the declared type. A table says
///   using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
namespace base::words {

using base::Args;
using base::Member;
using base::MemberTable;
using base::Param;
using base::TextField;
using base::Type;
using base::Value;

inline Param Any(std::string name) { return {std::move(name)}; }
inline Param Any(std::string name, Value fallback) {
  return {std::move(name), Type::kAny, std::move(fallback)};
}
inline Param Flag(std::string name) { return {std::move(name), Type::kBoolean}; }
inline Param Flag(std::string name, bool fallback) {
  return {std::move(name), Type::kBoolean, Value(fallback)};
}
/// 16 bits.
inline Param Short(std::string name) { return {std::move(name), Type::kInt16}; }
inline Param Short(std::string name, std::int16_t fallback) {
  return {std::move(name), Type::kInt16, Value(fallback)};
}
/// 32 bits.
inline Param Number(std::string name) { return {std::move(name), Type::kInt32}; }
inline Param Number(std::string name, std::int32_t fallback) {
  return {std::move(name), Type::kInt32, Value(fallback)};
}
inline Param Text(std::string name) { return {std::move(name), Type::kText}; }
inline Param Text(std::string name, std::string fallback) {
  return {std::move(name), Type::kText, Value(std::move(fallback))};
}
inline Param Texts(std::string name) { return {std::move(name), Type::kTextList}; }
inline Param List(std::string name) { return {std::move(name), Type::kArray}; }
inline Param Reference(std::string name) { return {std::move(name), Type::kObject}; }
/// The caller gets the argument back.
inline Param InOut(Param param) {
  param.inOut = true;
  return param;
}

inline bool FlagAt(const Args& args, std::size_t i) { return ToBoolean(args[i]); }
inline std::int16_t ShortAt(const Args& args, std::size_t i) { return ToInt16(args[i]); }
inline std::int32_t NumberAt(const Args& args, std::size_t i) { return ToInt32(args[i]); }
inline std::string TextAt(const Args& args, std::size_t i) { return ToText(args[i]); }
inline ObjectRef ReferenceAt(const Args& args, std::size_t i) { return ToObject(args[i]); }

/// What a handler gives; empty where it gives nothing.
template <class Work>
Value AnswerOf(const Work& work, [[maybe_unused]] Args& args) {
  const auto run = [&]() -> decltype(auto) {
    if constexpr (std::is_invocable_v<const Work&, Args&>)
      return work(args);
    else
      return work();
  };
  if constexpr (std::is_void_v<decltype(run())>) {
    run();
    return {};
  } else {
    return Value(run());
  }
}

template <class Answer>
Member Operation(std::string name, std::vector<Param> params, Type result, Answer answer) {
  return {std::move(name), MemberKind::kOperation, std::move(params), result,
          [answer = std::move(answer)](Args& args) { return AnswerOf(answer, args); }};
}
/// An operation without result.
template <class Act>
Member Command(std::string name, std::vector<Param> params, Act act) {
  return Operation(std::move(name), std::move(params), Type::kNone, std::move(act));
}
/// An operation that always gives the same.
inline Member Constant(std::string name, Type type, Value value) {
  return Operation(std::move(name), {}, type, [value = std::move(value)] { return value; });
}

template <class Read>
Member ReadField(std::string name, Type type, Read read) {
  return {std::move(name), MemberKind::kReadField, {}, type, [read = std::move(read)](Args&) {
            return Value(read());
          }};
}
template <class Write>
Member WriteField(std::string name, Type type, Write write) {
  return {std::move(name), MemberKind::kWriteField, {}, type, {}, std::move(write)};
}
template <class Read, class Write>
Member Field(std::string name, Type type, Read read, Write write) {
  Member member = ReadField(std::move(name), type, std::move(read));
  member.kind = MemberKind::kField;
  member.writer = std::move(write);
  return member;
}

/// The members of several parts of one object, one part behind the other.
template <class... Parts>
std::vector<Member> Joined(std::vector<Member> first, Parts... more) {
  (first.insert(first.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end())),
   ...);
  return first;
}

}  // namespace base::words
