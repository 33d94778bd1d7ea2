#include "standin/routes/VoiceChoices.hpp"

#include <algorithm>
#include <charconv>
#include <optional>

#include "standin/player/SearchTable.hpp"
#include "standin/text/Folding.hpp"

namespace standin {
namespace {

/// The next number of a place, taken from its front; nothing when there is none.
std::optional<std::size_t> TakeNumber(std::string_view& place) {
  std::size_t number = 0;
  const auto [end, failed] = std::from_chars(place.data(), place.data() + place.size(), number);
  if (failed != std::errc()) return std::nullopt;
  place.remove_prefix(static_cast<std::size_t>(end - place.data()));
  if (!place.empty()) {
    if (place.front() != '.' || place.size() == 1) return std::nullopt;
    place.remove_prefix(1);
  }
  return number;
}

std::string TextOf(const Pattern::Sequence& sequence);

std::string TextOf(const Pattern::Part& part) {
  if (part.kind == Pattern::Kind::kWords) return part.words;
  const bool choice = part.kind == Pattern::Kind::kChoice;
  std::string text(1, choice ? '(' : '[');
  for (const Pattern::Sequence& each : part.choices) text += (text.size() == 1 ? "" : "|") + TextOf(each);
  return text + (choice ? ')' : ']');
}

std::string TextOf(const Pattern::Sequence& sequence) {
  std::string text;
  for (const Pattern::Part& part : sequence) text += (text.empty() ? "" : " ") + TextOf(part);
  return text;
}

}  // namespace

const Pattern::Part* ChoiceAt(const Pattern& pattern, std::string_view place) {
  const std::vector<Pattern::Sequence>* choices = &pattern.sentences();
  const Pattern::Part* part = nullptr;
  do {
    const std::optional<std::size_t> sentence = TakeNumber(place);
    const std::optional<std::size_t> number = TakeNumber(place);
    if (!sentence || !number || *sentence >= choices->size() || *number >= (*choices)[*sentence].size())
      return nullptr;
    part = &(*choices)[*sentence][*number];
    choices = &part->choices;
  } while (!place.empty());
  return part->choices.empty() ? nullptr : part;
}

FoundNames NamesWith(const Pattern::Part& choice, std::string_view sought, std::size_t most) {
  SearchTable table;
  table.reserve(choice.choices.size());
  for (const Pattern::Sequence& each : choice.choices) table.add({TextOf(each)});
  const std::vector<std::uint32_t> places = table.find(SoughtWords(sought));
  FoundNames found{.names = {}, .total = places.size()};
  for (std::size_t i = 0; i < std::min(places.size(), most); ++i)
    found.names.push_back(TextOf(choice.choices[places[i]]));
  return found;
}

}  // namespace standin
