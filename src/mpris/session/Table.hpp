#pragma once
#include <functional>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "mpris/session/Value.hpp"

namespace mpris {

/// What a caller on the bus is answered where his call is not done.
class Refusal : public base::Failure {
 public:
  /// `kind` stands behind "org.freedesktop.DBus.Error.".
  Refusal(const char* kind, const std::string& description)
      : Failure(base::number::kInvalidArgument, description), kind_(kind) {}
  [[nodiscard]] std::string name() const { return std::string("org.freedesktop.DBus.Error.") + kind_; }

 private:
  const char* kind_;
};

inline constexpr const char* kInvalidArgs = "InvalidArgs";
inline constexpr const char* kNotSupported = "NotSupported";
inline constexpr const char* kUnknownMethod = "UnknownMethod";
inline constexpr const char* kUnknownObject = "UnknownObject";
inline constexpr const char* kUnknownInterface = "UnknownInterface";
inline constexpr const char* kUnknownProperty = "UnknownProperty";
inline constexpr const char* kPropertyReadOnly = "PropertyReadOnly";

using Values = std::vector<Value>;

struct Argument {
  std::string name;
  std::string type;
};

struct Method {
  std::string name;
  std::vector<Argument> in;
  std::vector<Argument> out;
  /// The arguments have the declared types. May throw Refusal.
  std::function<Values(const Values& arguments)> run;
};

/// Who hears of a property's change.
enum class Told {
  kEverybody,  ///< with the new value
  kNobody,     ///< it is asked for
};

struct Property {
  std::string name;
  std::string type;
  Told told = Told::kEverybody;
  std::function<Value()> read;
  /// The value has the declared type. None for a property that is only read. May throw Refusal.
  std::function<void(const Value& value)> write{};
};

struct Signal {
  std::string name;
  std::vector<Argument> arguments;
};

struct Interface {
  std::string name;
  std::vector<Method> methods;
  std::vector<Property> properties;
  std::vector<Signal> signals;
};

/// The argument at that place, which has that type.
template <class T>
const T& At(const Values& arguments, std::size_t place) {
  return std::get<T>(arguments.at(place).held);
}

/// A method without arguments and without answer.
template <class Act>
Method Plain(std::string name, Act act) {
  return {std::move(name), {}, {}, [act = std::move(act)](const Values&) {
            act();
            return Values();
          }};
}

/// A property that never changes.
inline Property Constant(std::string name, Value value) {
  std::string type = SignatureOf(value);
  return {std::move(name), std::move(type), Told::kEverybody, [value = std::move(value)] { return value; }};
}

}  // namespace mpris
