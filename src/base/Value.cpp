#include "base/Value.hpp"

#include <charconv>
#include <cmath>
#include <limits>

#include "base/Failure.hpp"
#include "base/Object.hpp"
#include "base/Text.hpp"

namespace base {

namespace {

[[noreturn]] void Mismatch() { throw Failure(number::kTypeMismatch); }

template <class Number>
std::string Shortest(Number value) {
  if (!std::isfinite(value)) return std::isnan(value) ? "nan" : (value < 0 ? "-inf" : "inf");
  char text[64];
  // Large and tiny numbers take an exponent, all others read as people write them.
  const Number size = std::abs(value);
  const bool plain = size == 0 || (size < Number(1e15) && size >= Number(1e-5));
  const auto end = plain ? std::to_chars(text, text + sizeof text, value, std::chars_format::fixed)
                         : std::to_chars(text, text + sizeof text, value, std::chars_format::scientific);
  return {text, end.ptr};
}

/// The number that the whole text is, blanks around it allowed.
double WholeNumber(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  if (text.empty() ||
      (text.front() != '-' && text.front() != '.' && (text.front() < '0' || text.front() > '9')))
    Mismatch();
  double value = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end.ec == std::errc::result_out_of_range) throw Failure(number::kOverflow);
  if (end.ec != std::errc() || end.ptr != text.data() + text.size() || !std::isfinite(value)) Mismatch();
  return value;
}

template <class Whole>
Whole Narrow(const Value& value) {
  const double rounded = std::nearbyint(ToDouble(value));
  if (!(rounded >= std::numeric_limits<Whole>::min() && rounded <= std::numeric_limits<Whole>::max()))
    throw Failure(number::kOverflow);
  return static_cast<Whole>(rounded);
}

}  // namespace

Value::Value(Array value) : held_(std::make_shared<const Array>(std::move(value))) {}
Value::Value(Record value) : held_(std::make_shared<const Record>(std::move(value))) {}

const Array& Value::array() const {
  const auto* held = std::get_if<std::shared_ptr<const Array>>(&held_);
  if (held == nullptr) Mismatch();
  return **held;
}

const Record& Value::record() const {
  const auto* held = std::get_if<std::shared_ptr<const Record>>(&held_);
  if (held == nullptr) Mismatch();
  return **held;
}

bool Value::operator==(const Value& other) const {
  if (held_.index() != other.held_.index()) return false;
  if (is<std::shared_ptr<const Array>>()) return array() == other.array();
  if (is<std::shared_ptr<const Record>>()) return record() == other.record();
  return held_ == other.held_;
}

bool ToBoolean(const Value& value) {
  if (const auto* held = std::get_if<bool>(&value.held())) return *held;
  if (const auto* held = std::get_if<std::string>(&value.held())) {
    if (SameText(*held, "true")) return true;
    if (SameText(*held, "false")) return false;
  }
  return ToDouble(value) != 0;
}

std::int16_t ToInt16(const Value& value) { return Narrow<std::int16_t>(value); }
std::int32_t ToInt32(const Value& value) { return Narrow<std::int32_t>(value); }

float ToSingle(const Value& value) {
  const double number = ToDouble(value);
  if (std::isfinite(number) && std::abs(number) > std::numeric_limits<float>::max())
    throw Failure(number::kOverflow);
  return static_cast<float>(number);
}

double ToDouble(const Value& value) {
  const auto& held = value.held();
  if (value.empty()) return 0;
  if (const auto* flag = std::get_if<bool>(&held)) return *flag ? -1 : 0;
  if (const auto* number = std::get_if<std::int16_t>(&held)) return *number;
  if (const auto* number = std::get_if<std::int32_t>(&held)) return *number;
  if (const auto* number = std::get_if<float>(&held)) return *number;
  if (const auto* number = std::get_if<double>(&held)) return *number;
  if (const auto* text = std::get_if<std::string>(&held)) return WholeNumber(*text);
  Mismatch();
}

std::string ToText(const Value& value) {
  const auto& held = value.held();
  if (value.empty()) return {};
  if (const auto* flag = std::get_if<bool>(&held)) return *flag ? "True" : "False";
  if (const auto* number = std::get_if<std::int16_t>(&held)) return std::to_string(*number);
  if (const auto* number = std::get_if<std::int32_t>(&held)) return std::to_string(*number);
  if (const auto* number = std::get_if<float>(&held)) return Shortest(*number);
  if (const auto* number = std::get_if<double>(&held)) return Shortest(*number);
  if (const auto* text = std::get_if<std::string>(&held)) return *text;
  Mismatch();
}

ObjectRef ToObject(const Value& value) {
  if (value.empty()) return nullptr;
  if (const auto* ref = std::get_if<ObjectRef>(&value.held())) return *ref;
  Mismatch();
}

Object& Deref(const ObjectRef& ref) {
  if (!ref) throw Failure(number::kObjectMissing);
  return *ref;
}

Object& Deref(const Value& value) { return Deref(ToObject(value)); }

double NumericPrefix(std::string_view text) {
  std::string digits;  // blanks inside a number are passed over
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\n') continue;
    const bool sign = (c == '+' || c == '-') && (digits.empty() || digits.back() == 'e');
    const bool point = c == '.' && digits.find_first_of(".e") == std::string::npos;
    const bool exponent = (c == 'e' || c == 'E') && digits.find_first_of("0123456789") != std::string::npos &&
                          digits.find('e') == std::string::npos;
    if (!sign && !point && !exponent && (c < '0' || c > '9')) break;
    digits += exponent ? 'e' : c;
  }
  const char* begin = digits.data();
  const char* end = begin + digits.size();
  if (begin != end && *begin == '+') ++begin;
  double value = 0;
  if (std::from_chars(begin, end, value).ec == std::errc() && std::isfinite(value)) return value;
  return 0;
}

}  // namespace base
