// Introspection texts of other processes: read or refused, nothing else.
#include <array>
#include <cstdint>
#include <string>

#include "base/Failure.hpp"
#include "bus/Errors.hpp"
#include "bus/Introspection.hpp"
#include "fuzz/Alphabet.hpp"

namespace {

/// Bytes from 0x80 on stand for whole elements, which chance would not spell.
std::string Elements(const std::uint8_t* data, std::size_t size) {
  constexpr std::uint8_t kFirst = 0x80;
  constexpr std::array kElements{"<node>",
                                 "</node>",
                                 "<interface name='a'>",
                                 "</interface>",
                                 "<method name='m'>",
                                 "</method>",
                                 "<arg name='x' type='s'/>",
                                 "<arg type='v' direction='out'>",
                                 "</arg>",
                                 "<annotation name='org.vantorix.Default' value='1'/>",
                                 "<property name='p' type='s' access='read'/>",
                                 "<signal name='s'>",
                                 "</signal>"};
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    const auto place = static_cast<std::size_t>(data[i] - kFirst);
    if (data[i] >= kFirst && place < kElements.size())
      text += kElements.at(place);
    else
      text += support::Spelled(data + i, 1);
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = Elements(data, size);
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
