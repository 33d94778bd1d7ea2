#include "standin/covers/PictureMarks.hpp"

#include <algorithm>
#include <fstream>
#include <utility>

#include "standin/covers/CoverShelf.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestMark = 64;
constexpr const char* kNone = "-";

bool IsMark(const std::string& text) {
  return !text.empty() && text.size() <= kLongestMark &&
         text.find_first_not_of("0123456789ABCDEFabcdefghijklmnopqrstuvwxyz") == std::string::npos;
}

}  // namespace

PictureMarks::PictureMarks(std::filesystem::path file, std::size_t most)
    : file_(std::move(file)), most_(most) {
  std::ifstream lines(file_);
  for (std::string line; keys_.size() < most_ && std::getline(lines, line);) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string mark = line.substr(0, blank);
    const std::string key = line.substr(std::min(blank + 1, line.size()));
    // A line that a killed process has cut off holds no key, and spoils no other one.
    if (IsMark(mark) && (key == kNone || CoverShelf::isKey(key)))
      keys_[mark] = key == kNone ? std::string() : key;
  }
}

std::optional<std::string> PictureMarks::find(const std::string& mark) {
  const std::lock_guard lock(mutex_);
  const auto found = keys_.find(mark);
  if (found == keys_.end()) return std::nullopt;
  return found->second;
}

void PictureMarks::put(const std::string& mark, const std::string& key) {
  if (!IsMark(mark)) return;
  const std::lock_guard lock(mutex_);
  // Most of them are of pictures that have changed since: begun anew, those that count come back by
  // themselves.
  const bool anew = keys_.size() >= most_;
  if (anew) keys_.clear();
  keys_[mark] = key;
  std::ofstream(file_, anew ? std::ios::trunc : std::ios::app)
      << mark + " " + (key.empty() ? kNone : key) + "\n"
      << std::flush;
}

}  // namespace standin
