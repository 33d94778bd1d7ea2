#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/Object.hpp"

namespace base {

/// The declared type of a result or an argument. Arguments are converted to it before the handler runs
/// (`kAny` is passed as it comes), unless the member converts them itself; results are converted to it on
/// their way out.
enum class Type {
  kNone,  ///< no result, or a result that is always empty
  kAny,   ///< dynamically typed
  kBoolean,
  kInt16,
  kInt32,
  kSingle,
  kDouble,
  kText,
  kObject,
  kTextList,  ///< an array whose elements are all texts
  kArray,
  kRecord,
};

/// One argument of an operation.
struct Param {
  std::string name;
  Type type = Type::kAny;
  std::optional<Value> fallback{};  ///< the value of a missing trailing argument; none means it is required
  bool inOut = false;               ///< the caller gets the argument back
};

enum class MemberKind { kOperation, kReadField, kWriteField, kField };

/// One operation or field of a public object.
struct Member {
  std::string name;
  MemberKind kind = MemberKind::kOperation;
  std::vector<Param> params;                   ///< of an operation
  Type result = Type::kNone;                   ///< of an operation; the type of a field
  std::function<Value(Args&)> handler;         ///< an operation, or a field's reading (no arguments)
  std::function<void(const Value&)> writer{};  ///< a field's writing
  bool convertsItself = false;                 ///< arguments and written values reach it as they come
};

/// A field that reads and writes a text of the object.
Member TextField(const char* name, std::string& text);

/// The members of an object in the order of its interface. Names are found without regard to case, as
/// scripts spell them freely.
class MemberTable {
 public:
  /// `interfaceName` is the text after "org.vantorix." in introspection.
  MemberTable(std::string interfaceName, std::vector<Member> members);

  [[nodiscard]] const std::string& interfaceName() const { return interfaceName_; }
  [[nodiscard]] const std::vector<Member>& list() const { return members_; }
  /// The member of that name, or null.
  [[nodiscard]] const Member* find(std::string_view name) const;

 private:
  std::string interfaceName_;
  std::vector<Member> members_;
  std::map<std::string, std::size_t, std::less<>> byName_;
};

/// An object that answers from one table.
class TableObject : public Object {
 public:
  using Object::call;
  /// Fills in defaults, converts, runs the handler, converts the result.
  Value call(std::string_view name, Args& args) override;
  Value get(std::string_view name) override;
  void put(std::string_view name, const Value& value) override;
  [[nodiscard]] const MemberTable* members() const override { return &table_; }

 protected:
  explicit TableObject(MemberTable table) : table_(std::move(table)) {}
  /// For a table whose handlers refer to the object's own members: given at the end of its constructor.
  TableObject() : table_({}, {}) {}
  void setTable(MemberTable table) { table_ = std::move(table); }

 private:
  MemberTable table_;
};

/// Converts to a declared type. Throws numbers 13 and 6 as the conversions do.
Value Convert(const Value& value, Type type);
/// Converts each argument to its declared type. Throws as `Convert` does.
void ConvertArguments(const std::vector<Param>& params, Args& args);
/// The empty value of a type: 0, false, "", nothing, an empty list.
Value EmptyOf(Type type);

}  // namespace base
