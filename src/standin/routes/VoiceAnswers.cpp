#include "standin/routes/VoiceAnswers.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace standin {
namespace {

using nlohmann::json;
using Kind = Understanding::Kind;

constexpr std::size_t kMostChoices = 100;
constexpr std::size_t kMostParts = 100;  // of a sentence
constexpr std::size_t kMostInAll = 5000;
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

const char* NameOf(RoomMicrophone::State state) {
  switch (state) {
    case RoomMicrophone::State::kOff: return "off";
    case RoomMicrophone::State::kStarting: return "starting";
    case RoomMicrophone::State::kListening: return "listening";
    case RoomMicrophone::State::kFailed: break;
  }
  return "failed";
}

json JsonOf(const Understanding& understanding) {
  json choices = json::array();
  for (const Understanding::Choice& each : understanding.choices)
    choices.push_back({{"command", each.command}, {"label", each.label}});
  json told{{"kind", NameAndStatus(understanding.kind).first},
            {"heard", understanding.heard},
            {"command", understanding.command},
            {"events", understanding.events},
            {"says", understanding.says},
            {"choices", std::move(choices)}};
  if (understanding.confidence) told["confidence"] = *understanding.confidence;
  return told;
}

/// `room`: how many parts may still be told of the whole pattern. Where a sentence has more than are told,
/// its last part says how many.
json JsonOf(const std::vector<Pattern::Sequence>& choices, std::size_t& room) {
  json all = json::array();
  for (const Pattern::Sequence& sequence : choices) {
    if (all.size() >= kMostChoices || room == 0) break;
    json parts = json::array();
    for (const Pattern::Part& part : sequence) {
      if (parts.size() >= kMostParts || room == 0) {
        parts.push_back({{"more", sequence.size() - parts.size()}});
        break;
      }
      --room;
      if (part.kind == Pattern::Kind::kWords) {
        parts.push_back({{"say", part.words}});
      } else {
        const char* kind = part.kind == Pattern::Kind::kChoice ? "choice" : "optional";
        parts.push_back({{kind, JsonOf(part.choices, room)}, {"count", part.choices.size()}});
      }
    }
    all.push_back(std::move(parts));
  }
  return all;
}

/// Whether the plug-in writes the event's pattern itself, whenever its lists are read anew.
bool IsOfLibrary(const std::string& event) {
  constexpr std::array<std::string_view, 4> kAll{"PlayList VR", "Album VR", "Artist VR", "Genre VR"};
  return std::find(kAll.begin(), kAll.end(), event) != kAll.end();
}

json JsonOf(const House& house, const HouseGrammar& grammar, const HouseGrammar::Entry& entry) {
  std::vector<std::string> faults = entry.pattern->faults();
  for (std::string& each : grammar.troubles(entry.event)) faults.push_back(std::move(each));
  const Event& event = *house.events.byId(entry.event);
  std::size_t room = kMostInAll;
  json devices = json::array();
  for (const EventDevice& each : event.devices) {
    const Device* device = house.devices.byRef(each.devid);
    if (each.func == kFuncVoice && device != nullptr) devices.push_back(device->fullName());
  }
  json told{{"id", event.id},
            {"name", event.name},
            {"devices", std::move(devices)},
            {"length", event.vcmd.size()},
            {"version", VersionOf(event.vcmd)},
            {"faults", std::move(faults)},
            {"tree", JsonOf(entry.pattern->sentences(), room)},
            {"anew", IsOfLibrary(event.name)}};
  if (event.vcmd.size() <= kLongestPattern) told["pattern"] = event.vcmd;
  return told;
}

json JsonOf(const Recogniser::Status& status, bool owner) {
  json told{{"state", NameOf(status.state)}};
  if (owner) {
    told.update({{"missing", status.missing},
                 {"stale", status.stale},
                 {"words", status.words},
                 {"unspoken", status.unspoken}});
  }
  return told;
}

}  // namespace

WebAnswer AnswerOf(const Understanding& understanding) {
  const int status = NameAndStatus(understanding.kind).second;
  json told = JsonOf(understanding);
  told[status == 200 ? "done" : "error"] = understanding.says;
  WebAnswer answer = Told(told);
  answer.status = status;
  return answer;
}

WebAnswer StateOf(const House& house, VoiceCommands& voice, bool owner) {
  const auto hears = [](const EventDevice& each) { return each.func == kFuncVoice; };
  const auto nothing = std::make_shared<const Pattern>(std::string_view());
  json events = json::array();
  const std::vector<HouseGrammar::Entry>& entries = voice.grammar().entries();
  auto next = entries.begin();
  for (const auto& [id, event] : house.events.all()) {
    if (next != entries.end() && next->event == id) {
      events.push_back(JsonOf(house, voice.grammar(), *next++));
    } else if (std::any_of(event.devices.begin(), event.devices.end(), hears)) {
      // Nothing can be said to it yet, or any more: its pattern can be written.
      events.push_back(JsonOf(house, voice.grammar(), {id, nothing}));
    }
  }
  return Told({{"recogniser", JsonOf(voice.hearing(), owner)},
               {"events", std::move(events)},
               {"listen",
                {{"rate", Recogniser::kRate},
                 {"seconds", Recogniser::kLongestSeconds},
                 {"bytes", Route::kLargestBody},
                 {"type", "audio/l16;rate=16000"}}},
               {"speaks", voice.speaks()}});
}

std::string VersionOf(const std::string& pattern) {
  // FNV-1a: the same text has the same one after a restart, too.
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : pattern) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return std::to_string(hash);
}

WebAnswer RoomOf(const RoomMicrophone::Status& room) {
  json told{{"on", room.state != RoomMicrophone::State::kOff},
            {"state", NameOf(room.state)},
            {"trouble", room.trouble},
            {"heard", room.heard}};
  if (room.last) told["last"] = JsonOf(*room.last);
  return Told(told);
}

}  // namespace standin
