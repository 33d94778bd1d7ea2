#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace base {

class Object;
class Value;

/// A reference to an object that answers by name; may be nothing.
using ObjectRef = std::shared_ptr<Object>;
using Array = std::vector<Value>;

/// A keyed collection in its own order, such as the record of a media item.
using Record = std::vector<std::pair<std::string, Value>>;

/// What crosses a boundary by name: empty, boolean, 16-bit and 32-bit integer, single, double, UTF-8
/// text (which may hold the character of code 0), object reference, array, record.
class Value {
 public:
  using Holder = std::variant<std::monostate, bool, std::int16_t, std::int32_t, float, double, std::string,
                              ObjectRef, std::shared_ptr<const Array>, std::shared_ptr<const Record>>;

  Value() = default;
  Value(bool value) : held_(value) {}                           // NOLINT(google-explicit-constructor)
  Value(std::int16_t value) : held_(value) {}                   // NOLINT(google-explicit-constructor)
  Value(std::int32_t value) : held_(value) {}                   // NOLINT(google-explicit-constructor)
  Value(float value) : held_(value) {}                          // NOLINT(google-explicit-constructor)
  Value(double value) : held_(value) {}                         // NOLINT(google-explicit-constructor)
  Value(std::string value) : held_(std::move(value)) {}         // NOLINT(google-explicit-constructor)
  Value(std::string_view value) : held_(std::string(value)) {}  // NOLINT(google-explicit-constructor)
  Value(const char* value) : held_(std::string(value)) {}       // NOLINT(google-explicit-constructor)
  Value(ObjectRef value) : held_(std::move(value)) {}           // NOLINT(google-explicit-constructor)
  template <class T>
  // NOLINTNEXTLINE(google-explicit-constructor)
  requires std::is_base_of_v<Object, T> Value(std::shared_ptr<T> value)
      : held_(ObjectRef(std::move(value))) {}
  Value(Array value);   // NOLINT(google-explicit-constructor)
  Value(Record value);  // NOLINT(google-explicit-constructor)

  [[nodiscard]] bool empty() const { return std::holds_alternative<std::monostate>(held_); }
  template <class T>
  [[nodiscard]] bool is() const {
    return std::holds_alternative<T>(held_);
  }
  [[nodiscard]] const Holder& held() const { return held_; }

  /// The array held. Throws number 13 if it is none.
  [[nodiscard]] const Array& array() const;
  /// The record held. Throws number 13 if it is none.
  [[nodiscard]] const Record& record() const;

  /// Same kind and same content; object references by identity.
  bool operator==(const Value& other) const;

 private:
  Holder held_;
};

/// Conversions between the kinds. Each throws number 13 where no conversion exists and number 6 where the
/// result does not fit. Numbers round half to even; a boolean counts as -1 or 0; empty counts as 0.

/// From a boolean, a number (0 is false) or a text: "True", "False" in any case, or a whole number text.
bool ToBoolean(const Value& value);
std::int16_t ToInt16(const Value& value);
std::int32_t ToInt32(const Value& value);
float ToSingle(const Value& value);
double ToDouble(const Value& value);
/// Booleans as "True" and "False", numbers in their shortest exact decimal form, empty as "".
std::string ToText(const Value& value);
/// The object held, or nothing where nothing or empty is held.
ObjectRef ToObject(const Value& value);
/// The object held. Throws number 91 when it is nothing.
Object& Deref(const Value& value);
Object& Deref(const ObjectRef& ref);

/// The number that a text begins with, after blanks: "12abc" is 12, "abc" is 0. Never fails.
double NumericPrefix(std::string_view text);

}  // namespace base
