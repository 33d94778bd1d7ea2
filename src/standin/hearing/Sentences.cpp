#include "standin/hearing/Sentences.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "standin/hearing/QuickPlay.hpp"

namespace standin {

std::vector<std::int32_t> Sentences::devicesOf(std::int32_t event) const {
  std::vector<std::int32_t> refs;
  const Event* known = house_.events.byId(event);
  for (const EventDevice& entry : known != nullptr ? known->devices : std::vector<EventDevice>()) {
    if (entry.func != kFuncVoice || house_.devices.byRef(entry.devid) == nullptr) continue;
    if (std::find(refs.begin(), refs.end(), entry.devid) == refs.end()) refs.push_back(entry.devid);
  }
  return refs;
}

std::string Sentences::categoryOf(const std::vector<std::int32_t>& refs) const {
  std::string category;
  for (const std::int32_t ref : refs) {
    std::string each = QuickCategory(house_.devices.byRef(ref)->fullName());
    if (!each.empty()) category = std::move(each);
  }
  return category;
}

std::string Sentences::labelOf(const std::string& category, const std::string& command) const {
  const std::optional<std::size_t> name = category.empty() ? std::nullopt : PlayedNameAt(category, command);
  if (!name) return command;
  return command.substr(0, *name) + grammar_.libraryName(category, command.substr(*name));
}

void Sentences::settle(std::vector<Said>& said) const {
  std::erase_if(said, [this](const Said& each) { return devicesOf(each.event).empty(); });
  for (Said& each : said) each.command = CommandFor(categoryOf(devicesOf(each.event)), each);
  // What an event for other devices says in the same words is told apart by its category.
  const std::vector<Said> worded = said;
  for (Said& each : said) {
    const std::vector<std::int32_t> refs = devicesOf(each.event);
    const bool shared = std::any_of(worded.begin(), worded.end(), [&](const Said& other) {
      return other.event != each.event && other.command == each.command && devicesOf(other.event) != refs;
    });
    if (shared && !categoryOf(refs).empty()) each.command = each.whole;
  }
}

std::vector<Sentences::Choice> Sentences::choicesOf(const std::vector<Said>& said) const {
  std::vector<Choice> choices;
  for (const Said& each : said) {
    const std::string category = categoryOf(devicesOf(each.event));
    // Of other words than a category, such as "No", the one that was left out makes another command.
    const bool doubtful = !category.empty() && std::any_of(said.begin(), said.end(), [&](const Said& other) {
      return other.command == each.command && other.whole != each.whole &&
             (other.event == each.event || devicesOf(other.event) != devicesOf(each.event));
    });
    const std::string& words = doubtful ? each.whole : each.command;
    if (std::any_of(choices.begin(), choices.end(),
                    [&](const Choice& known) { return known.command == words; }))
      continue;
    choices.push_back({words, labelOf(category, words)});
  }
  // Names that are the same to the eye are told apart by their keys.
  std::vector<bool> twins;
  twins.reserve(choices.size());
  for (const Choice& each : choices)
    twins.push_back(std::count_if(choices.begin(), choices.end(),
                                  [&](const Choice& other) { return other.label == each.label; }) > 1);
  for (std::size_t i = 0; i < choices.size(); ++i)
    if (twins[i]) choices[i].label = choices[i].command;
  return choices;
}

}  // namespace standin
