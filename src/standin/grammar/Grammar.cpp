#include "standin/grammar/Grammar.hpp"

#include <algorithm>

#include "standin/grammar/NameForms.hpp"
#include "standin/grammar/NearWords.hpp"

namespace standin {

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

  Walk(const Grammar& grammar, const std::vector<Place>& starts) : grammar_(grammar), traces_(1) {
    for (const Place start : starts) reached_.push_back({start, 0, 0});
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

  /// Goes all steps that take no word.
  void spread() {
    std::unordered_map<Place, std::vector<std::uint32_t>> ways;
    std::vector<Reached> all;
    all.swap(reached_);
    for (std::size_t i = 0; i < all.size(); ++i) {
      const Reached from = all[i];
      for (const WordGraph::Step& step : grammar_.graph_.stepsFrom(from.place)) {
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
    for (const Pattern::Sequence& sentence : source.pattern.sentences())
      graph_.addStep({enter(sentence, start), end});
  }
  graph_.finish();
  outputNumbers_.clear();
  spellings_ = nullptr;
}

std::uint32_t Grammar::outputOf(const std::string& words, bool leftOut) {
  const auto [at, isNew] =
      outputNumbers_.try_emplace((leftOut ? "-" : "+") + words, static_cast<std::uint32_t>(outputs_.size()));
  if (isNew) outputs_.push_back({words, leftOut});
  return at->second;
}

void Grammar::enterWords(const std::string& words, Place from, Place to) {
  const std::uint32_t output = outputOf(words, false);
  const auto enterForms = [&](const std::string& spelling) {
    const std::vector<NameForm> forms = FormsOf(spelling);
    for (const NameForm& form : forms)
      graph_.addStep({graph_.follow(from, form.words), to, output, form.distance});
    return !forms.empty();
  };
  // Punctuation alone is said by saying nothing.
  if (!enterForms(words)) graph_.addStep({from, to, output});
  if (!*spellings_) return;
  for (const std::string& spelling : (*spellings_)(words)) enterForms(spelling);
}

Grammar::Place Grammar::enterBracket(const Pattern::Part& part, Place from) {
  const Place to = graph_.add();
  Names names{from, to, {}};
  for (const Pattern::Sequence& choice : part.choices) {
    if (choice.size() == 1 && choice.front().kind == Pattern::Kind::kWords) {
      enterWords(choice.front().words, from, to);
      names.outputs.push_back(outputOf(choice.front().words, false));
    } else {
      graph_.addStep({enter(choice, from), to});
    }
  }
  if (part.kind == Pattern::Kind::kOptional) {
    // Left out it stands for its first words.
    const Pattern::Sequence& first = part.choices.front();
    const bool plain = first.size() == 1 && first.front().kind == Pattern::Kind::kWords;
    graph_.addStep({from, to, plain ? outputOf(first.front().words, true) : WordGraph::kNoOutput});
  } else if (!names.outputs.empty()) {
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
  Walk walk(*this, starts_);
  for (const NameWord& word : words)
    if (!walk.take(word.folded)) return all;
  for (const Walk::Reached& reached : walk.reached()) {
    const auto [first, last] = endsAt_.equal_range(reached.place);
    for (auto end = first; end != last; ++end) {
      all.push_back({ends_[end->second].second, walk.told(reached.trace, false),
                     walk.told(reached.trace, true), reached.distance});
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

std::vector<Said> Grammar::near(std::string_view text, std::size_t most) const {
  struct Found {
    int distance = 0;
    Said said;
  };
  std::vector<Found> found;
  std::vector<std::string> words;
  for (NameWord& word : NameWords(text)) words.push_back(std::move(word.folded));
  Walk walk(*this, starts_);
  std::vector<bool> looked(names_.size());
  for (std::size_t at = 0; at < words.size(); ++at) {
    std::string rest;
    for (std::size_t i = at; i < words.size(); ++i) rest += (i == at ? "" : " ") + words[i];
    for (const Walk::Reached& reached : walk.reached()) {
      const auto [first, last] = namesAt_.equal_range(reached.place);
      for (auto each = first; each != last; ++each) {
        const Names& names = names_[each->second];
        if (looked[each->second]) continue;
        const Walk behind(*this, {names.to});
        const auto end =
            std::find_if(behind.reached().begin(), behind.reached().end(),
                         [&](const Walk::Reached& one) { return endsAt_.count(one.place) != 0; });
        if (end == behind.reached().end()) continue;
        looked[each->second] = true;
        const std::int32_t event = ends_[endsAt_.find(end->place)->second].second;
        NearWords nearest(rest, most);
        for (const std::uint32_t output : names.outputs)
          nearest.look(output, SaidWords(outputs_[output].words));
        for (const auto& [output, distance] : nearest.best()) {
          const std::string& name = outputs_[output].words;
          const auto with = [&](bool whole) {
            const std::string before = walk.told(reached.trace, whole);
            const std::string after = behind.told(end->trace, whole);
            std::string sentence = before;
            sentence.append(before.empty() ? "" : " ")
                .append(name)
                .append(after.empty() ? "" : " ")
                .append(after);
            return sentence;
          };
          found.push_back({distance, {event, with(false), with(true), distance}});
        }
      }
    }
    if (!walk.take(words[at])) break;
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Found& left, const Found& right) { return left.distance < right.distance; });
  std::vector<Said> best;
  for (Found& each : found)
    if (best.size() < most) best.push_back(std::move(each.said));
  return best;
}

}  // namespace standin
