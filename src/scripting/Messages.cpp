#include "scripting/Messages.hpp"

#include "scripting/Values.hpp"
#include "wire/Bytes.hpp"
#include "wire/Frames.hpp"

namespace scripting {
namespace {

using wire::Bytes;
using wire::PutNumber;
using wire::PutText;

bool Fits(const Ask& ask) {
  const std::size_t count = ask.args.size();
  switch (ask.kind) {
    case MessageKind::kCall: return true;
    case MessageKind::kGet:
    case MessageKind::kIsField: return count == 0;
    case MessageKind::kPut: return count == 1;
    case MessageKind::kSleep:
      return count == 1 && ask.args[0].is<double>() && ask.object == 0 && ask.name.empty();
    default: return false;
  }
}

}  // namespace

std::string Encoded(const Order& order) {
  std::string out;
  PutText(out, order.name);
  PutText(out, order.text);
  for (const std::uint32_t each : {order.computing, order.whole, order.output, order.memory})
    PutNumber(out, each);
  return out;
}

std::optional<Order> OrderIn(std::string_view content) {
  Bytes in(content);
  Order order;
  order.name = in.text();
  order.text = in.text();
  order.computing = in.number();
  order.whole = in.number();
  order.output = in.number();
  order.memory = in.number();
  if (!in.whole()) return std::nullopt;
  return order;
}

std::string Encoded(const Ask& ask) {
  std::string out;
  PutNumber(out, static_cast<std::uint32_t>(ask.object));
  PutText(out, ask.name);
  PutNumber(out, static_cast<std::uint32_t>(ask.args.size()));
  std::size_t left = kMostAsked;
  for (const base::Value& each : ask.args) PutValue(out, each, left);
  return out;
}

std::optional<Ask> AskIn(const Message& message) {
  Bytes in(message.content);
  Ask ask{.kind = message.kind, .object = static_cast<std::int32_t>(in.number())};
  const std::string_view name = in.text();
  if (name.size() > kLongestName) return std::nullopt;
  ask.name = name;
  std::size_t left = kMostAsked;
  for (std::uint32_t count = in.number(); count > 0 && in.good(); --count)
    ask.args.push_back(ReadValue(in, left));
  if (!in.whole() || !Fits(ask)) return std::nullopt;
  return ask;
}

std::string Encoded(const base::Value& answer) {
  std::string out;
  std::size_t left = kMostAnswered;
  PutValue(out, answer, left);
  if (out.size() > kLongestAnswer) throw base::Failure(base::number::kOverflow, "The value is too large");
  return out;
}

std::optional<base::Value> AnswerIn(std::string_view content) {
  Bytes in(content);
  std::size_t left = kMostAnswered;
  base::Value answer = ReadValue(in, left);
  if (!in.whole()) return std::nullopt;
  return answer;
}

std::string Encoded(const base::Failure& failure) {
  std::string out;
  PutNumber(out, static_cast<std::uint32_t>(failure.number()));
  PutText(out, failure.description());
  return out;
}

std::optional<base::Failure> FailureIn(std::string_view content) {
  Bytes in(content);
  const auto number = static_cast<std::int32_t>(in.number());
  const std::string description(in.text());
  if (!in.whole() || description.find('\0') != std::string::npos) return std::nullopt;
  return base::Failure(number, description);
}

std::string Encoded(const ScriptOutcome& outcome) {
  std::string out;
  PutText(out, std::string_view(outcome.error).substr(0, kLongestError));
  PutNumber(out, static_cast<std::uint32_t>(outcome.line));
  return out;
}

std::optional<ScriptOutcome> OutcomeIn(std::string_view content) {
  Bytes in(content);
  ScriptOutcome outcome;
  const std::string_view error = in.text();
  outcome.line = static_cast<std::int32_t>(in.number());
  if (!in.whole() || error.size() > kLongestError || outcome.line < 0) return std::nullopt;
  outcome.error = error;
  return outcome;
}

std::string Framed(MessageKind kind, std::string_view content) {
  return wire::Framed(static_cast<std::uint32_t>(kind), content);
}

std::optional<Message> TakeMessage(std::string_view& come, std::size_t longest) {
  const auto frame = wire::TakeFrame(come, longest);
  if (!frame) return std::nullopt;
  return Message{static_cast<MessageKind>(frame->kind), frame->content};
}

}  // namespace scripting
