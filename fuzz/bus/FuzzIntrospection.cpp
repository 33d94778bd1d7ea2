// Introspection texts of other processes: read or refused, nothing else.
#include <cstdint>
#include <string>

#include "base/Failure.hpp"
#include "bus/Errors.hpp"
#include "bus/Introspection.hpp"
#include "fuzz/Alphabet.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = support::Spelled(data, size);
  bus::FailureOf(text, text);
  try {
    const auto node = bus::ParseNode(text);
    for (const auto& interface : node.interfaces) {
      for (const auto& method : interface.methods) bus::ShapeOf(method);
    }
  } catch (const base::Failure&) {
  }
  return 0;
}
