#include "ear/decoder/Decoder.hpp"

#include <pocketsphinx.h>
#include <sphinxbase/err.h>
#include <sphinxbase/fsg_model.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "ear/decoder/ForeignWords.hpp"
#include "ear/decoder/Pronunciations.hpp"

namespace ear {
namespace {

constexpr const char* kCommands = "commands";
constexpr const char* kPhones = "phones";
constexpr std::size_t kMostUnspoken = 20;
constexpr std::size_t kMostSpellings = 5000;
constexpr std::size_t kLongestSpelling = 64;
/// What a phone of the chain costs beside its sound, so that it has no more of them than were said.
constexpr double kPhoneCost = 1e-4;
/// A sound that is shorter or fainter than this is nobody's speech.
constexpr std::size_t kShortest = 16000 / 5;
constexpr int kFaintest = 60;
/// In what is as loud for as long somebody was to be heard, whatever he has said.
constexpr double kLoud = 1000.0 * 1000;
constexpr std::size_t kLoudBlocks = 10;

struct FsgDelete {
  void operator()(fsg_model_t* fsg) const { fsg_model_free(fsg); }
};
using Fsg = std::unique_ptr<fsg_model_t, FsgDelete>;

/// Sound of a synthesiser is followed by true silence, which no microphone hears and which the decoder's own
/// suppression of noise takes for speech that is spoilt. A hiss 30 dB below the speech does no harm to
/// others.
std::vector<std::int16_t> WithHiss(const std::vector<std::int16_t>& sound) {
  constexpr double kPart = 0.03;
  constexpr int kLeast = 12;
  double power = 0;
  for (const std::int16_t sample : sound) power += static_cast<double>(sample) * sample;
  const int loudness =
      std::max(kLeast, static_cast<int>(kPart * std::sqrt(power / static_cast<double>(sound.size()))));
  std::minstd_rand random(1);
  std::vector<std::int16_t> all(sound.size());
  for (std::size_t i = 0; i < sound.size(); ++i) {
    const auto hiss = static_cast<int>(random() % static_cast<unsigned>(2 * loudness + 1)) - loudness;
    all[i] = static_cast<std::int16_t>(std::clamp(sound[i] + hiss, -32768, 32767));
  }
  return all;
}

bool MayBeSpeech(const std::vector<std::int16_t>& sound) {
  if (sound.size() < kShortest) return false;
  const auto loudest = std::max_element(
      sound.begin(), sound.end(),
      [](std::int16_t left, std::int16_t right) { return std::abs(int{left}) < std::abs(int{right}); });
  return std::abs(int{*loudest}) >= kFaintest;
}

bool IsLoud(const std::vector<std::int16_t>& sound) {
  constexpr std::size_t kBlock = 320;
  std::size_t loud = 0;
  for (std::size_t at = 0; at + kBlock <= sound.size(); at += kBlock) {
    double power = 0;
    for (std::size_t i = at; i < at + kBlock; ++i) power += static_cast<double>(sound[i]) * sound[i];
    if (power >= kLoud * kBlock) ++loud;
  }
  return loud >= kLoudBlocks;
}

/// One without a dictionary knows only the words that it is told. Null where it can't be made.
ps_decoder_t* NewDecoder(const std::filesystem::path& acoustic, const char* dictionary) {
  cmd_ln_t* config = cmd_ln_init(nullptr, ps_args(), 1, "-hmm", acoustic.c_str(), "-cmn", "batch", nullptr);
  if (config == nullptr) return nullptr;
  if (dictionary != nullptr) cmd_ln_set_str_r(config, "-dict", dictionary);
  ps_decoder_t* decoder = ps_init(config);
  cmd_ln_free_r(config);
  return decoder;
}

}  // namespace

Decoder::Decoder(const std::filesystem::path& models) : dictionary_(models / "cmudict-en-us.dict") {
  const std::filesystem::path acoustic = models / "en-us";
  if (!std::filesystem::exists(acoustic / "mdef") || !std::filesystem::exists(dictionary_)) {
    throw std::runtime_error("There is no model of speech at " + models.string() +
                             ". Install the package pocketsphinx-en-us");
  }
  err_set_logfp(nullptr);
  decoder_ = NewDecoder(acoustic, dictionary_.c_str());
  phones_ = NewDecoder(acoustic, nullptr);
  if (decoder_ == nullptr || phones_ == nullptr) {
    free();
    throw std::runtime_error("The model of speech at " + models.string() + " can’t be used");
  }
}

Decoder::~Decoder() { free(); }

void Decoder::free() {
  if (decoder_ != nullptr) ps_free(decoder_);
  if (phones_ != nullptr) ps_free(phones_);
}

void Decoder::learnPhones() {
  constexpr const char* kAll[] = {"AA", "AE", "AH", "AO", "AW", "AY", "B",  "CH", "D",  "DH",
                                  "EH", "ER", "EY", "F",  "G",  "HH", "IH", "IY", "JH", "K",
                                  "L",  "M",  "N",  "NG", "OW", "OY", "P",  "R",  "S",  "SH",
                                  "T",  "TH", "UH", "UW", "V",  "W",  "Y",  "Z",  "ZH"};
  logmath_t* logs = ps_get_logmath(phones_);
  const Fsg loop(fsg_model_init(kPhones, logs, 1.0F, 2));
  loop->start_state = 0;
  loop->final_state = 1;
  const int cost = logmath_log(logs, kPhoneCost);
  for (const char* phone : kAll) {
    ps_add_word(phones_, PhoneWord(phone).c_str(), phone, FALSE);
    fsg_model_trans_add(loop.get(), 0, 0, cost, fsg_model_word_add(loop.get(), PhoneWord(phone).c_str()));
  }
  fsg_model_null_trans_add(loop.get(), 0, 1, 0);
  if (ps_set_fsg(phones_, kPhones, loop.get()) < 0)
    throw std::runtime_error("The phones can’t be listened for");
}

void Decoder::addWays(const std::string& word, const std::vector<std::string>& ways) {
  int number = 1;
  for (const std::string& phones : ways) {
    std::string name = word;
    while (isKnown(name)) name = word + "(" + std::to_string(++number) + ")";
    ps_add_word(decoder_, name.c_str(), phones.c_str(), FALSE);
  }
}

bool Decoder::isKnown(const std::string& word) const {
  char* const phones = ps_lookup_word(decoder_, word.c_str());
  ckd_free(phones);
  return phones != nullptr;
}

void Decoder::learnSpellings(const std::vector<SpeechNetwork::Spelling>& spellings) {
  std::vector<std::string> written;
  for (const SpeechNetwork::Spelling& each : spellings)
    if (written.size() < kMostSpellings) written.push_back(each.written.substr(0, kLongestSpelling));
  if (written.empty()) return;
  const std::vector<std::vector<std::string>> ways = ForeignWays(written);
  for (std::size_t i = 0; i < ways.size(); ++i) addWays(spellings[i].word, ways[i]);
}

Learnt Decoder::learn(const SpeechNetwork& network) {
  const Pronunciations pronunciations(dictionary_);
  Learnt learnt;
  std::vector<bool> spoken(network.words.size());
  for (std::size_t i = 0; i < network.words.size(); ++i) {
    const std::string& word = network.words[i];
    if (!isKnown(word)) addWays(word, pronunciations.of(word));
    spoken[i] = isKnown(word);
    if (spoken[i]) {
      ++learnt.words;
    } else if (learnt.unspoken.size() < kMostUnspoken) {
      learnt.unspoken.push_back(word);
    }
  }
  learnSpellings(network.spellings);
  learnPhones();
  SpeechNetwork sayable = network;
  std::erase_if(sayable.arcs, [&](const SpeechNetwork::Arc& arc) {
    return arc.word != SpeechNetwork::kNoWord && !spoken[static_cast<std::size_t>(arc.word)];
  });
  Prune(sayable);
  if (sayable.arcs.empty()) throw std::runtime_error("There is nothing that could be said");
  const Fsg commands(
      fsg_model_init(kCommands, ps_get_logmath(decoder_), 1.0F, static_cast<int>(sayable.places)));
  commands->start_state = static_cast<int>(sayable.start);
  commands->final_state = static_cast<int>(sayable.end);
  // Each word is entered once: to look it up there takes time by the number of words.
  std::vector<int> numbers;
  for (const std::string& word : sayable.words)
    numbers.push_back(fsg_model_word_add(commands.get(), word.c_str()));
  bool steps = false;
  for (const SpeechNetwork::Arc& arc : sayable.arcs) {
    const auto from = static_cast<int>(arc.from);
    const auto to = static_cast<int>(arc.to);
    if (arc.word == SpeechNetwork::kNoWord) {
      fsg_model_null_trans_add(commands.get(), from, to, 0);
      steps = true;
    } else {
      fsg_model_trans_add(commands.get(), from, to, 0, numbers[static_cast<std::size_t>(arc.word)]);
    }
  }
  if (steps) glist_free(fsg_model_null_trans_closure(commands.get(), nullptr));
  if (ps_set_fsg(decoder_, kCommands, commands.get()) < 0)
    throw std::runtime_error("The sentences can’t be listened for");
  return learnt;
}

std::vector<Piece> Decoder::pieces(ps_decoder_s& decoder, const char* search,
                                   const std::vector<std::int16_t>& sound) {
  std::vector<Piece> all;
  // Every sound is heard as the first one: what another microphone has heard before tells nothing of it.
  if (ps_set_search(&decoder, search) < 0 || ps_start_stream(&decoder) < 0 || ps_start_utt(&decoder) < 0)
    return all;
  ps_process_raw(&decoder, sound.data(), sound.size(), FALSE, TRUE);
  ps_end_utt(&decoder);
  int32 score = 0;
  if (ps_get_hyp(&decoder, &score) == nullptr) return all;
  for (ps_seg_t* each = ps_seg_iter(&decoder); each != nullptr; each = ps_seg_next(each)) {
    Piece piece;
    piece.word = ps_seg_word(each);
    ps_seg_frames(each, &piece.begin, &piece.end);
    int32 acoustic = 0;
    int32 language = 0;
    int32 back = 0;
    ps_seg_prob(each, &acoustic, &language, &back);
    piece.score = acoustic;
    if (piece.end >= piece.begin) all.push_back(std::move(piece));
  }
  return all;
}

std::vector<std::string> Decoder::phonesOf(const std::string& word) const {
  std::vector<std::string> all;
  if (char* known = ps_lookup_word(decoder_, word.c_str())) {
    std::istringstream in(known);
    ckd_free(known);
    for (std::string phone; in >> phone;) all.push_back(phone);
  }
  return all;
}

Decoder::Found Decoder::hear(const std::vector<std::int16_t>& sound) {
  Found found;
  if (!MayBeSpeech(sound)) return found;
  const std::vector<std::int16_t> hissing = WithHiss(sound);
  // Who has spoken waits for both, and most machines can do two things at once.
  std::vector<Piece> phones;
  const auto findPhones = [&] { phones = pieces(*phones_, kPhones, hissing); };
  std::jthread beside;
  try {
    beside = std::jthread(findPhones);
  } catch (const std::system_error&) {  // the machine has no thread to spare
    findPhones();
  }
  const std::vector<Piece> words = pieces(*decoder_, kCommands, hissing);
  if (beside.joinable()) beside.join();
  for (const Piece& word : words) {
    if (IsFiller(word)) continue;
    found.heard.speech = true;
    found.heard.words += (found.heard.words.empty() ? "" : " ") + word.word.substr(0, word.word.find('('));
  }
  if (!found.heard.speech) {
    // To be told that nobody was heard wouldn't help who has spoken up.
    found.heard.speech = IsLoud(sound);
    return found;
  }
  found.fit = FitOf(words, phones, [this](const std::string& word) { return phonesOf(word); });
  found.heard.thousandths = Certainty(found.fit);
  return found;
}

}  // namespace ear
