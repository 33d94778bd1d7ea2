#include "ear/Messages.hpp"

#include <algorithm>

#include "wire/Bytes.hpp"
#include "wire/Frames.hpp"

namespace ear {
namespace {

using wire::PutNumber;
using wire::PutText;

constexpr std::size_t kNumber = 4;

class Reader : public wire::Bytes {
 public:
  using Bytes::Bytes;
  /// How many things of at least that size can still come.
  std::uint32_t count(std::size_t size) {
    const std::uint32_t value = number();
    if (value <= left() / size) return value;
    fail();
    return 0;
  }
  std::vector<std::string> texts() {
    std::vector<std::string> all(count(kNumber));
    for (std::string& each : all) each = text();
    return all;
  }
};

void PutTexts(std::string& out, const std::vector<std::string>& texts) {
  PutNumber(out, static_cast<std::uint32_t>(texts.size()));
  for (const std::string& each : texts) PutText(out, each);
}

bool InRange(const SpeechNetwork& network) {
  const auto words = static_cast<std::int64_t>(network.words.size());
  // A place that nothing leads to or from is nobody's: their number may be any.
  const bool counted = network.places <= 2 * std::uint64_t{network.arcs.size()} + 2;
  return counted && network.start < network.places && network.end < network.places &&
         std::all_of(network.arcs.begin(), network.arcs.end(), [&](const SpeechNetwork::Arc& arc) {
           return arc.from < network.places && arc.to < network.places &&
                  arc.word >= SpeechNetwork::kNoWord && arc.word < words;
         });
}

}  // namespace

std::string Encoded(const SpeechNetwork& network) {
  std::string out;
  PutNumber(out, network.places);
  PutNumber(out, network.start);
  PutNumber(out, network.end);
  PutTexts(out, network.words);
  PutNumber(out, static_cast<std::uint32_t>(network.arcs.size()));
  for (const SpeechNetwork::Arc& arc : network.arcs) {
    PutNumber(out, arc.from);
    PutNumber(out, arc.to);
    PutNumber(out, static_cast<std::uint32_t>(arc.word));
  }
  PutNumber(out, static_cast<std::uint32_t>(network.spellings.size()));
  for (const SpeechNetwork::Spelling& each : network.spellings) {
    PutText(out, each.word);
    PutText(out, each.written);
  }
  return out;
}

std::optional<SpeechNetwork> NetworkIn(std::string_view content) {
  Reader reader(content);
  SpeechNetwork network;
  network.places = reader.number();
  network.start = reader.number();
  network.end = reader.number();
  network.words = reader.texts();
  network.arcs.resize(reader.count(3 * kNumber));
  for (SpeechNetwork::Arc& arc : network.arcs) {
    arc.from = reader.number();
    arc.to = reader.number();
    arc.word = static_cast<std::int32_t>(reader.number());
  }
  network.spellings.resize(reader.count(2 * kNumber));
  for (SpeechNetwork::Spelling& each : network.spellings) {
    each.word = reader.text();
    each.written = reader.text();
  }
  if (!reader.whole() || !InRange(network)) return std::nullopt;
  return network;
}

std::string Encoded(const Learnt& learnt) {
  std::string out;
  PutNumber(out, learnt.words);
  PutTexts(out, learnt.unspoken);
  return out;
}

std::optional<Learnt> LearntIn(std::string_view content) {
  Reader reader(content);
  Learnt learnt;
  learnt.words = reader.number();
  learnt.unspoken = reader.texts();
  if (!reader.whole()) return std::nullopt;
  return learnt;
}

std::string Encoded(const Heard& heard) {
  std::string out;
  PutNumber(out, heard.speech ? 1 : 0);
  PutText(out, heard.words);
  PutNumber(out, heard.thousandths);
  return out;
}

std::optional<Heard> HeardIn(std::string_view content) {
  Reader reader(content);
  Heard heard;
  heard.speech = reader.number() != 0;
  heard.words = reader.text();
  heard.thousandths = std::min<std::uint32_t>(reader.number(), 1000);
  if (!reader.whole()) return std::nullopt;
  return heard;
}

std::string SoundContent(const std::vector<std::int16_t>& sound) {
  std::string out;
  out.reserve(sound.size() * 2);
  for (const std::int16_t sample : sound) {
    const auto bits = static_cast<std::uint16_t>(sample);
    out += static_cast<char>(bits & 0xFFU);
    out += static_cast<char>(bits >> 8U);
  }
  return out;
}

std::vector<std::int16_t> SoundIn(std::string_view content) {
  std::vector<std::int16_t> sound(content.size() / 2);
  for (std::size_t i = 0; i < sound.size(); ++i) {
    const auto low = static_cast<unsigned char>(content[2 * i]);
    const auto high = static_cast<unsigned char>(content[2 * i + 1]);
    sound[i] = static_cast<std::int16_t>(static_cast<std::uint16_t>(high << 8U | low));
  }
  return sound;
}

std::string Framed(MessageKind kind, std::string_view content) {
  return wire::Framed(static_cast<std::uint32_t>(kind), content);
}

std::optional<Message> TakeMessage(std::string& come, std::size_t longest) {
  std::string_view left = come;
  const auto frame = wire::TakeFrame(left, longest);
  if (!frame) return std::nullopt;
  Message message{static_cast<MessageKind>(frame->kind), std::string(frame->content)};
  come.erase(0, come.size() - left.size());
  return message;
}

}  // namespace ear
