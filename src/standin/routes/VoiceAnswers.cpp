#include "standin/routes/VoiceAnswers.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

namespace standin {
namespace {

using nlohmann::json;
using Kind = Understanding::Kind;

constexpr std::size_t kMostChoices = 100;
constexpr std::size_t kLongestPattern = 8000;

std::pair<const char*, int> NameAndStatus(Kind kind) {
  switch (kind) {
    case Kind::kDone: return {"done", 200};
    case Kind::kUnclear: return {"unclear", 409};
    case Kind::kUnknown: return {"unknown", 404};
    case Kind::kSilence: return {"silence", 404};
    case Kind::kDeaf: return {"deaf", 503};
    case Kind::kFailed: break;
  }
  return {"failed", 409};
}

const char* NameOf(Recogniser::State state) {
  switch (state) {
    case Recogniser::State::kOff: return "off";
    case Recogniser::State::kStarting: return "starting";
    case Recogniser::State::kReady: return "ready";
    case Recogniser::State::kFailed: break;
  }
  return "failed";
}

json JsonOf(const std::vector<Pattern::Sequence>& choices) {
  json all = json::array();
  for (const Pattern::Sequence& sequence : choices) {
    if (all.size() >= kMostChoices) break;
    json parts = json::array();
    for (const Pattern::Part& part : sequence) {
      if (part.kind == Pattern::Kind::kWords) {
        parts.push_back({{"say", part.words}});
      } else {
        const char* kind = part.kind == Pattern::Kind::kChoice ? "choice" : "optional";
        parts.push_back({{kind, JsonOf(part.choices)}, {"count", part.choices.size()}});
      }
    }
    all.push_back(std::move(parts));
  }
  return all;
}

json JsonOf(const House& house, const HouseGrammar::Entry& entry) {
  const Event& event = *house.events.byId(entry.event);
  json devices = json::array();
  for (const EventDevice& each : event.devices) {
    const Device* device = house.devices.byRef(each.devid);
    if (each.func == kFuncVoice && device != nullptr) devices.push_back(device->fullName());
  }
  json told{{"id", event.id},
            {"name", event.name},
            {"devices", std::move(devices)},
            {"length", event.vcmd.size()},
            {"faults", entry.pattern->faults()},
            {"tree", JsonOf(entry.pattern->sentences())}};
  if (event.vcmd.size() <= kLongestPattern) told["pattern"] = event.vcmd;
  return told;
}

/// As it could be written.
std::string TextOf(const Pattern::Sequence& sequence) {
  std::string all;
  for (const Pattern::Part& part : sequence) {
    if (!all.empty()) all += ' ';
    if (part.kind == Pattern::Kind::kWords) {
      all += part.words;
      continue;
    }
    const bool optional = part.kind == Pattern::Kind::kOptional;
    all += optional ? '[' : '(';
    for (std::size_t i = 0; i < part.choices.size(); ++i)
      all += (i == 0 ? "" : "|") + TextOf(part.choices[i]);
    all += optional ? ']' : ')';
  }
  return all;
}

/// Null where there is none.
const Pattern::Part* PartAt(const Pattern& pattern, std::string_view place) {
  const std::vector<Pattern::Sequence>* sequences = &pattern.sentences();
  const Pattern::Sequence* sequence = nullptr;
  const Pattern::Part* part = nullptr;
  while (!place.empty()) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(place.data(), place.data() + place.size(), number);
    if (error != std::errc()) return nullptr;
    place.remove_prefix(static_cast<std::size_t>(end - place.data()));
    if (!place.empty() && place.front() != '.') return nullptr;
    if (!place.empty()) place.remove_prefix(1);
    if (sequence == nullptr) {
      if (number >= sequences->size()) return nullptr;
      sequence = &(*sequences)[number];
      part = nullptr;
    } else {
      if (number >= sequence->size()) return nullptr;
      part = &(*sequence)[number];
      sequences = &part->choices;
      sequence = nullptr;
    }
  }
  return part != nullptr && part->kind != Pattern::Kind::kWords ? part : nullptr;
}

}  // namespace

WebAnswer ChoicesOf(VoiceCommands& voice, std::int32_t event, std::string_view place,
                    const std::string& sought) {
  const std::vector<HouseGrammar::Entry>& entries = voice.grammar().entries();
  const auto entry = std::find_if(entries.begin(), entries.end(),
                                  [&](const HouseGrammar::Entry& each) { return each.event == event; });
  const Pattern::Part* part = entry == entries.end() ? nullptr : PartAt(*entry->pattern, place);
  if (part == nullptr) return Refusal(404, "There are no such choices");
  const std::string words = SaidWords(sought);
  json names = json::array();
  std::size_t total = 0;
  for (const Pattern::Sequence& each : part->choices) {
    const std::string text = TextOf(each);
    if (SaidWords(text).find(words) == std::string::npos) continue;
    if (++total <= kMostChoices) names.push_back(text);
  }
  return Told({{"names", std::move(names)}, {"total", total}});
}

WebAnswer AnswerOf(const Understanding& understanding) {
  const auto [kind, status] = NameAndStatus(understanding.kind);
  json choices = json::array();
  for (const std::string& each : understanding.choices)
    choices.push_back({{"command", each}, {"label", each}});
  json told{{"kind", kind},
            {"heard", understanding.heard},
            {"command", understanding.command},
            {"events", understanding.events},
            {"says", understanding.says},
            {"choices", std::move(choices)},
            {status == 200 ? "done" : "error", understanding.says}};
  if (understanding.confidence) told["confidence"] = *understanding.confidence;
  WebAnswer answer = Told(told);
  answer.status = status;
  return answer;
}

WebAnswer StateOf(const House& house, VoiceCommands& voice) {
  const Recogniser::Status status = voice.recogniser().status();
  json events = json::array();
  for (const HouseGrammar::Entry& entry : voice.grammar().entries()) events.push_back(JsonOf(house, entry));
  return Told({{"recogniser",
                {{"state", NameOf(status.state)},
                 {"missing", status.missing},
                 {"words", status.words},
                 {"unspoken", status.unspoken}}},
               {"events", std::move(events)},
               {"listen",
                {{"rate", Recogniser::kRate},
                 {"seconds", Recogniser::kLongestSeconds},
                 {"bytes", Route::kLargestBody},
                 {"type", "audio/l16;rate=16000"}}},
               {"speaks", voice.speaks()}});
}

}  // namespace standin
