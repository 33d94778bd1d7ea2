#include "standin/rules/JsonPlace.hpp"

#include "base/Text.hpp"

namespace standin {

void JsonPlace::refuse(const std::string& why) const {
  throw BadRule(path_, (title_.empty() ? std::string("The event") : title_) + ": " + why);
}

const nlohmann::json& JsonPlace::json() const {
  if (json_ == nullptr) refuse("is missing");
  return *json_;
}

JsonPlace JsonPlace::field(const char* name) const {
  mustBeObject();
  const auto found = json_->find(name);
  JsonPlace place = *this;
  place.json_ = found == json_->end() ? nullptr : &*found;
  place.path_ += (path_.empty() ? "" : "/") + std::string(name);
  place.title_ += (title_.empty() ? "" : ", ") + std::string(name);
  return place;
}

JsonPlace JsonPlace::needed(const char* name) const {
  JsonPlace place = field(name);
  static_cast<void>(place.json());
  return place;
}

JsonPlace JsonPlace::entry(std::size_t index, const char* title) const {
  JsonPlace place = *this;
  place.json_ = &json().at(index);
  place.path_ += "/" + std::to_string(index);
  // The list's own name says less than what its entries are.
  const std::size_t within = title_.rfind(", ");
  place.title_ = (within == std::string::npos ? std::string() : title_.substr(0, within + 2)) + title + " " +
                 std::to_string(index + 1);
  return place;
}

std::size_t JsonPlace::size(std::size_t most) const {
  if (!given()) return 0;
  if (!json_->is_array()) refuse("is no list");
  if (json_->size() > most) refuse("holds more than " + std::to_string(most));
  return json_->size();
}

void JsonPlace::mustBeObject() const {
  if (!json().is_object()) refuse("is no object");
}

std::int64_t JsonPlace::whole(std::int64_t least, std::int64_t most) const {
  const std::string range =
      "must be a whole number from " + std::to_string(least) + " to " + std::to_string(most);
  if (!json().is_number_integer()) refuse(range);
  const bool huge =
      json_->is_number_unsigned() &&
      json_->get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (huge) refuse(range);
  const auto value = json_->get<std::int64_t>();
  if (value < least || value > most) refuse(range);
  return value;
}

bool JsonPlace::flag(bool usual) const {
  if (!given()) return usual;
  if (!json_->is_boolean()) refuse("must be true or false");
  return json_->get<bool>();
}

std::string JsonPlace::text() const {
  if (!json().is_string()) refuse("must be a text");
  const auto& text = json_->get_ref<const std::string&>();
  if (text.size() > RuleBounds::kText) refuse("is longer than 64 KiB");
  // Code 0 ends a text where others read it.
  if (!base::IsPlainUtf8(text)) refuse("holds what is no character");
  return text;
}

std::string JsonPlace::someText() const {
  std::string some = text();
  if (some.empty()) refuse("is empty");
  return some;
}

std::size_t JsonPlace::word(std::span<const char* const> words) const {
  const std::string given = text();
  std::string all;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (given == words[i]) return i;
    all += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + std::string(words[i]);
  }
  refuse("must be " + all);
}

}  // namespace standin
