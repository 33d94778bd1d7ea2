#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ear/SpeechNetwork.hpp"

namespace ear {

/// What the server and its ear tell each other, over two pipes: each message is its kind, its length and its
/// content, whole numbers of 32 bits with the lowest byte first. The server trusts nothing of what it reads.
enum class MessageKind : std::uint32_t {
  kLearn = 1,   ///< to the ear: a network, once, before anything else
  kHear = 2,    ///< to the ear: sound
  kReady = 3,   ///< to the server: what the ear has learnt
  kHeard = 4,   ///< to the server: what it has heard
  kFailed = 5,  ///< to the server: why it can't go on, in words
  kBegin = 6,   ///< to the ear: a sound begins that is still being spoken; what came of another is forgotten
  kMore = 7,    ///< to the ear: a piece of it
  kEnd = 8,     ///< to the ear: that was all of it; answered as `kHear`
};
struct Message {
  MessageKind kind = MessageKind::kFailed;
  std::string content;
};
inline constexpr std::size_t kLongestMessage = std::size_t{256} << 20U;
/// Of what the ear tells; what it is told is larger.
inline constexpr std::size_t kLongestAnswer = std::size_t{1} << 20U;

/// What the ear knows of a network.
struct Learnt {
  std::uint32_t words = 0;            ///< that it can hear
  std::vector<std::string> unspoken;  ///< the first of those that nobody knows how to pronounce
};
/// What it has heard.
struct Heard {
  bool speech = false;
  std::string words{};          ///< with one blank between them
  std::uint32_t thousandths{};  ///< of certainty that it was a sentence of the network
};

std::string Encoded(const SpeechNetwork& network);
std::string Encoded(const Learnt& learnt);
std::string Encoded(const Heard& heard);
/// Nothing for what is none, in whole or in part: no place or word is out of range in what it answers, and a
/// network has no more places than its arcs join, besides its start and end.
std::optional<SpeechNetwork> NetworkIn(std::string_view content);
std::optional<Learnt> LearntIn(std::string_view content);
std::optional<Heard> HeardIn(std::string_view content);
std::string SoundContent(const std::vector<std::int16_t>& sound);
std::vector<std::int16_t> SoundIn(std::string_view content);

/// The message with its head, as it goes over a pipe.
std::string Framed(MessageKind kind, std::string_view content);
/// Takes the first whole message off what has come so far; nothing where it is not there yet. Throws
/// std::length_error for one whose content is longer than that.
std::optional<Message> TakeMessage(std::string& come, std::size_t longest = kLongestMessage);

}  // namespace ear
