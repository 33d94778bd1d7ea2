#include "standin/events/RuleNumber.hpp"

#include <charconv>

namespace standin {

std::optional<double> RuleNumber(const std::string& text) {
  if (text.find_first_not_of("0123456789+-.eE") != std::string::npos) return std::nullopt;
  const char* begin = text.data();
  const char* const end = begin + text.size();
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') ++begin;  // which from_chars doesn't take
  double number = 0;
  const auto [read, error] = std::from_chars(begin, end, number);
  if (error != std::errc() || read != end) return std::nullopt;
  return number;
}

}  // namespace standin
