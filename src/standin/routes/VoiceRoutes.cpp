// What the pages say to the house, and what can be said.
#include <algorithm>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "standin/hearing/SentSound.hpp"
#include "standin/routes/Routes.hpp"
#include "standin/routes/VoiceAnswers.hpp"
#include "standin/routes/VoiceChoices.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestText = 500;
constexpr std::size_t kMostFound = 100;
constexpr std::size_t kLongestPattern = std::size_t{1} << 20U;

void Say(VoiceCommands& voice, const WebCall& call, const Reply& reply) {
  const auto text = call.json.at("text").get<std::string>();
  if (text.empty() || text.size() > kLongestText)
    return reply(Refusal(400, "Say something of up to 500 characters"));
  voice.say({call.token, call.user.guest}, text,
            [reply](const Understanding& understanding) { reply(AnswerOf(understanding)); });
}

void Listen(VoiceCommands& voice, Quiet& quiet, const WebCall& call, const Reply& reply) {
  quiet.end(call.token);  // before the command: "pause" is meant for what is playing
  std::vector<std::int16_t> sound;
  try {
    sound = SentSound(call.type, call.body);
  } catch (const base::Failure& failure) {
    return reply(Refusal(415, failure.description()));
  }
  voice.listen({call.token, call.user.guest}, std::move(sound),
               [reply](const Understanding& understanding) { reply(AnswerOf(understanding)); });
}

WebAnswer TellPattern(House& house, const WebCall& call) {
  const Event* event = house.events.byId(call.number<std::int32_t>("event"));
  if (event == nullptr) return Refusal(404, "There is no such event");
  return Told({{"id", event->id}, {"pattern", event->vcmd}});
}

/// It is answered when it holds for what is said next.
void PutPattern(House& house, HouseGrammar& grammar, const WebCall& call, const Reply& reply) {
  const auto id = call.json.at("event").get<std::int32_t>();
  const auto pattern = call.json.at("pattern").get<std::string>();
  if (house.events.byId(id) == nullptr) return reply(Refusal(404, "There is no such event"));
  if (pattern.size() > kLongestPattern) return reply(Refusal(400, "The pattern is too long"));
  house.events.put(id, &Event::vcmd, pattern);
  const WebAnswer answer = Told({{"faults", standin::Pattern(pattern).faults()}});
  grammar.whenFollowed([reply, answer] { reply(answer); });
}

/// The names of a long choice, of which the state tells the first.
WebAnswer FindChoices(HouseGrammar& grammar, const WebCall& call) {
  const auto& entries = grammar.entries();
  const auto entry = std::find_if(entries.begin(), entries.end(), [&](const HouseGrammar::Entry& each) {
    return each.event == call.number<std::int32_t>("event");
  });
  const standin::Pattern::Part* choice =
      entry == entries.end() ? nullptr : ChoiceAt(*entry->pattern, call.parameter("at"));
  if (choice == nullptr) return Refusal(404, "There is no such choice");
  const FoundNames found = NamesWith(*choice, call.parameter("q"), kMostFound);
  return Told({{"names", found.names}, {"total", found.total}});
}

}  // namespace

Routes VoiceRoutes(House& house, VoiceCommands& voice, Quiet& quiet) {
  const Later say{[&voice](const WebCall& call, const Reply& reply) { Say(voice, call, reply); }};
  const Later listen{
      [&voice, &quiet](const WebCall& call, const Reply& reply) { Listen(voice, quiet, call, reply); }};
  const Now hush{[&quiet](const WebCall& call) {
    if (call.json.at("on").get<bool>()) {
      quiet.begin(call.token);
    } else {
      quiet.end(call.token);
    }
    return WebAnswer();
  }};
  const Now state{[&house, &voice](const WebCall& call) {
    const bool owner = !call.user.guest;
    if (owner) voice.wake();  // who may not speak needs no ear
    return StateOf(house, voice, owner);
  }};
  const Now pattern{[&house](const WebCall& call) { return TellPattern(house, call); }};
  const Later put{[&house, &voice](const WebCall& call, const Reply& reply) {
    PutPattern(house, voice.grammar(), call, reply);
  }};
  const Now choices{[&voice](const WebCall& call) { return FindChoices(voice.grammar(), call); }};
  const Now speaks{[&voice](const WebCall& call) {
    voice.speaks(call.json.at("on").get<bool>());
    return WebAnswer();
  }};
  const std::string refused = "Guests can’t change what can be said";
  return {{Method::kPost, "/api/voice", Role::kGuest, say},
          {Method::kGet, "/api/voice", Role::kGuest, state},
          {Method::kPost, "/api/voice/listen", Role::kOwner, listen, "Guests can’t speak to the house",
           Route::kLargestBody, "audio/"},
          {Method::kPost, "/api/voice/quiet", Role::kOwner, hush, "Guests can’t speak to the house"},
          {Method::kGet, "/api/voice/choices", Role::kGuest, choices},
          {Method::kGet, "/api/voice/pattern", Role::kOwner, pattern, refused},
          {Method::kPost, "/api/voice/pattern", Role::kOwner, put, refused, Route::kLargestBody},
          {Method::kPost, "/api/voice/speaks", Role::kOwner, speaks, refused}};
}

}  // namespace standin
