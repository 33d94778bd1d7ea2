// How well the ear hears: sentences that a house understands and others, said by synthesised voices, clean
// and in noise. Printed are how many are understood rightly, what it costs, and what a higher or lower demand
// on certainty would change. All voices are synthetic, and that flatters: people mumble, rooms echo.
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "Brief.hpp"
#include "Timing.hpp"
#include "ear/Corpus.hpp"
#include "ear/Voices.hpp"
#include "ear/decoder/Decoder.hpp"
#include "standin/hearing/Network.hpp"

namespace {

using bench::Corpus;
using bench::Sound;
using bench::Which;

constexpr const char* kModels = "/usr/share/pocketsphinx/model/en-us";

double ProcessSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/// What becomes of a sound on its way; the number is another one each time.
using Room = std::function<Sound(const Sound& sound, std::uint32_t seed)>;

Sound Clean(const Sound& sound, std::uint32_t /*seed*/) { return sound; }
Room Noisy(double decibels) {
  return
      [decibels](const Sound& sound, std::uint32_t seed) { return bench::WithNoise(sound, decibels, seed); };
}

/// What became of one sound.
struct Outcome {
  bool inside = false;
  bool right = false;    ///< heard as what it stands for
  bool command = false;  ///< heard as a command at all, not as nothing or an answer
  bool answer = false;   ///< heard as an answer to a question
  std::uint32_t thousandths = 0;
  double seconds = 0;  ///< of the sound
  double cost = 0;     ///< of processor time
};

/// What the ear hears besides commands: the answers to a question.
constexpr const char* kAnswers[] = {"first", "second",        "third",          "yes",
                                    "no",    "the first one", "the second one", "the third one"};

/// "first", of "the first one".
std::string Meant(std::string answer) {
  if (answer.starts_with("the ")) answer.erase(0, 4);
  return answer.substr(0, answer.find(' '));
}

/// Some of them, from all of it; all where there are no more.
void Thin(std::vector<bench::Sentence>& sentences, std::size_t most) {
  if (sentences.size() <= most) return;
  for (std::size_t i = 0; i < most; ++i) sentences[i] = sentences[i * sentences.size() / most];
  sentences.resize(most);
}

class House {
 public:
  House(Which which, std::size_t albums, std::size_t sentences)
      : corpus_(bench::CorpusOf(which, albums, sentences)), voices_(which) {
    if (bench::Brief()) {  // each category has its sentences, which are more than a brief run has time for
      Thin(corpus_.inside, 3);
      Thin(corpus_.outside, 2);
    }
    patterns_.reserve(corpus_.patterns.size());
    std::vector<standin::Grammar::Source> sources;
    for (const std::string& text : corpus_.patterns) {
      patterns_.emplace_back(text);
      sources.push_back({static_cast<int>(patterns_.size()), patterns_.back()});
    }
    grammar_ = std::make_unique<standin::Grammar>(sources, nullptr);
    const ear::SpeechNetwork network = standin::NetworkOf(*grammar_);
    arcs = network.arcs.size();
    const double before = ProcessSeconds();
    decoder_.learn(network);
    learning = ProcessSeconds() - before;
  }

  /// Each sentence by one voice after the other in turn, `each` of them.
  std::vector<Outcome> inside(std::size_t each, const Room& room, bool dump) {
    std::vector<Outcome> all;
    for (std::size_t i = 0; i < corpus_.inside.size(); ++i) {
      for (std::size_t k = 0; k < std::min(each, voices_.count()); ++k)
        all.push_back(hear(corpus_.inside[i], (i + k) % voices_.count(), room, dump));
    }
    return all;
  }
  std::vector<Outcome> outside(std::size_t each, std::size_t sounds, const Room& room, bool dump) {
    std::vector<Outcome> all;
    for (std::size_t i = 0; i < corpus_.outside.size(); ++i) {
      for (std::size_t k = 0; k < std::min(each, voices_.count()); ++k)
        all.push_back(hear(corpus_.outside[i], (i + k) % voices_.count(), room, dump));
    }
    for (std::size_t i = 0; i < sounds; ++i)
      all.push_back(
          outcomeOf({.said = "(a sound)"}, bench::NobodysSound(static_cast<std::uint32_t>(i)), "", dump));
    return all;
  }
  /// Of the answers to a question, each by each voice, how many are heard as themselves with that certainty.
  std::vector<Outcome> answers(bool single, const Room& room) {
    std::vector<Outcome> all;
    for (const std::string word : kAnswers) {
      if ((word.find(' ') == std::string::npos) != single) continue;
      for (std::size_t k = 0; k < voices_.count(); ++k)
        all.push_back(hear({.said = word, .command = word}, k, room, false));
    }
    return all;
  }
  [[nodiscard]] std::size_t sentences() const { return corpus_.inside.size(); }
  [[nodiscard]] std::size_t strangers() const { return corpus_.outside.size(); }

  std::size_t arcs = 0;
  double learning = 0;

 private:
  Outcome hear(const bench::Sentence& sentence, std::size_t voice, const Room& room, bool dump) {
    const Sound sound = room(voices_.say(voice, sentence.said), ++seed_);
    return outcomeOf(sentence, sound, voices_.name(voice), dump);
  }
  Outcome outcomeOf(const bench::Sentence& sentence, const Sound& sound, const std::string& voice,
                    bool dump) {
    const double before = ProcessSeconds();
    const ear::Decoder::Found found = decoder_.hear(sound);
    Outcome outcome{.inside = !sentence.command.empty(),
                    .thousandths = found.heard.thousandths,
                    .seconds = static_cast<double>(sound.size()) / 16000,
                    .cost = ProcessSeconds() - before};
    outcome.answer =
        std::find(std::begin(kAnswers), std::end(kAnswers), found.heard.words) != std::end(kAnswers);
    if (outcome.answer) outcome.right = Meant(found.heard.words) == Meant(sentence.command);
    for (const standin::Said& said : grammar_->match(found.heard.words)) {
      outcome.command = true;
      outcome.right |= said.command == sentence.command;
    }
    if (dump) {
      std::printf("%d\t%d\t%d\t%.3f\t%.3f\t%.3f\t%.3f\t%u\t%s\t%s\t%s\n", outcome.inside, outcome.right,
                  outcome.command, found.fit.mean, found.fit.worst, found.fit.distance, found.fit.covered,
                  outcome.thousandths, voice.c_str(), sentence.said.c_str(), found.heard.words.c_str());
    }
    return outcome;
  }

  Corpus corpus_;
  bench::Voices voices_;
  std::vector<standin::Pattern> patterns_;
  std::unique_ptr<standin::Grammar> grammar_;
  ear::Decoder decoder_{kModels};
  std::uint32_t seed_ = 0;
};

constexpr std::uint32_t kSure = 600;     // is done
constexpr std::uint32_t kPerhaps = 300;  // is asked back

double Percent(std::size_t part, std::size_t whole) {
  return whole == 0 ? 0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

template <class Test>
std::size_t Count(const std::vector<Outcome>& all, const Test& test) {
  return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), test));
}

void PrintInside(const char* title, const std::vector<Outcome>& all) {
  const std::size_t right = Count(all, [](const Outcome& each) { return each.right; });
  const std::size_t done =
      Count(all, [](const Outcome& each) { return each.right && each.thousandths >= kSure; });
  const std::size_t asked = Count(all, [](const Outcome& each) {
    return each.right && each.thousandths >= kPerhaps && each.thousandths < kSure;
  });
  const std::size_t wrong = Count(
      all, [](const Outcome& each) { return !each.right && each.command && each.thousandths >= kSure; });
  double seconds = 0;
  double cost = 0;
  std::vector<double> costs;
  for (const Outcome& each : all) {
    seconds += each.seconds;
    cost += each.cost;
    costs.push_back(each.cost);
  }
  std::printf("%-28s %5zu %7.1f %% %7.1f %% %7.1f %% %7.1f %% %8.3f %9.2f s\n", title, all.size(),
              Percent(right, all.size()), Percent(done, all.size()), Percent(asked, all.size()),
              Percent(wrong, all.size()), cost / seconds, bench::Median(costs));
}

/// What is refused of the rightly heard, and done of what was not meant, by the certainty that is asked for.
void PrintTradeOff(const char* title, const std::vector<Outcome>& inside,
                   const std::vector<Outcome>& outside) {
  std::printf("\n%s: of %zu rightly heard, and of %zu from outside\n", title,
              Count(inside, [](const Outcome& each) { return each.right; }), outside.size());
  std::printf("  certainty   not done   done all the same\n");
  for (std::uint32_t asked = 100; asked <= 1000; asked += 100) {
    const std::size_t right = Count(inside, [](const Outcome& each) { return each.right; });
    const std::size_t refused =
        Count(inside, [&](const Outcome& each) { return each.right && each.thousandths < asked; });
    const std::size_t taken =
        Count(outside, [&](const Outcome& each) { return each.command && each.thousandths >= asked; });
    std::printf("  %9.1f %8.1f %% %12.1f %%%s\n", asked / 1000.0, Percent(refused, right),
                Percent(taken, outside.size()), asked == kSure ? "   (as it is)" : "");
  }
}

/// Answers to a question, and what would be taken for one while a question is open.
void PrintAnswers(const char* title, const std::vector<Outcome>& answers,
                  const std::vector<Outcome>& outside) {
  std::printf("\n%s: of %zu answers, and of %zu from outside\n", title, answers.size(), outside.size());
  std::printf("  certainty   heard rightly   taken for another   taken for an answer from outside\n");
  for (std::uint32_t asked = 100; asked <= 900; asked += 100) {
    const auto sure = [asked](const Outcome& each) { return each.answer && each.thousandths >= asked; };
    const std::size_t right = Count(answers, [&](const Outcome& each) { return sure(each) && each.right; });
    const std::size_t wrong = Count(answers, [&](const Outcome& each) { return sure(each) && !each.right; });
    std::printf("  %9.1f %13.1f %% %17.1f %% %19.1f %%%s\n", asked / 1000.0, Percent(right, answers.size()),
                Percent(wrong, answers.size()), Percent(Count(outside, sure), outside.size()),
                asked == kPerhaps ? "   (as it is)" : "");
  }
}

void MeasureAnswers(const std::string& name, House& house, const std::vector<Outcome>& outside) {
  const std::vector<Outcome> outsideInNoise = house.outside(1, 0, Noisy(20), false);
  for (const bool single : {true, false}) {
    const std::string which = name + (single ? ", a single word" : ", several words");
    PrintAnswers((which + ", clean").c_str(), house.answers(single, Clean), outside);
    PrintAnswers((which + ", 20 dB").c_str(), house.answers(single, Noisy(20)), outsideInNoise);
  }
}

int MeasureAnswersAlone() {
  for (const Which which : {Which::kTuning, Which::kHeldOut}) {
    House house(which, 200, 1);
    MeasureAnswers(which == Which::kTuning ? "tuning" : "held out", house, {});
  }
  return 0;
}

int Measure(bool dump) {
  const auto sentences = static_cast<std::size_t>(bench::Amount(140, 4));
  const auto strangers = static_cast<std::size_t>(bench::Amount(3, 1));
  const auto sounds = static_cast<std::size_t>(bench::Amount(40, 1));
  const auto voices = static_cast<std::size_t>(bench::Amount(3, 1));
  if (!dump) {
    std::printf("%-28s %5s %9s %9s %9s %9s %8s %11s\n", "", "said", "right", "… done", "… asked",
                "wrong done", "of real", "median cost");
  }
  for (const Which which : {Which::kTuning, Which::kHeldOut}) {
    const char* name = which == Which::kTuning ? "tuning" : "held out";
    House house(which, 200, sentences);
    const std::vector<Outcome> inside = house.inside(voices, Clean, dump);
    const std::vector<Outcome> outside = house.outside(strangers, sounds, Clean, dump);
    if (dump) continue;
    PrintInside((std::string(name) + ", clean").c_str(), inside);
    const std::vector<Outcome> inNoise = house.inside(1, Noisy(20), false);
    PrintInside((std::string(name) + ", 20 dB").c_str(), inNoise);
    PrintInside((std::string(name) + ", 10 dB").c_str(), house.inside(1, Noisy(10), false));
    PrintTradeOff((std::string(name) + ", clean").c_str(), inside, outside);
    PrintTradeOff((std::string(name) + ", 20 dB").c_str(), inNoise, house.outside(1, 0, Noisy(20), false));
    MeasureAnswers(name, house, outside);
    std::printf("\n");
  }
  if (dump) return 0;
  for (const int albums : {1000, 5000}) {
    House house(Which::kHeldOut, static_cast<std::size_t>(bench::Amount(albums, 50)), sentences);
    PrintInside((std::to_string(albums) + " albums").c_str(), house.inside(1, Clean, false));
    std::printf("  learnt in %.2f s of processor time, %zu steps\n", house.learning, house.arcs);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    // With --dump each sound is a line: meant, right, a command, mean, worst, thousandths, voice, said,
    // heard.
    if (argc > 1 && std::strcmp(argv[1], "--answers") == 0) return MeasureAnswersAlone();
    return Measure(argc > 1 && std::strcmp(argv[1], "--dump") == 0);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
