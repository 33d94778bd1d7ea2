// What the store reads from the database, and the place.
#include <charconv>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/rules/RuleJson.hpp"
#include "standin/rules/RuleStore.hpp"

namespace standin {
namespace {

constexpr const char* kRules = "SELECT event, version, active, rule FROM event_rule";

RuledEvent RuledFrom(const database::Statement& row, const Event& event) {
  RuledEvent ruled;
  ruled.rule = RuleOfText(row.text(3));
  ruled.rule.on = row.integer(2) != 0;
  ruled.id = event.id;
  ruled.version = row.integer(1);
  // The plug-in's names may be of any bytes.
  ruled.name = base::RepairUtf8(event.name);
  ruled.group = base::RepairUtf8(event.group);
  return ruled;
}

/// The shortest text that reads back as the same number.
std::string TextOfNumber(double number) {
  std::array<char, 40> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

double NumberOf(const std::string& text) {
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

void RuleStore::load() {
  database::Statement rows(house_.database, std::string(kRules) + " ORDER BY event");
  std::vector<std::string> unreadable;
  while (rows.step()) {
    const Event* event = house_.events.byId(static_cast<std::int32_t>(rows.integer(0)));
    if (event == nullptr) continue;
    try {
      rules_.emplace_hint(rules_.end(), event->id, RuledFrom(rows, *event));
    } catch (const BadRule& bad) {
      unreadable.push_back("The rule of the event “" + event->name + "” can't be read: " + bad.description());
    }
  }
  try {
    for (const std::string& text : unreadable) house_.log.write("Warning", text);
  } catch (const base::Failure&) {  // a full disk; the rules are there all the same
  }
}

std::optional<RuledEvent> RuleStore::read(const Event& event) {
  database::Statement row(house_.database, std::string(kRules) + " WHERE event = ?");
  if (!row.with(event.id).step()) return std::nullopt;
  return RuledFrom(row, event);
}

void RuleStore::loadPlace() {
  database::Statement row(house_.database, "SELECT latitude, longitude FROM place");
  if (row.step()) place_ = Place{NumberOf(row.text(0)), NumberOf(row.text(1))};
}

void RuleStore::setPlace(const std::optional<Place>& place) {
  if (place == place_) return;
  database::Transaction whole(house_.database);
  house_.database.run("DELETE FROM place");
  if (place) {
    database::Statement(house_.database, "INSERT INTO place (latitude, longitude) VALUES (?, ?)")
        .with(TextOfNumber(place->latitude), TextOfNumber(place->longitude))
        .run();
  }
  whole.commit();
  place_ = place;
  tell(0);
}

}  // namespace standin
