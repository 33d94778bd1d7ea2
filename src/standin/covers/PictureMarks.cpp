#include "standin/covers/PictureMarks.hpp"

#include <algorithm>
#include <fstream>
#include <utility>

#include "base/Failure.hpp"
#include "files/WriteFile.hpp"
#include "standin/covers/CoverShelf.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestMark = 64;
constexpr std::size_t kSpareLines = 1000;  ///< that a file may hold beyond those that count
constexpr const char* kNone = "-";
/// It could not be shown once, for whatever reason: the next start looks again.
constexpr const char* kOnce = "?";
/// The same in this run, in which it is not looked at again.
constexpr const char* kJustNow = "!";

bool IsOutcome(const std::string& text) { return text == kNone || text == kOnce || CoverShelf::isKey(text); }

bool IsMark(const std::string& text) {
  return !text.empty() && text.size() <= kLongestMark &&
         text.find_first_not_of("0123456789ABCDEFabcdefghijklmnopqrstuvwxyz") == std::string::npos;
}

void Rewrite(const std::filesystem::path& file, const std::map<std::string, std::string>& keys) {
  std::string all;
  for (const auto& [mark, key] : keys) {
    all += mark;
    all += " " + (key == kJustNow ? std::string(kOnce) : key) + "\n";
  }
  try {
    files::WriteFile(file.string(), all, {.mode = files::kForOwner});
  } catch (const base::Failure&) {  // without it they are read anew after the next start
  }
}

}  // namespace

PictureMarks::PictureMarks(std::filesystem::path file, std::size_t most)
    : file_(std::move(file)), most_(most) {
  std::ifstream lines(file_);
  std::size_t count = 0;
  bool spoilt = false;
  for (std::string line; keys_.size() < most_ && std::getline(lines, line); ++count) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string mark = line.substr(0, blank);
    const std::string key = line.substr(std::min(blank + 1, line.size()));
    // A line that a killed process has cut off holds no key, and must not spoil the one behind it.
    if (IsMark(mark) && IsOutcome(key))
      keys_[mark] = key;
    else
      spoilt = true;
  }
  if (spoilt || count > 2 * keys_.size() + kSpareLines) Rewrite(file_, keys_);
}

std::optional<std::string> PictureMarks::find(const std::string& mark) {
  const std::lock_guard lock(mutex_);
  const auto found = keys_.find(mark);
  if (found == keys_.end() || found->second == kOnce) return std::nullopt;
  return found->second == kNone || found->second == kJustNow ? std::string() : found->second;
}

void PictureMarks::put(const std::string& mark, const std::string& key) {
  if (!IsMark(mark)) return;
  const std::lock_guard lock(mutex_);
  const auto found = keys_.find(mark);
  const std::string before = found == keys_.end() ? std::string() : found->second;
  if (key.empty() ? before == kJustNow || before == kNone : before == key) return;
  std::string told = key;
  if (key.empty()) told = before == kOnce ? kNone : kOnce;
  if (found == keys_.end() && keys_.size() >= most_) {
    // Most of them are of pictures that have changed since, and those that count come back by themselves: so
    // it matters little which half goes.
    bool goes = false;
    std::erase_if(keys_, [&](const auto&) { return goes = !goes; });
    keys_[mark] = told;
    Rewrite(file_, keys_);
  } else {
    std::ofstream(file_, std::ios::app) << mark + " " + told + "\n" << std::flush;
  }
  keys_[mark] = told == kOnce ? kJustNow : told;
}

}  // namespace standin
