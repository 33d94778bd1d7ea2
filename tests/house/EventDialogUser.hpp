#pragma once
#include <map>
#include <string>
#include <vector>

#include "base/Value.hpp"
#include "support/RealHouse.hpp"

namespace support {

/// Somebody who fills in the plug-in's dialogs, by the web of a real house.
class EventDialogUser {
 public:
  using Json = nlohmann::json;
  using Values = std::map<int, std::string>;

  explicit EventDialogUser(RealHouse& house) : house_(house) {}

  /// Opens a dialog and keeps its form.
  int open(const std::string& what, const std::string& stored = {}) {
    const int status = post("open", {{"what", what}, {"stored", stored}, {"take", true}});
    if (status == 200) {
      dialog = said["dialog"];
      form = said["form"];
    }
    return status;
  }
  /// Presses a button and keeps the form.
  int press(int button, const Values& values) {
    const int status = post("press", {{"dialog", dialog}, {"field", button}, {"values", named(values)}});
    if (status == 200) form = said;
    return status;
  }
  int submit(const Values& values) {
    const int status = post("submit", {{"dialog", dialog}, {"values", named(values)}});
    if (status == 200) stored = said["stored"];
    return status;
  }
  [[nodiscard]] Json field(int number) const {
    for (const Json& each : form.at("fields"))
      if (each.at("number") == number) return each;
    return Json::object();
  }
  [[nodiscard]] std::vector<std::string> options(int number) const {
    return field(number).value("options", std::vector<std::string>());
  }
  [[nodiscard]] std::string value(int number) const { return field(number).value("value", "(none)"); }
  /// What was stored, with "|" for the separator.
  [[nodiscard]] std::string readable() const {
    std::string text = stored;
    for (char& c : text)
      if (c == '\x02') c = '|';
    return text;
  }
  /// The message beside a field, of what was refused last.
  [[nodiscard]] std::string message(int number) const {
    return said.value("fields", Json::object()).value(std::to_string(number), "");
  }

  std::int64_t dialog = 0;
  Json form;
  Json said;  ///< the last answer
  std::string stored;

 private:
  static Json named(const Values& values) {
    Json all = Json::object();
    for (const auto& [number, value] : values) all[std::to_string(number)] = value;
    return all;
  }
  int post(const std::string& what, const Json& body) {
    const auto answer = house_.client().Post("/api/dialog/" + what, {{"Origin", house_.url()}}, TextOf(body),
                                             "application/json");
    said = answer ? JsonIfAny(answer->body) : Json();
    return answer ? answer->status : -1;
  }

  RealHouse& house_;
};

}  // namespace support
