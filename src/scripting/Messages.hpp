#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Failure.hpp"
#include "base/Object.hpp"
#include "scripting/Outcome.hpp"

namespace scripting {

/// What the server and the process of a script tell each other: each message is its kind, its length and its
/// content. The process speaks first to nobody: it is given its script, then asks one thing after the other
/// and waits for each answer. The server trusts nothing of what it reads.
enum class MessageKind : std::uint32_t {
  kRun = 1,      ///< to the process: its script, once, before anything else
  kAnswer = 2,   ///< to the process: what came of what it has asked
  kFailure = 3,  ///< to the process: the failure that came of it
  kCall = 4,     ///< to the server, as all that follow: an operation is called
  kGet = 5,
  kPut = 6,
  kIsField = 7,
  kSleep = 8,
  kPrint = 9,   ///< a piece of what the script prints; not answered
  kEnded = 10,  ///< how it has ended, last
};
/// Its content lies within what has come.
struct Message {
  MessageKind kind = MessageKind::kEnded;
  std::string_view content;
};

/// Of a message to the server, and of one to the process.
inline constexpr std::size_t kLongestAsked = std::size_t{65} << 20U;
inline constexpr std::size_t kLongestAnswer = std::size_t{128} << 20U;
inline constexpr std::size_t kLongestName = 1000;
/// Of a script's last error; what is longer is cut.
inline constexpr std::size_t kLongestError = std::size_t{8} << 10U;

/// A script and how long it may go on, in milliseconds; what it may print and what memory it may take, in
/// bytes.
struct Order {
  std::string name;
  std::string text;
  std::uint32_t computing = 0;
  std::uint32_t whole = 0;
  std::uint32_t output = 0;
  std::uint32_t memory = 0;
};
/// What a script asks of the house.
struct Ask {
  MessageKind kind = MessageKind::kGet;
  std::int32_t object = 0;  ///< a handle; 0 for a sleep
  std::string name{};       ///< of the member; empty for a sleep
  base::Args args{};        ///< of a call; the one value of a put; the seconds of a sleep, a double
};

std::string Encoded(const Order& order);
/// Throws number 6 for more than may be asked at once, and 5 for values that are nested too deeply.
std::string Encoded(const Ask& ask);
/// The same for more than may be answered.
std::string Encoded(const base::Value& answer);
std::string Encoded(const base::Failure& failure);
std::string Encoded(const ScriptOutcome& outcome);

/// Nothing for what is none, in whole or in part.
std::optional<Order> OrderIn(std::string_view content);
/// Also nothing where the arguments are not those of that kind.
std::optional<Ask> AskIn(const Message& message);
std::optional<base::Value> AnswerIn(std::string_view content);
std::optional<base::Failure> FailureIn(std::string_view content);
std::optional<ScriptOutcome> OutcomeIn(std::string_view content);

/// The message with its head, as it goes over a pipe.
std::string Framed(MessageKind kind, std::string_view content);
/// Takes the first whole message off the front of what has come; nothing where it is not there yet. Throws
/// std::length_error for one whose content is longer than that.
std::optional<Message> TakeMessage(std::string_view& come, std::size_t longest);

}  // namespace scripting
