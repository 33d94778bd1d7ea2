#pragma once
#include <algorithm>
#include <string>
#include <vector>

namespace support {

/// What the fakes of one test were asked to do, in order.
class Journal {
 public:
  void add(std::string line) { lines_.push_back(std::move(line)); }
  void clear() { lines_.clear(); }
  [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }
  /// The lines that begin with a text, in order.
  [[nodiscard]] std::vector<std::string> with(const std::string& beginning) const {
    std::vector<std::string> found;
    std::copy_if(lines_.begin(), lines_.end(), std::back_inserter(found),
                 [&](const std::string& line) { return line.rfind(beginning, 0) == 0; });
    return found;
  }
  [[nodiscard]] std::size_t count(const std::string& line) const {
    return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), line));
  }
  [[nodiscard]] bool has(const std::string& line) const { return count(line) > 0; }
  /// The position of a line, or the number of lines when it isn't there.
  [[nodiscard]] std::size_t find(const std::string& line) const {
    return static_cast<std::size_t>(std::find(lines_.begin(), lines_.end(), line) - lines_.begin());
  }

 private:
  std::vector<std::string> lines_;
};

}  // namespace support
