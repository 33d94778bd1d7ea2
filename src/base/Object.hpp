#pragma once
#include <string_view>

#include "base/Value.hpp"

namespace base {

class MemberTable;

/// Arguments of a call by name; the callee may change them in place.
using Args = std::vector<Value>;

/// An object that is reached through named operations and fields only. All three throw Failure: number 438
/// for an unknown member, 450 for too many arguments, 462 when the object's process has gone, and whatever
/// the operation itself throws.
class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  Object(Object&&) = delete;
  Object& operator=(Object&&) = delete;
  virtual ~Object() = default;

  /// Calls an operation. In/out arguments are changed in `args`. An operation without result gives empty.
  virtual Value call(std::string_view name, Args& args) = 0;
  virtual Value get(std::string_view name) = 0;
  virtual void put(std::string_view name, const Value& value) = 0;

  /// The table behind the object, for introspection; null where it answers without one.
  [[nodiscard]] virtual const MemberTable* members() const { return nullptr; }

  /// Call with arguments that are not wanted back.
  Value call(std::string_view name) {
    Args none;
    return call(name, none);
  }
  template <class... T>
  Value invoke(std::string_view name, T&&... values) {
    Args args{Value(std::forward<T>(values))...};
    return call(name, args);
  }
};

}  // namespace base
