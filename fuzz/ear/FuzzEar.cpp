// What comes over the two pipes between the server and its ear: any bytes, in pieces. What can be read is
// written the same again, and a network that was read can be pruned.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ear/Messages.hpp"
#include "fuzz/Input.hpp"
#include "fuzz/Stream.hpp"

namespace {

using support::Require;

void CheckNetwork(std::string_view content) {
  std::optional<ear::SpeechNetwork> network = ear::NetworkIn(content);
  if (!network) return;
  Require(ear::Encoded(*network) == content);
  const bool leadsBack = std::any_of(network->arcs.begin(), network->arcs.end(),
                                     [](const auto& arc) { return arc.from >= arc.to; });
  if (leadsBack) return;
  const std::size_t arcs = network->arcs.size();
  ear::Prune(*network);
  Require(network->arcs.size() <= arcs);
  Require(ear::NetworkIn(ear::Encoded(*network)) == network);
}

void CheckContent(std::string_view content) {
  CheckNetwork(content);
  if (const auto learnt = ear::LearntIn(content)) Require(ear::Encoded(*learnt) == content);
  if (const auto heard = ear::HeardIn(content)) {
    Require(heard->thousandths <= 1000);
    const auto again = ear::HeardIn(ear::Encoded(*heard));
    Require(again && again->words == heard->words && again->speech == heard->speech);
  }
  const std::vector<std::int16_t> sound = ear::SoundIn(content);
  Require(ear::SoundContent(sound) == content.substr(0, content.size() / 2 * 2));
}

/// A network of few places, and what is left of it where one byte is another or its end is missing: chance
/// alone seldom makes one.
void CheckSpelled(std::string_view bytes) {
  const auto next = [&](unsigned range) {
    if (bytes.empty()) return 0U;
    const unsigned value = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    return value % range;
  };
  ear::SpeechNetwork network;
  network.places = next(40) + 1;
  network.start = next(network.places);
  network.end = next(network.places);
  for (unsigned words = next(8); words > 0; --words) network.words.emplace_back(next(5), 'a');
  const std::size_t place = next(256) * 256 + next(256);
  const auto other = static_cast<char>(next(256));
  const bool onlyAhead = next(4) > 0;
  while (!bytes.empty()) {
    const auto [low, high] = std::minmax({next(network.places), next(network.places)});
    const auto word = static_cast<std::int32_t>(next(static_cast<unsigned>(network.words.size()) + 1)) - 1;
    if (onlyAhead && low == high) continue;
    network.arcs.push_back({onlyAhead ? low : high, onlyAhead ? high : low, word});
  }
  std::string content = ear::Encoded(network);
  CheckNetwork(content);
  CheckNetwork(std::string_view(content).substr(0, place % content.size()));
  content[place % content.size()] = other;
  CheckNetwork(content);
}

void CheckStream(std::string_view bytes, std::size_t longest) {
  support::CheckStream(bytes, longest, [longest](std::string& come, const auto& each) {
    const auto message = ear::TakeMessage(come, longest);
    if (!message) return false;
    each(ear::Framed(message->kind, message->content));
    CheckContent(message->content);
    return true;
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  CheckContent(bytes);
  CheckSpelled(bytes);
  CheckStream(bytes, ear::kLongestAnswer);
  CheckStream(bytes, 64);
  return 0;
}
