#pragma once
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"

namespace standin {

/// The row behind a host object. Throws number 91 with `gone` when there is none any more.
template <class Row>
const Row& Present(const Row* row, const char* gone) {
  if (row == nullptr) throw base::Failure(base::number::kObjectMissing, gone);
  return *row;
}

/// A field of a host object that stands in a stored row. `read()` gives the row, or throws when it has been
/// deleted; `write(field, value)` stores a value of the field's own type.
template <class Row, class T, class Read, class Write>
base::Member StoredField(std::string name, T Row::*field, Read read, Write write) {
  constexpr base::Type kType = std::is_same_v<T, std::string>    ? base::Type::kText
                               : std::is_same_v<T, std::int16_t> ? base::Type::kInt16
                                                                 : base::Type::kInt32;
  static_assert(kType != base::Type::kInt32 || std::is_same_v<T, std::int32_t>);
  return base::words::Field(
      std::move(name), kType, [read, field] { return read().*field; },
      [write, field](const base::Value& value) {
        if constexpr (kType == base::Type::kText)
          write(field, base::ToText(value));
        else if constexpr (kType == base::Type::kInt16)
          write(field, base::ToInt16(value));
        else
          write(field, base::ToInt32(value));
      });
}

}  // namespace standin
