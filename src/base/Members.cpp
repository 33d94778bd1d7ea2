#include "base/Members.hpp"

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace base {

Member TextField(const char* name, std::string& text) {
  return {name,
          MemberKind::kField,
          {},
          Type::kText,
          [&text](Args&) { return Value(text); },
          [&text](const Value& value) { text = ToText(value); }};
}

MemberTable::MemberTable(std::string interfaceName, std::vector<Member> members)
    : interfaceName_(std::move(interfaceName)), members_(std::move(members)) {
  for (std::size_t i = 0; i < members_.size(); ++i) byName_.emplace(LowerCase(members_[i].name), i);
}

const Member* MemberTable::find(std::string_view name) const {
  const auto found = byName_.find(LowerCase(name));
  return found == byName_.end() ? nullptr : &members_[found->second];
}

Value Convert(const Value& value, Type type) {
  switch (type) {
    case Type::kNone: return {};
    case Type::kAny: return value;
    case Type::kBoolean: return ToBoolean(value);
    case Type::kInt16: return ToInt16(value);
    case Type::kInt32: return ToInt32(value);
    case Type::kSingle: return ToSingle(value);
    case Type::kDouble: return ToDouble(value);
    case Type::kText: return ToText(value);
    case Type::kObject: return ToObject(value);
    case Type::kTextList: {
      if (value.empty()) return Array();
      Array texts;
      texts.reserve(value.array().size());
      for (const Value& element : value.array()) texts.emplace_back(ToText(element));
      return texts;
    }
    case Type::kArray: return value.empty() ? Value(Array()) : Value(value.array());
    case Type::kRecord: return value.empty() ? Value(Record()) : Value(value.record());
  }
  return value;
}

void ConvertArguments(const std::vector<Param>& params, Args& args) {
  for (std::size_t i = 0; i < args.size(); ++i) {
    const bool isText = params[i].type == Type::kText && args[i].is<std::string>();
    if (!isText) args[i] = Convert(args[i], params[i].type);
  }
}

Value EmptyOf(Type type) {
  switch (type) {
    case Type::kNone:
    case Type::kAny: return {};
    case Type::kObject: return ObjectRef();
    default: return Convert(Value(), type);
  }
}

namespace {

const Member& Find(const MemberTable& table, std::string_view name) {
  const Member* member = table.find(name);
  if (member == nullptr)
    throw Failure(number::kNoSuchMember, "The object has no such member: " + std::string(name));
  return *member;
}

}  // namespace

Value TableObject::call(std::string_view name, Args& args) {
  const Member& member = Find(table_, name);
  if (member.kind != MemberKind::kOperation) {
    // Scripts read a field with the same words as they call an operation without arguments.
    if (args.empty()) return get(name);
    throw Failure(number::kWrongArguments, member.name + " is a field");
  }
  if (args.size() > member.params.size())
    throw Failure(number::kWrongArguments,
                  member.name + " takes at most " + std::to_string(member.params.size()) + " arguments");
  for (std::size_t i = args.size(); i < member.params.size(); ++i) {
    if (!member.params[i].fallback)
      throw Failure(number::kWrongArguments, member.name + " needs the argument " + member.params[i].name);
    args.push_back(*member.params[i].fallback);
  }
  if (!member.convertsItself) ConvertArguments(member.params, args);
  const Value result = member.handler(args);
  return Convert(result, member.result);
}

Value TableObject::get(std::string_view name) {
  const Member& member = Find(table_, name);
  if (member.kind != MemberKind::kField && member.kind != MemberKind::kReadField)
    throw Failure(number::kNoSuchMember, member.name + " can't be read");
  Args none;
  return Convert(member.handler(none), member.result);
}

void TableObject::put(std::string_view name, const Value& value) {
  const Member& member = Find(table_, name);
  if (member.kind != MemberKind::kField && member.kind != MemberKind::kWriteField)
    throw Failure(number::kNoSuchMember, member.name + " can't be written");
  member.writer(member.convertsItself ? value : Convert(value, member.result));
}

}  // namespace base
