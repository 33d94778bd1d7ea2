#include "standin/hearing/QuickPlay.hpp"

#include <algorithm>
#include <string_view>

#include "base/Text.hpp"

namespace standin {
namespace {

constexpr std::string_view kQuick = "Media Player Quick ";
constexpr std::string_view kPlay = "play ";

bool BeginsWith(std::string_view text, std::string_view word) {
  return base::SameText(text.substr(0, word.size()), word);
}

}  // namespace

std::string QuickCategory(const std::string& deviceName) {
  return deviceName.starts_with(kQuick) ? deviceName.substr(kQuick.size()) : std::string();
}

std::optional<std::size_t> PlayedNameAt(const std::string& category, const std::string& command) {
  if (!BeginsWith(command, kPlay)) return std::nullopt;
  std::size_t at = kPlay.size();
  if (BeginsWith(std::string_view(command).substr(at), category)) at += category.size() + 1;
  return at < command.size() ? std::optional(at) : std::nullopt;
}

bool PlaysNothing(const std::string& category, const std::string& command) {
  return BeginsWith(command + " ", kPlay) && !PlayedNameAt(category, command);
}

std::string CommandFor(const std::string& category, const Said& said) {
  const std::string& command = said.command;
  if (category.empty() || !BeginsWith(command, kPlay)) return command;
  const std::string rest = command.substr(kPlay.size());
  if (!BeginsWith(rest, category)) return command;
  const bool leftOut = base::SameText(said.whole, std::string(kPlay) + category + " " + rest);
  return leftOut ? said.whole : command;
}

}  // namespace standin
