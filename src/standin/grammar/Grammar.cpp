#include "standin/grammar/Grammar.hpp"

#include <algorithm>
#include <limits>
#include <numeric>
#include <set>
#include <string_view>
#include <unordered_set>

#include "standin/grammar/NameForms.hpp"
#include "standin/grammar/NearWords.hpp"

namespace standin {
namespace {

constexpr std::uint32_t kNoWayOut = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t kEnd = kNoWayOut - 1;
/// Ways to say a name that are entered in every case: without the second, one with numbers couldn't be said.
constexpr std::size_t kAlways = 2;
/// More than that is no name.
constexpr std::size_t kLongestRest = 400;

/// The text with one blank behind it, where there is one.
void AddWords(std::string& text, const std::string& words) {
  if (!words.empty()) text.append(text.empty() ? "" : " ").append(words);
}

}  // namespace

std::string SaidWords(std::string_view text) {
  std::string all;
  for (const NameWord& word : NameWords(text)) all += (all.empty() ? "" : " ") + word.folded;
  return all;
}

/// A walk of a text through the graph: the places reached so far, each with what has been told on the way.
class Grammar::Walk {
 public:
  struct Reached {
    Place place = 0;
    std::uint32_t trace = 0;
    std::int32_t distance = 0;
  };

  Walk(const Grammar& grammar, Place start) : grammar_(grammar), traces_(1), reached_{Reached{start, 0, 0}} {
    spread();
  }

  /// False where the word leads nowhere.
  bool take(std::string_view word) {
    std::vector<Reached> next;
    for (const Reached& each : reached_) {
      if (const auto place = grammar_.graph_.after(each.place, word))
        next.push_back({*place, each.trace, each.distance});
    }
    reached_ = std::move(next);
    spread();
    return !reached_.empty();
  }

  [[nodiscard]] const std::vector<Reached>& reached() const { return reached_; }
  /// What has been told up to there: with the words that were left out, or without.
  [[nodiscard]] std::string told(std::uint32_t trace, bool whole) const {
    std::vector<std::uint32_t> outputs;
    for (; trace != 0; trace = traces_[trace].before) outputs.push_back(traces_[trace].output);
    std::reverse(outputs.begin(), outputs.end());
    std::string all;
    for (const std::uint32_t each : outputs) {
      const Output& output = grammar_.outputs_[each];
      if (output.leftOut && !whole) continue;
      all += (all.empty() ? "" : " ") + output.words;
    }
    return all;
  }

 private:
  struct Trace {
    std::uint32_t before = 0;
    std::uint32_t output = WordGraph::kNoOutput;
  };
  /// More ways to one place tell more commands for the same words; somebody has to choose between them.
  static constexpr std::size_t kMostWays = 4;

  /// Goes all steps that take no word; nowhere is left where these are too many.
  void spread() {
    std::unordered_map<Place, std::vector<std::uint32_t>> ways;
    std::vector<Reached> all;
    all.swap(reached_);
    std::size_t looked = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
      const Reached from = all[i];
      for (const WordGraph::Step& step : grammar_.graph_.stepsFrom(from.place)) {
        if (++looked > kMostReached) return;
        std::vector<std::uint32_t>& known = ways[step.to];
        if (known.size() >= kMostWays) continue;
        const std::uint32_t trace = traceOf(from.trace, step.output, known);
        if (std::find(known.begin(), known.end(), trace) != known.end()) continue;
        known.push_back(trace);
        all.push_back({step.to, trace, from.distance + step.distance});
      }
    }
    reached_ = std::move(all);
  }

  std::uint32_t traceOf(std::uint32_t before, std::uint32_t output, const std::vector<std::uint32_t>& known) {
    if (output == WordGraph::kNoOutput) return before;
    for (const std::uint32_t each : known)
      if (each != 0 && traces_[each].before == before && traces_[each].output == output) return each;
    traces_.push_back({before, output});
    return static_cast<std::uint32_t>(traces_.size() - 1);
  }

  const Grammar& grammar_;
  std::vector<Trace> traces_;
  std::vector<Reached> reached_;
};

Grammar::Grammar(const std::vector<Source>& sources, const Spellings& spellings)
    : spellings_(&spellings), outputs_(1) {
  for (const Source& source : sources) {
    const Place start = graph_.add();
    const Place end = graph_.add();
    starts_.push_back(start);
    ends_.emplace_back(end, source.event);
    endsAt_.emplace(end, ends_.size() - 1);
    event_ = source.event;
    for (const Pattern::Sequence& sentence : source.pattern.sentences())
      graph_.addStep({enter(sentence, start), end});
  }
  graph_.finish();
  findWaysOut();
  outputNumbers_.clear();
  spellings_ = nullptr;
}

std::uint32_t Grammar::outputOf(const std::string& words, bool leftOut) {
  const auto [at, isNew] =
      outputNumbers_.try_emplace((leftOut ? "-" : "+") + words, static_cast<std::uint32_t>(outputs_.size()));
  if (isNew) outputs_.push_back({words, leftOut});
  return at->second;
}

/// Back from the ends, along the steps that take no word.
void Grammar::findWaysOut() {
  const std::vector<WordGraph::Step>& steps = graph_.steps();
  std::vector<std::uint32_t> byEnd(steps.size());
  std::iota(byEnd.begin(), byEnd.end(), 0U);
  std::stable_sort(byEnd.begin(), byEnd.end(),
                   [&](std::uint32_t left, std::uint32_t right) { return steps[left].to < steps[right].to; });
  waysOut_.assign(graph_.places(), kNoWayOut);
  std::vector<Place> open;
  for (const auto& [end, event] : ends_) {
    waysOut_[end] = kEnd;
    open.push_back(end);
  }
  for (std::size_t i = 0; i < open.size(); ++i) {
    auto at = std::lower_bound(byEnd.begin(), byEnd.end(), open[i],
                               [&](std::uint32_t step, Place place) { return steps[step].to < place; });
    for (; at != byEnd.end() && steps[*at].to == open[i]; ++at) {
      std::uint32_t& way = waysOut_[steps[*at].from];
      if (way != kNoWayOut) continue;
      way = *at;
      open.push_back(steps[*at].from);
    }
  }
}

std::size_t Grammar::asWritten(std::int32_t event) const {
  const auto found = asWritten_.find(event);
  return found == asWritten_.end() ? 0 : found->second;
}

bool Grammar::enterForms(const std::string& spelling, const WordGraph::Step& step) {
  const bool ascii = std::all_of(spelling.begin(), spelling.end(),
                                 [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  for (NameWord& word : ascii ? std::vector<NameWord>() : NameWords(spelling))
    if (!word.foreign.empty() && foreign_.size() < kMostForeign)
      foreign_.emplace(std::move(word.folded), std::move(word.foreign));
  bool room = true;
  const std::vector<NameForm> forms = FormsOf(spelling, full_ ? kAlways + 1 : kMostForms);
  for (std::size_t i = 0; i < forms.size(); ++i) {
    const NameForm& form = forms[i];
    const auto words = 1 + static_cast<std::size_t>(std::count(form.words.begin(), form.words.end(), ' '));
    if (i >= kAlways && (full_ || graph_.arcs().size() + words > kMostArcs)) {
      room = false;
      full_ = true;
    } else {
      graph_.addStep({graph_.follow(step.from, form.words), step.to, step.output, form.distance});
    }
  }
  return room;
}

std::vector<std::string> Grammar::spellingsOf(const std::string& words) const {
  return *spellings_ ? (*spellings_)(words) : std::vector<std::string>();
}

void Grammar::addName(const std::string& words, Names& names) {
  const std::uint32_t output = outputOf(words, false);
  names.all.push_back({output, SaidWords(words)});
  for (const std::string& spelling : spellingsOf(words)) {
    std::string said = SaidWords(spelling);
    if (said != names.all.back().words) names.all.push_back({output, std::move(said)});
  }
}

void Grammar::enterWords(const std::string& words, Place from, Place to) {
  const WordGraph::Step step{from, to, outputOf(words, false)};
  // Punctuation alone is said by saying nothing.
  if (NameWords(words).empty()) graph_.addStep(step);
  // The name's own spellings come first: what a listener has no room for comes behind them.
  bool room = true;
  for (const std::string& spelling : spellingsOf(words)) room = enterForms(spelling, step) && room;
  room = enterForms(words, step) && room;
  if (!room) ++asWritten_[event_];
}

Grammar::Place Grammar::enterBracket(const Pattern::Part& part, Place from) {
  const Place to = graph_.add();
  Names names{from, to, {}};
  std::unordered_set<std::string_view> known;
  for (const Pattern::Sequence& choice : part.choices) {
    if (choice.size() == 1 && choice.front().kind == Pattern::Kind::kWords) {
      if (!known.insert(choice.front().words).second) continue;
      enterWords(choice.front().words, from, to);
      addName(choice.front().words, names);
    } else {
      graph_.addStep({enter(choice, from), to});
    }
  }
  if (part.kind == Pattern::Kind::kOptional) {
    // Left out it stands for its first words.
    const Pattern::Sequence& first = part.choices.front();
    const bool plain = first.size() == 1 && first.front().kind == Pattern::Kind::kWords;
    graph_.addStep({from, to, plain ? outputOf(first.front().words, true) : WordGraph::kNoOutput});
  } else if (!names.all.empty()) {
    namesAt_.emplace(from, names_.size());
    names_.push_back(std::move(names));
  }
  return to;
}

Grammar::Place Grammar::enter(const Pattern::Sequence& sequence, Place from) {
  for (const Pattern::Part& part : sequence) {
    if (part.kind == Pattern::Kind::kWords) {
      const Place to = graph_.add();
      enterWords(part.words, from, to);
      from = to;
    } else {
      from = enterBracket(part, from);
    }
  }
  return from;
}

std::vector<Said> Grammar::match(std::string_view text) const {
  std::vector<Said> all;
  const std::vector<NameWord> words = NameWords(text);
  if (words.empty()) return all;
  for (const Place start : starts_) {  // each by itself: where one leads to too many places, others may not
    Walk walk(*this, start);
    if (!std::all_of(words.begin(), words.end(),
                     [&](const NameWord& word) { return walk.take(word.folded); }))
      continue;
    for (const Walk::Reached& reached : walk.reached()) {
      const auto [first, last] = endsAt_.equal_range(reached.place);
      for (auto end = first; end != last; ++end) {
        all.push_back({ends_[end->second].second, walk.told(reached.trace, false),
                       walk.told(reached.trace, true), reached.distance});
      }
    }
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const Said& left, const Said& right) { return left.distance < right.distance; });
  std::vector<Said> once;
  for (Said& said : all) {
    const bool known = std::any_of(once.begin(), once.end(), [&](const Said& each) {
      return each.event == said.event && each.command == said.command && each.whole == said.whole;
    });
    if (!known) once.push_back(std::move(said));
  }
  return once;
}

/// The text that led to the name, the name, and what may be left out behind it.
Said Grammar::sentence(const Walk& walk, const NearName& found) const {
  Said said{0, walk.told(found.trace, false), walk.told(found.trace, true), found.distance};
  const auto add = [&](const Output& output) {
    if (!output.leftOut) AddWords(said.command, output.words);
    AddWords(said.whole, output.words);
  };
  add(outputs_[found.output]);
  Place place = names_[found.names].to;
  for (; waysOut_[place] != kEnd; place = graph_.steps()[waysOut_[place]].to)
    if (const WordGraph::Step& step = graph_.steps()[waysOut_[place]]; step.output != WordGraph::kNoOutput)
      add(outputs_[step.output]);
  said.event = ends_[endsAt_.find(place)->second].second;
  return said;
}

std::vector<Said> Grammar::near(std::string_view text, std::size_t most) const {
  std::vector<NearName> found;
  const std::vector<NameWord> words = NameWords(text);
  std::string all;
  std::vector<std::size_t> starts;
  for (const NameWord& word : words) {
    starts.push_back(all.empty() ? 0 : all.size() + 1);
    AddWords(all, word.folded);
  }
  std::vector<Walk> walks;
  std::vector<std::size_t> looked(names_.size(), words.size());
  for (const Place start : starts_) {
    Walk& walk = walks.emplace_back(*this, start);
    for (std::size_t at = 0; at < words.size(); ++at) {
      const std::string_view rest = std::string_view(all).substr(starts[at]);
      for (const Walk::Reached& reached : walk.reached()) {
        if (rest.size() > kLongestRest) break;
        const auto [first, last] = namesAt_.equal_range(reached.place);
        for (auto each = first; each != last; ++each) {
          if (looked[each->second] == at || waysOut_[names_[each->second].to] == kNoWayOut) continue;
          looked[each->second] = at;  // further on it may be reached once more, with less of the text left
          NearWords nearest(std::string(rest), most);
          for (const Spelt& name : names_[each->second].all) nearest.look(name.output, name.words);
          for (const auto& [output, distance] : nearest.best())
            found.push_back({distance, output, each->second, walks.size() - 1, reached.trace});
        }
      }
      if (!walk.take(words[at].folded)) break;
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const NearName& left, const NearName& right) {
    return left.distance < right.distance;
  });
  std::vector<Said> best;
  std::set<std::pair<std::size_t, std::uint32_t>> known;
  for (const NearName& each : found)
    if (best.size() < most && known.emplace(each.names, each.output).second)
      best.push_back(sentence(walks[each.walk], each));
  return best;
}

}  // namespace standin
