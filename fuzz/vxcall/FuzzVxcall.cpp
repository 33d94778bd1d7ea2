// The command line of vxcall, one word a line: it is understood or refused as wrong usage, nothing else.
#include <cstdint>
#include <string>

#include "base/Text.hpp"
#include "fuzz/Alphabet.hpp"
#include "vxcall/Arguments.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto words = base::Split(support::Spelled(data, size), '\n');
  const vxcall::ObjectMaker noObjects = [](const std::string&, const std::string&) {
    return base::ObjectRef();
  };
  try {
    const auto request = vxcall::ParseArguments(words);
    for (const auto& word : request.arguments) vxcall::ParseValue(word, "", noObjects);
  } catch (const vxcall::UsageError&) {
  }
  for (const auto& word : words) {
    for (const char* type : {"b", "n", "i", "d", "s", "v", "as"}) {
      try {
        vxcall::ParseValue(word, type, noObjects);
      } catch (const vxcall::UsageError&) {
      }
    }
  }
  return 0;
}
