#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace standin {

/// A device's table of values as it is stored: entries behind each other, separated by code 1, each a name,
/// code 2 and a number. There may be tens of thousands, so each of these walks the text and copies nothing.

/// The name that goes with a number; nothing where no entry has it.
std::optional<std::string_view> NameOfValue(std::string_view table, std::int32_t value);
/// How many entries there are.
std::size_t CountValues(std::string_view table);
/// Another text for another table, so that whoever has read one knows that it has changed.
std::string MarkOfValues(std::string_view table);

}  // namespace standin
