// What comes from the process of a script: any bytes, in pieces. What can be read is written the same again.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/Input.hpp"
#include "fuzz/Stream.hpp"
#include "scripting/Messages.hpp"

namespace {

using scripting::MessageKind;
using support::Require;

void CheckContent(const scripting::Message& message) {
  const std::string_view content = message.content;
  if (const auto ask = scripting::AskIn(message)) {
    Require(ask->kind == message.kind && ask->name.size() <= scripting::kLongestName);
    Require(scripting::Encoded(*ask) == content);
  }
  if (const auto outcome = scripting::OutcomeIn(content)) Require(scripting::Encoded(*outcome) == content);
  if (const auto answer = scripting::AnswerIn(content)) Require(scripting::Encoded(*answer) == content);
  if (const auto order = scripting::OrderIn(content)) Require(scripting::Encoded(*order) == content);
  if (const auto failure = scripting::FailureIn(content)) {
    const auto again = scripting::FailureIn(scripting::Encoded(*failure));
    Require(again && again->number() == failure->number() && again->description() == failure->description());
  }
}

void CheckStream(std::string_view bytes, std::size_t longest) {
  support::CheckStream(bytes, longest, [longest](std::string& come, const auto& each) {
    std::string_view left = come;
    const auto message = scripting::TakeMessage(left, longest);
    if (!message) return false;
    each(scripting::Framed(message->kind, message->content));
    CheckContent(*message);
    come.erase(0, come.size() - left.size());
    return true;
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (std::uint32_t kind = 0; kind <= 11; ++kind) CheckContent({static_cast<MessageKind>(kind), bytes});
  CheckStream(bytes, scripting::kLongestAsked);
  CheckStream(bytes, 64);
  return 0;
}
