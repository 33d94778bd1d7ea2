#include "standin/hearing/HouseGrammar.hpp"

#include <algorithm>
#include <iterator>
#include <new>
#include <unordered_map>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

/// Where the plug-in keeps the library's names behind those that it can say: one section a category.
constexpr const char* kNamesFile = "vxif_WMP.ini";
constexpr const char* kCategories[] = {"Album", "Artist", "Genre", "PlayList"};

constexpr const char* kTooMuch = "What can be said is too much for this machine: it stays as it was";

/// Two digits a byte; the empty text for anything else.
std::string Decoded(std::string_view digits) {
  std::string text;
  try {
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
      text += static_cast<char>(base::HexDigit(digits[i]) * 16 + base::HexDigit(digits[i + 1]));
  } catch (const base::Failure&) {
    return {};
  }
  return text;
}

using Names = std::unordered_map<std::string, std::vector<std::string>>;

/// By what stands in patterns, in lower case.
void AddNames(const std::string& section, Names& names) {
  for (const std::string& line : base::Split(section, '\0')) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string name = Decoded(std::string_view(line).substr(equals + 1));
    if (name.empty()) continue;
    std::vector<std::string>& known = names[base::LowerCase(line.substr(0, equals))];
    if (std::find(known.begin(), known.end(), name) == known.end()) known.push_back(name);
  }
}

/// What the plug-in makes of a category without names: an opening bracket is lost, and the category alone
/// would play nothing.
bool HasNoNames(const std::string& pattern) {
  return std::any_of(std::begin(kCategories), std::end(kCategories), [&](const std::string& category) {
    return pattern == "Play " + category + " )" || pattern == "Play [" + category + "] )";
  });
}

/// Nobody waits for the grammar any more.
struct Ended {};

}  // namespace

struct HouseGrammar::Wanted {
  std::uint64_t revision = 0;
  std::vector<Entry> entries;
  std::vector<std::string> sections;  ///< of the file of names
};

HouseGrammar::~HouseGrammar() { *ended_ = true; }

const std::vector<HouseGrammar::Entry>& HouseGrammar::entries() {
  if (entriesRevision_ == revision()) return entries_;
  std::vector<Entry> entries;
  for (const auto& [id, event] : house_.events.all()) {
    if (event.vcmd.empty()) continue;
    const bool empty = HasNoNames(event.vcmd);
    entries.push_back({id, std::make_shared<const Pattern>(empty ? std::string_view() : event.vcmd)});
  }
  entries_ = std::move(entries);
  entriesRevision_ = revision();
  return entries_;
}

std::shared_ptr<const HouseGrammar::Wanted> HouseGrammar::wanted() {
  auto wanted = std::make_shared<Wanted>(Wanted{revision(), entries(), {}});
  for (const char* category : kCategories)
    wanted->sections.push_back(house_.settings.section(kNamesFile, category));
  return wanted;
}

HouseGrammar::MadeRef HouseGrammar::Make(const Wanted& wanted, const std::atomic<bool>& ended) {
  std::vector<Grammar::Source> sources;
  sources.reserve(wanted.entries.size());
  for (const Entry& each : wanted.entries) sources.push_back({each.event, *each.pattern});
  Names names;
  for (const std::string& section : wanted.sections) AddNames(section, names);
  Grammar grammar(sources, [&](const std::string& words) {
    if (ended) throw Ended();
    const auto found = names.find(base::LowerCase(words));
    return found == names.end() ? std::vector<std::string>() : found->second;
  });
  Audible audible = AudibleOf(grammar);
  return std::make_shared<const Made>(Made{wanted.revision, std::move(grammar), std::move(audible)});
}

void HouseGrammar::want() {
  if (making_) {
    again_ = true;
  } else if (!made_ || made_->revision != revision()) {
    start();
  }
}

void HouseGrammar::start() {
  const std::shared_ptr<const Wanted> wanted = this->wanted();
  const auto result = std::make_shared<MadeRef>();
  making_ = true;
  again_ = false;
  worker_.start(
      [wanted, result, ended = ended_] { *result = Make(*wanted, *ended); },
      [this, result, revision = wanted->revision, ended = ended_](const std::exception_ptr& failure) {
        if (!*ended) take(revision, std::move(*result), failure);
      });
}

void HouseGrammar::take(std::uint64_t revision, MadeRef made, const std::exception_ptr& failure) {
  making_ = false;
  if (failure == nullptr) {
    made_ = std::move(made);
    onMade();
  } else {
    house_.log.write("Error", kTooMuch);
  }
  for (const auto& then : std::exchange(asking_, {})) then();
  const auto reached = std::stable_partition(following_.begin(), following_.end(),
                                             [&](const auto& each) { return each.first > revision; });
  std::vector<std::function<void()>> all;
  for (auto each = reached; each != following_.end(); ++each) all.push_back(std::move(each->second));
  following_.erase(reached, following_.end());
  for (const auto& then : all) then();
  if (again_ && !making_ && revision != this->revision()) start();
}

void HouseGrammar::ask(std::function<void()> then) {
  want();
  if (made_ || !making_) return then();
  asking_.push_back(std::move(then));
}

const HouseGrammar::MadeRef& HouseGrammar::now() {
  if (made_) {
    want();
    return made_;
  }
  try {
    made_ = Make(*wanted(), *ended_);
    onMade();
  } catch (const std::bad_alloc&) {
    house_.log.write("Error", kTooMuch);
  }
  return made_;
}

void HouseGrammar::whenFollowed(std::function<void()> then) {
  const std::uint64_t wanted = revision();
  if (made_ || making_) want();
  if (!making_) return then();
  following_.emplace_back(wanted, std::move(then));
}

std::vector<std::string> HouseGrammar::troubles(std::int32_t event) const {
  std::vector<std::string> all;
  if (!made_ || made_->revision != revision()) return all;
  const std::vector<std::int32_t>& leftOut = made_->audible.leftOut;
  if (std::find(leftOut.begin(), leftOut.end(), event) != leftOut.end())
    all.emplace_back("It is too long to be listened for: what it says can only be typed");
  const std::vector<std::int32_t>& inOneWay = made_->audible.inOneWay;
  if (std::find(inOneWay.begin(), inOneWay.end(), event) != inOneWay.end())
    all.emplace_back("It has so many names that each is listened for in one way only");
  if (const auto found = made_->audible.unsayable.find(event); found != made_->audible.unsayable.end())
    all.push_back(std::to_string(found->second) +
                  " of its names can’t be pronounced: they can only be typed");
  if (const std::size_t names = made_->grammar.asWritten(event); names > 0)
    all.push_back(std::to_string(names) +
                  " of its names are only known in one or two ways, as there are too many");
  return all;
}

std::string HouseGrammar::libraryName(const std::string& category, const std::string& words) const {
  const std::string name = Decoded(house_.settings.get(kNamesFile, category, words).value_or(""));
  return name.empty() ? words : name;
}

}  // namespace standin
