#include "standin/hearing/VoiceCommands.hpp"

#include <algorithm>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/hearing/PlayerPhrases.hpp"
#include "standin/hearing/QuickPlay.hpp"
#include "standin/house/EventStore.hpp"
#include "standin/player/WatchedCommand.hpp"

namespace standin {
namespace {

using Kind = Understanding::Kind;

constexpr const char* kSettings = "voice.ini";
constexpr const char* kSection = "Voice";
constexpr const char* kSpeaks = "SayAnswers";
/// No session is called so.
constexpr const char* kScriptsSession = "a script";
constexpr const char* kStatus = "Media Player Status";
constexpr const char* kNothingKnown = "What can be said is too much for this machine";
constexpr const char* kNotUnderstood = "That was not understood";
constexpr const char* kTooLate = "That took too long: nothing was done";
constexpr std::size_t kMostChoices = 3;
/// The page that has sent a sound is told that nobody answers soon after this. What would be done later,
/// nobody would expect any more.
constexpr base::Milliseconds kHeardWithin = std::chrono::seconds(25);
/// Patterns come one after the other when the plug-in starts.
constexpr base::Milliseconds kFollowAfter = std::chrono::milliseconds(500);
/// At least so sure the recogniser has to be for something to be done, and to be asked back.
constexpr double kSure = 0.6;
constexpr double kPerhaps = 0.3;

std::string Quoted(const std::string& text) { return "“" + text + "”"; }

void Ask(Understanding& understanding, std::vector<Understanding::Choice> choices) {
  std::vector<std::string> labels;
  labels.reserve(choices.size());
  for (const Understanding::Choice& each : choices) labels.push_back(each.label);
  understanding.kind = Kind::kUnclear;
  understanding.says = "Did you mean " + Alternatives(labels) + "?";
  understanding.choices = std::move(choices);
}

}  // namespace

std::string Alternatives(const std::vector<std::string>& texts) {
  std::string all;
  for (std::size_t i = 0; i < texts.size(); ++i)
    all += (i == 0 ? "" : i + 1 == texts.size() ? " or " : ", ") + Quoted(texts[i]);
  return all;
}

VoiceCommands::VoiceCommands(const Parts& parts)
    : parts_(parts),
      grammar_(parts.house, parts.worker != nullptr ? *parts.worker : static_cast<Worker&>(here_)),
      sentences_(parts.house, grammar_),
      follow_(parts.loop.makeTimer(kFollowAfter, [this] {
        follow_->enabled(false);
        if (awake_) wake();
        if (grammar_.made()) grammar_.want();  // for the next question
        parts_.house.live.tell("voice", "{}");
      })) {
  grammar_.onMade = [this] {
    if (awake_) teach();
    parts_.house.live.tell("voice", "{}");
  };
  parts_.recogniser.onChange = [this] { parts_.house.live.tell("voice", "{}"); };
  parts_.house.events.onPattern = [this] { patternsChanged(); };
  parts_.house.onSay = [this](const std::string& text) {
    // Scripts are the owner's own: what he has them say he wants to hear answered, as if he had said it.
    parts_.house.log.write("Voice", text);
    grammar_.now();  // a script waits for what it is answered
    return answer({kScriptsSession}, text, [](const Understanding&) {});
  };
}

VoiceCommands::~VoiceCommands() {
  parts_.recogniser.onChange = [] {};
  parts_.house.events.onPattern = [] {};
  parts_.house.onSay = [](const std::string&) { return std::string(); };
}

void VoiceCommands::patternsChanged() { follow_->enabled(true); }

void VoiceCommands::wake() {
  awake_ = true;
  const bool known = learnt_ == grammar_.revision();
  grammar_.want();
  teach();
  if (known) parts_.recogniser.retry();
}

Recogniser::Status VoiceCommands::hearing() const {
  Recogniser::Status status = parts_.recogniser.status();
  if (awake_ && status.state == Recogniser::State::kOff) status.state = Recogniser::State::kStarting;
  return status;
}

void VoiceCommands::teach() {
  const HouseGrammar::MadeRef& made = grammar_.made();
  if (!made || learnt_ == made->revision) return;
  learnt_ = made->revision;
  parts_.recogniser.learn(made->audible.network);
}

bool VoiceCommands::speaks() const { return parts_.house.settings.get(kSettings, kSection, kSpeaks) == "1"; }

void VoiceCommands::speaks(bool on) {
  parts_.house.settings.save(kSettings, kSection, kSpeaks, on ? "1" : "0");
}

void VoiceCommands::say(const Speaker& who, const std::string& text, const Answered& answered) {
  parts_.house.log.write("Voice", text);
  grammar_.ask([this, who, text, answered] { answer(who, text, answered); });
}

std::string VoiceCommands::answer(const Speaker& who, const std::string& text, const Answered& answered) {
  std::optional<Order> choice = answerOf(who.session, text, false);
  Order order = choice ? std::move(*choice) : orderFor(text, false);
  if (who.guest && order.adds) {
    order.understanding.kind = Kind::kFailed;
    order.understanding.says = kGuestsMayNotAdd;
  }
  return take(who.session, std::move(order), aloud(who, answered));
}

Recogniser::Told VoiceCommands::told(const Speaker& who, const Answered& answered) {
  Answered voice = aloud(who, answered);
  // Who holds a button means to answer. In the room it may be anybody's "no".
  const double leastOfAnswers = who.room ? kSure : kPerhaps;
  return [this, session = who.session, leastOfAnswers, answered = std::move(voice),
          spoken = parts_.loop.now(), alive = std::weak_ptr(alive_)](const Recogniser::Heard& heard) {
    using HeardKind = Recogniser::Heard::Kind;
    if (!alive.lock()) return;
    Order order;
    Understanding& understanding = order.understanding;
    if (heard.kind == HeardKind::kDeaf) {
      understanding = {.kind = Kind::kDeaf, .says = "The house can’t listen: " + heard.reason};
      return answered(understanding);
    }
    if (heard.kind == HeardKind::kSilence) {
      understanding = {.kind = Kind::kSilence, .says = "Nobody was heard speaking"};
      return answered(understanding);
    }
    // What hardly is a sentence was a cough, a television or two who talk: nobody wants that on record.
    if (heard.confidence >= kPerhaps) parts_.house.log.write("Voice", heard.words);
    understanding.heard = heard.words;
    understanding.confidence = heard.confidence;
    if (heard.confidence < kPerhaps) {
      understanding.says = kNotUnderstood;
    } else if (parts_.loop.now() - spoken > kHeardWithin) {
      understanding.kind = Kind::kFailed;
      understanding.says = kTooLate;
      return answered(understanding);
    } else if (std::optional<Order> answer =
                   heard.confidence >= leastOfAnswers ? answerOf(session, heard.words, true) : std::nullopt) {
      order = std::move(*answer);
    } else {
      order = orderFor(heard.words, true);
      if (understanding.kind == Kind::kDone && heard.confidence < kSure)
        Ask(understanding, {{understanding.command, order.label}});
    }
    understanding.heard = heard.words;
    understanding.confidence = heard.confidence;
    order.until = spoken + kHeardWithin;
    take(session, std::move(order), answered);
  };
}

void VoiceCommands::listen(const Speaker& who, std::vector<std::int16_t> sound, const Answered& answered) {
  wake();
  Recogniser::Told onHeard = told(who, answered);
  grammar_.ask([this, sound = std::move(sound), told = std::move(onHeard)]() mutable {
    parts_.recogniser.hear(std::move(sound), std::move(told));
  });
}

std::unique_ptr<Recogniser::Growing> VoiceCommands::begin() {
  wake();
  return parts_.recogniser.begin();
}

void VoiceCommands::end(const Speaker& who, std::shared_ptr<Recogniser::Growing> sound,
                        const Answered& answered) {
  Recogniser::Told onHeard = told(who, answered);
  grammar_.ask(
      [sound = std::move(sound), told = std::move(onHeard)]() mutable { sound->end(std::move(told)); });
}

std::optional<VoiceCommands::Order> VoiceCommands::answerOf(const std::string& who, const std::string& text,
                                                            bool spoken) {
  const std::optional<Questions::Answer> answer = questions_.answer(who, text, spoken, parts_.loop.now());
  if (!answer) return std::nullopt;
  const auto& [choice, choices] = *answer;
  if (choice >= static_cast<int>(choices.size())) {
    Order again;
    again.understanding.heard = text;
    Ask(again.understanding, choices);
    again.understanding.says =
        "There is no " + std::string(choice == 1 ? "second" : "third") + " one. " + again.understanding.says;
    return again;
  }
  if (choice >= 0) {
    Order order = orderFor(choices[static_cast<std::size_t>(choice)].command, false);
    order.understanding.heard = text;
    return order;
  }
  Order nothing;
  nothing.understanding = {.kind = Kind::kDone, .heard = text, .says = "Nothing was done"};
  return nothing;
}

VoiceCommands::Order VoiceCommands::orderOf(const std::vector<Said>& said, const std::string& text) {
  Order order;
  Understanding& understanding = order.understanding;
  understanding.heard = text;
  std::vector<std::pair<std::int32_t, std::string>> known;
  for (const Said& each : said) {
    const std::pair entry(each.event, each.command);
    if (std::find(known.begin(), known.end(), entry) != known.end()) continue;
    known.push_back(entry);
  }
  std::vector<Choice> choices = sentences_.choicesOf(said);
  if (choices.size() > 1) {
    if (choices.size() > kMostChoices) choices.resize(kMostChoices);
    Ask(understanding, std::move(choices));
    return order;
  }
  understanding.kind = Kind::kDone;
  understanding.command = said.front().command;
  order.label = choices.front().label;
  for (const auto& [id, command] : known) {
    const Event& event = *parts_.house.events.byId(id);
    for (const std::int32_t ref : sentences_.devicesOf(id))
      if (std::find(order.refs.begin(), order.refs.end(), ref) == order.refs.end()) order.refs.push_back(ref);
    if (std::find(understanding.events.begin(), understanding.events.end(), event.name) ==
        understanding.events.end())
      understanding.events.push_back(event.name);
  }
  return order;
}

VoiceCommands::Order VoiceCommands::orderFor(const std::string& text, bool spoken) {
  Order order;
  grammar_.want();  // where it is behind, the next question finds it
  const HouseGrammar::MadeRef made = grammar_.made();
  if (!made) {
    order.understanding = {.kind = Kind::kFailed, .heard = text, .says = kNothingKnown};
    return order;
  }
  std::vector<Said> said = made->grammar.match(text);
  sentences_.settle(said);
  // What is written letter for letter is meant, as the answer to a question is.
  const auto another = [&](const Said& each) { return each.command != text && each.whole != text; };
  if (!std::all_of(said.begin(), said.end(), another)) std::erase_if(said, another);
  // What is typed as a name is written is that name. What is heard may be either.
  if (!spoken && !said.empty())
    std::erase_if(said, [least = said.front().distance](const Said& each) { return each.distance > least; });
  const Device* status = parts_.house.devices.byFullName(kStatus);
  if (!said.empty()) {
    order = orderOf(said, text);
  } else {
    order.understanding.heard = text;
    std::vector<Said> near = spoken ? std::vector<Said>() : made->grammar.near(text, kMostChoices);
    sentences_.settle(near);
    if (std::vector<Choice> choices = sentences_.choicesOf(near); !choices.empty()) {
      Ask(order.understanding, std::move(choices));
    } else if (!spoken && status != nullptr && PlayerPhraseIn(text) != nullptr && !AsksForName(text)) {
      order.refs = {status->ref};
      order.understanding.kind = Kind::kDone;
      order.understanding.command = text;
    } else {
      // Those words are heard behind "player" alone.
      order.understanding.says =
          spoken ? kNotUnderstood : Quoted(text) + " was not understood. Try “stop”, “next” or “volume up”";
    }
  }
  if (order.understanding.kind != Kind::kDone) return order;
  if (const std::string category = order.refs.size() == 1 ? sentences_.categoryOf(order.refs) : "";
      !category.empty() && PlaysNothing(category, order.understanding.command)) {
    order.understanding.kind = Kind::kUnknown;
    order.understanding.says = Quoted(text) + " doesn’t say what to play";
    return order;
  }
  const bool toStatus =
      status != nullptr && std::find(order.refs.begin(), order.refs.end(), status->ref) != order.refs.end();
  const PlayerPhrase* phrase = toStatus ? PlayerPhraseIn(order.understanding.command) : nullptr;
  order.adds = phrase != nullptr && phrase->adds;
  order.understanding.says = phrase != nullptr ? phrase->done : order.understanding.command;
  return order;
}

void VoiceCommands::remember(const std::string& who, const Understanding& understanding) {
  // A cough or a mumbled "first" is no other command: what was asked can still be answered.
  if (understanding.kind == Kind::kUnknown) return;
  questions_.forget(who);
  if (understanding.kind == Kind::kUnclear) questions_.ask(who, understanding.choices, parts_.loop.now());
}

std::string VoiceCommands::take(const std::string& who, Order order, const Answered& answered) {
  remember(who, order.understanding);
  const bool acts = !order.refs.empty() && order.understanding.kind == Kind::kDone;
  if (acts) wordAnswer(order);
  std::string says = order.understanding.says;
  if (acts) {
    carryOut(order, answered);
  } else {
    answered(order.understanding);
  }
  return says;
}

void VoiceCommands::wordAnswer(Order& order) const {
  const std::string category = sentences_.categoryOf(order.refs);
  const std::string& command = order.understanding.command;
  const std::optional<std::size_t> at = category.empty() ? std::nullopt : PlayedNameAt(category, command);
  if (!at) return;
  const std::string name = grammar_.libraryName(category, command.substr(*at));
  order.understanding.says = "Playing " + name;
  if (category == "Album") order.album = name;
}

VoiceCommands::Answered VoiceCommands::andGoOn(const Answered& answered,
                                               const std::shared_ptr<bool>& cameBack) {
  return [this, answered, cameBack, alive = std::weak_ptr(alive_)](const Understanding& understanding) {
    if (*cameBack) {
      // Whatever becomes of the answer, and behind what it posts: the end of him who has given the command.
      parts_.loop.post([this, alive] {
        if (!alive.lock()) return;
        parts_.loop.post([this, alive] {
          if (alive.lock()) parts_.speech.events().goOn();
        });
      });
    }
    answered(understanding);
  };
}

void VoiceCommands::carryOut(const Order& order, const Answered& told) {
  const auto cameBack = std::make_shared<bool>(false);
  const Answered answered = andGoOn(told, cameBack);
  struct Target {
    base::ObjectRef object;
    std::string hc;
    std::string dc;
  };
  std::vector<Target> targets;
  for (const std::int32_t ref : order.refs) {
    const Device* device = parts_.house.devices.byRef(ref);
    if (device != nullptr) targets.push_back({parts_.objects.device(ref), device->hc, device->dc});
  }
  // The text is set when its turn comes: another one may be waiting before it.
  const PluginKeeper::Command command = [&house = parts_.house, &speech = parts_.speech, &loop = parts_.loop,
                                         text = order.understanding.command, until = order.until, targets,
                                         cameBack](base::Object& vxif) {
    *cameBack = true;
    speech.events().endAll();
    // The plug-in may have hung meanwhile, in that or in a command before.
    if (until && loop.now() > *until) throw base::Failure(base::number::kDeviceIo, kTooLate);
    house.lastVoiceCommand = text;
    for (const Target& each : targets) {
      const std::int16_t none = 0;
      vxif.invoke("SetIO", each.object, each.hc, each.dc, kFuncVoice, none, none, none);
    }
  };
  if (order.adds) return add(order, command, answered);
  RunWatched(parts_.house, parts_.plugin, command,
             [this, understanding = order.understanding, album = order.album, answered,
              alive = std::weak_ptr(alive_)](const CommandOutcome& outcome) mutable {
               if (!alive.lock()) return;
               const std::string& error = outcome.failure.empty() ? outcome.refusal : outcome.failure;
               if (!error.empty()) {
                 understanding.kind = Kind::kFailed;
                 understanding.says = error;
               } else if (!album.empty()) {
                 return withArtist(std::move(understanding), album, answered);
               }
               answered(understanding);
             });
}

/// Whose an album is, only the player knows.
void VoiceCommands::withArtist(Understanding understanding, const std::string& album,
                               const Answered& answered) {
  parts_.library.artistsOf({album},
                           [understanding = std::move(understanding), answered,
                            alive = std::weak_ptr(alive_)](const std::vector<std::string>& artists) mutable {
                             if (!alive.lock()) return;
                             if (!artists.empty() && !artists.front().empty())
                               understanding.says += " by " + artists.front();
                             answered(understanding);
                           });
}

void VoiceCommands::add(const Order& order, PluginKeeper::Command command, const Answered& answered) {
  parts_.library.addition(
      kOwnList, std::move(command),
      [understanding = order.understanding, answered, alive = std::weak_ptr(alive_)](
          const std::optional<std::string>& title, const PlayerLibrary::Failed& failed) mutable {
        if (!alive.lock()) return;
        if (failed.text.empty() && title) {
          understanding.says = "Added " + *title + " to " + kOwnList;
        } else {
          understanding.kind = Kind::kFailed;
          understanding.says = !failed.text.empty() ? failed.text : kNothingAdded;
        }
        answered(understanding);
      });
}

VoiceCommands::Answered VoiceCommands::aloud(const Speaker& who, const Answered& answered) {
  if (who.guest) return answered;
  return [this, room = who.room, answered](const Understanding& understanding) {
    // What somebody has typed is not read out to the house because nothing fits it.
    const bool unknown = understanding.kind == Kind::kUnknown;
    const bool unmeant =
        room && (unknown || understanding.kind == Kind::kSilence || understanding.kind == Kind::kDeaf);
    if (speaks() && !unmeant) parts_.speech.speak(unknown ? kNotUnderstood : understanding.says, false);
    answered(understanding);
  };
}

}  // namespace standin
