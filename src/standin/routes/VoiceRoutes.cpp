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

/// Answers, and players come back: what was to be done found them as they were.
VoiceCommands::Answered AnswerAndEnd(Quiet& quiet, const WebCall& call, const Reply& reply) {
  return [&quiet, token = call.token, reply](const Understanding& understanding) {
    reply(AnswerOf(understanding));
    quiet.end(token);
  };
}

void Listen(VoiceCommands& voice, Quiet& quiet, const WebCall& call, const Reply& reply) {
  std::vector<std::int16_t> sound;
  try {
    sound = SentSound(call.type, call.body);
  } catch (const base::Failure& failure) {
    reply(Refusal(415, failure.description()));
    return quiet.end(call.token);
  }
  voice.listen({call.token, call.user.guest}, std::move(sound), AnswerAndEnd(quiet, call, reply));
}

/// What is wrong with a piece of a sound, and who can mend it.
WebAnswer RefusalOf(const base::Failure& failure) {
  switch (failure.number()) {
    case base::number::kFileNotFound: return Refusal(404, failure.description());
    case base::number::kInvalidArgument: return Refusal(409, failure.description());
    case base::number::kOverflow: return Refusal(503, failure.description());
    default: throw base::Failure(failure);
  }
}

WebAnswer BeginToListen(Utterances& utterances, const WebCall& call) {
  try {
    return Told({{"id", utterances.begin({call.token, call.user.guest})}});
  } catch (const base::Failure& failure) {
    return RefusalOf(failure);
  }
}

WebAnswer ListenOn(Utterances& utterances, const WebCall& call) {
  std::vector<std::int16_t> piece;
  try {
    piece = SentSound(call.type, call.body);
  } catch (const base::Failure& failure) {
    return Refusal(415, failure.description());
  }
  try {
    utterances.more({call.token, call.user.guest}, call.number<std::uint64_t>("id"),
                    call.number<std::uint64_t>("at"), piece);
    return {};
  } catch (const base::Failure& failure) {
    return RefusalOf(failure);
  }
}

void EndListening(Utterances& utterances, Quiet& quiet, const WebCall& call, const Reply& reply) {
  try {
    utterances.end({call.token, call.user.guest}, call.json.at("id").get<std::uint64_t>(),
                   call.json.at("samples").get<std::uint64_t>(), AnswerAndEnd(quiet, call, reply));
  } catch (const base::Failure& failure) {
    reply(RefusalOf(failure));
  }
}

WebAnswer TellPattern(House& house, const WebCall& call) {
  const Event* event = house.events.byId(call.number<std::int32_t>("event"));
  if (event == nullptr) return Refusal(404, "There is no such event");
  return Told({{"id", event->id}, {"pattern", event->vcmd}, {"version", VersionOf(event->vcmd)}});
}

/// It is answered when it holds for what is said next.
void PutPattern(House& house, HouseGrammar& grammar, const WebCall& call, const Reply& reply) {
  const auto id = call.json.at("event").get<std::int32_t>();
  const auto pattern = call.json.at("pattern").get<std::string>();
  if (house.events.byId(id) == nullptr) return reply(Refusal(404, "There is no such event"));
  if (pattern.size() > kLongestPattern) return reply(Refusal(400, "The pattern is too long"));
  const auto base = call.json.find("base");
  if (base != call.json.end() && base->get<std::string>() != VersionOf(house.events.byId(id)->vcmd))
    return reply(Refusal(409, "Somebody else has changed this meanwhile. Yours is kept, but not saved"));
  house.events.put(id, &Event::vcmd, pattern);
  const WebAnswer answer =
      Told({{"faults", standin::Pattern(pattern).faults()}, {"version", VersionOf(pattern)}});
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

Routes VoiceRoutes(const VoiceParts& parts) {
  House& house = parts.house;
  VoiceCommands& voice = parts.voice;
  Utterances& utterances = parts.utterances;
  Quiet& quiet = parts.quiet;
  RoomMicrophone& room = parts.room;
  const Later say{[&voice](const WebCall& call, const Reply& reply) { Say(voice, call, reply); }};
  const Later listen{
      [&voice, &quiet](const WebCall& call, const Reply& reply) { Listen(voice, quiet, call, reply); }};
  const Now begin{[&utterances](const WebCall& call) { return BeginToListen(utterances, call); }};
  const Now more{[&utterances](const WebCall& call) { return ListenOn(utterances, call); }};
  const Later end{[&utterances, &quiet](const WebCall& call, const Reply& reply) {
    EndListening(utterances, quiet, call, reply);
  }};
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
  const Now inRoom{[&room](const WebCall&) { return RoomOf(room.status()); }};
  const Now setRoom{[&room](const WebCall& call) {
    room.on(call.json.at("on").get<bool>());
    return RoomOf(room.status());
  }};
  const std::string refused = "Guests can’t change what can be said";
  const std::string silent = "Guests can’t speak to the house";
  return {
      {Method::kPost, "/api/voice", Role::kGuest, say},
      {Method::kGet, "/api/voice", Role::kGuest, state},
      {Method::kPost, "/api/voice/listen", Role::kOwner, listen, silent, Route::kLargestBody, "audio/"},
      {Method::kPost, "/api/voice/listen/begin", Role::kOwner, begin, silent},
      {Method::kPost, "/api/voice/listen/more", Role::kOwner, more, silent, Route::kUsualBody, "audio/"},
      {Method::kPost, "/api/voice/listen/end", Role::kOwner, end, silent},
      {Method::kPost, "/api/voice/quiet", Role::kOwner, hush, silent},
      {Method::kGet, "/api/voice/choices", Role::kGuest, choices},
      {Method::kGet, "/api/voice/pattern", Role::kOwner, pattern, refused},
      {Method::kPost, "/api/voice/pattern", Role::kOwner, put, refused, Route::kLargestBody},
      {Method::kPost, "/api/voice/speaks", Role::kOwner, speaks, refused},
      {Method::kGet, "/api/voice/room", Role::kOwner, inRoom, "Guests aren’t told what is said in the house"},
      {Method::kPost, "/api/voice/room", Role::kOwner, setRoom, refused}};
}

}  // namespace standin
