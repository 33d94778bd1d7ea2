#include "standin/hearing/Utterances.hpp"

#include <utility>

#include "base/Failure.hpp"

namespace standin {

std::uint64_t Utterances::begin(const Speaker& who) {
  all_.erase(who.session);
  if (all_.size() >= kMost) throw base::Failure(base::number::kOverflow, "Too many are speaking at once");
  Utterance& utterance = all_[who.session];
  utterance.number = ++last_;
  utterance.sound = voice_.begin();
  // Posted, as a timer may not end within its own event.
  utterance.forgotten = loop_.makeTimer(kForgotten, [this, session = who.session, number = last_] {
    loop_.post([this, session, number, alive = std::weak_ptr(alive_)] {
      if (!alive.lock()) return;
      const auto entry = all_.find(session);
      if (entry != all_.end() && entry->second.number == number) all_.erase(entry);
    });
  });
  utterance.forgotten->enabled(true);
  return last_;
}

Utterances::Entry Utterances::known(const Speaker& who, std::uint64_t number) {
  const auto entry = all_.find(who.session);
  if (entry == all_.end() || entry->second.number != number)
    throw base::Failure(base::number::kFileNotFound, "What was being said is forgotten. Say it again");
  return entry;
}

void Utterances::need(Entry entry, std::uint64_t at) {
  if (entry->second.samples == at) return;
  all_.erase(entry);
  throw base::Failure(base::number::kInvalidArgument, "A piece of the sound is missing. Say it again");
}

void Utterances::more(const Speaker& who, std::uint64_t number, std::uint64_t at,
                      const std::vector<std::int16_t>& piece) {
  const auto entry = known(who, number);
  need(entry, at);
  entry->second.samples += piece.size();
  entry->second.sound->more(piece);
  entry->second.forgotten->enabled(false);  // the wait begins anew
  entry->second.forgotten->enabled(true);
}

void Utterances::end(const Speaker& who, std::uint64_t number, std::uint64_t samples,
                     const VoiceCommands::Answered& answered) {
  const auto entry = known(who, number);
  need(entry, samples);
  std::unique_ptr<Recogniser::Growing> sound = std::move(entry->second.sound);
  all_.erase(entry);
  voice_.end(who, std::move(sound), answered);
}

}  // namespace standin
