// Conversions of arbitrary text: each gives a value or throws the failure for it, nothing else; and what a
// number is written as reads back as that number.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/Failure.hpp"
#include "base/Interchange.hpp"
#include "base/Members.hpp"
#include "base/Text.hpp"
#include "base/Value.hpp"
#include "fuzz/Alphabet.hpp"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

template <class Conversion>
void ConvertOrFail(Conversion&& conversion) {
  try {
    conversion();
  } catch (const base::Failure& failure) {
    Require(failure.number() == base::number::kTypeMismatch || failure.number() == base::number::kOverflow);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = support::Spelled(data, size);
  const base::Value value(text);
  ConvertOrFail([&] { base::ToBoolean(value); });
  ConvertOrFail([&] { Require(base::ToInt32(value) == base::ToInt16(value)); });
  ConvertOrFail([&] { base::ToInt32(value); });
  ConvertOrFail([&] { base::ToSingle(value); });
  ConvertOrFail([&] {
    const double number = base::ToDouble(value);
    Require(std::isfinite(number));
    Require(base::ToDouble(base::ToText(number)) == number);
  });
  Require(base::ToText(value) == text);
  Require(!std::isnan(base::NumericPrefix(text)));
  for (int type = 0; type <= static_cast<int>(base::Type::kRecord); ++type)
    ConvertOrFail([&] { base::Convert(value, static_cast<base::Type>(type)); });
  Require(base::SameText(text, base::LowerCase(text)));
  const std::string repaired = base::RepairUtf8(text);
  Require(repaired.find('\0') != std::string::npos || base::IsPlainUtf8(repaired));
  if (base::IsPlainUtf8(text)) Require(repaired == text);
  const std::string open = base::InterchangeUtf8(text);
  Require(base::IsInterchangeUtf8(open));
  Require(base::IsInterchangeUtf8(text) == (open == text));
  return 0;
}
