#pragma once
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/Members.hpp"

/// Short words for tables of members.
namespace player::table {

using base::Args;
using base::Member;
using base::MemberKind;
using base::Param;
using base::Type;
using base::Value;

template <class Answer>
Member Operation(const char* name, std::vector<Param> params, Type result, Answer answer) {
  return {name, MemberKind::kOperation, std::move(params), result,
          [answer = std::move(answer)](Args& args) { return Value(answer(args)); }};
}

/// An operation that answers nothing.
template <class Act>
Member Command(const char* name, std::vector<Param> params, Act act) {
  return {name, MemberKind::kOperation, std::move(params), Type::kNone, [act = std::move(act)](Args& args) {
            act(args);
            return Value();
          }};
}

template <class Read>
Member ReadField(const char* name, Type type, Read read) {
  return {name, MemberKind::kReadField, {}, type, [read = std::move(read)](Args&) { return Value(read()); }};
}

template <class Read, class Write>
Member Field(const char* name, Type type, Read read, Write write) {
  return {name,
          MemberKind::kField,
          {},
          type,
          [read = std::move(read)](Args&) { return Value(read()); },
          [write = std::move(write)](const Value& value) { write(value); }};
}

inline Param Text(const char* name) { return {name, Type::kText}; }
inline Param Number(const char* name) { return {name, Type::kInt32}; }
inline Param Object(const char* name) { return {name, Type::kObject}; }
inline std::string TextAt(const Args& args, std::size_t i) { return base::ToText(args[i]); }
inline std::int32_t NumberAt(const Args& args, std::size_t i) { return base::ToInt32(args[i]); }

/// An object of the model: its table, and what it keeps alive.
template <class Kept>
class Shown : public base::TableObject {
 public:
  Shown(std::shared_ptr<Kept> kept, base::MemberTable table)
      : TableObject(std::move(table)), kept_(std::move(kept)) {}
  [[nodiscard]] const std::shared_ptr<Kept>& behind() const { return kept_; }

 private:
  std::shared_ptr<Kept> kept_;
};

template <class Kept>
base::ObjectRef Show(const std::shared_ptr<Kept>& kept, const char* name, std::vector<Member> members) {
  if (!kept) return nullptr;
  return std::make_shared<Shown<Kept>>(kept, base::MemberTable(name, std::move(members)));
}

/// An object for a part of the control itself, which outlives it.
inline base::ObjectRef Show(const char* name, std::vector<Member> members) {
  return std::make_shared<Shown<void>>(nullptr, base::MemberTable(name, std::move(members)));
}

template <class Kept>
std::shared_ptr<Kept> Behind(const Value& value) {
  const base::ObjectRef object = base::ToObject(value);
  if (!object) return nullptr;
  const auto* shown = dynamic_cast<const Shown<Kept>*>(object.get());
  if (shown == nullptr) throw base::Failure(base::number::kTypeMismatch);
  return shown->behind();
}

}  // namespace player::table
