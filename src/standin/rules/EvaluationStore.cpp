#include "standin/rules/EvaluationStore.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/rules/EvaluationJson.hpp"

namespace standin {
namespace {

constexpr std::size_t kMostUnwritten = 1000;
constexpr std::size_t kLargestPage = 200;

std::int64_t NumberOf(Outcome outcome) { return static_cast<std::int64_t>(outcome); }

database::Database& DatabaseOf(House& house) { return house.database; }

}  // namespace

EvaluationStore::EvaluationStore(House& house, Limits limits)
    : house_(house),
      limits_(limits),
      insert_(DatabaseOf(house),
              "INSERT INTO evaluation (event, time, outcome, dull, size, data) VALUES (?, ?, ?, ?, ?, ?)"),
      update_(DatabaseOf(house),
              "UPDATE evaluation SET outcome = ?, dull = ?, size = ?, data = ? WHERE id = ?"),
      sizeOf_(DatabaseOf(house), "SELECT size FROM evaluation WHERE id = ?"),
      trim_(DatabaseOf(house),
            "DELETE FROM evaluation WHERE outcome <> 0 AND id IN (SELECT id FROM evaluation WHERE event = ? "
            "AND "
            "dull = ? ORDER BY id DESC LIMIT -1 OFFSET ?) RETURNING size") {
  database::Transaction whole(house_.database);
  forgetTheLost();
  cutWhatRan();
  whole.commit();
  loadLast();
  database::Statement sum(house_.database, "SELECT COALESCE(SUM(size), 0) FROM evaluation");
  sum.step();
  bytes_ = sum.integer(0);
}

void EvaluationStore::forgetTheLost() {
  house_.database.run(
      "DELETE FROM evaluation WHERE event NOT IN (SELECT id FROM event) AND event NOT IN (SELECT event FROM "
      "event_step)");
}

void EvaluationStore::cutWhatRan() {
  std::vector<std::pair<std::int64_t, std::string>> running;
  database::Statement rows(house_.database, "SELECT id, data FROM evaluation WHERE outcome = 0");
  while (rows.step()) running.emplace_back(rows.integer(0), rows.text(1));
  for (const auto& [id, text] : running) {
    try {
      Evaluation evaluation = EvaluationOfText(text);
      evaluation.id = id;
      evaluation.outcome = Outcome::kCut;
      evaluation.why = "The house ended before the last action";
      const std::string cut = textOf(evaluation);
      update_.with(NumberOf(Outcome::kCut), false, cut.size(), cut, id).run();
    } catch (const base::Failure& failure) {
      if (failure.description() != "An evaluation can't be read") throw;
      database::Statement(house_.database, "DELETE FROM evaluation WHERE id = ?").with(id).run();
    }
  }
}

void EvaluationStore::loadLast() {
  database::Statement rows(
      house_.database,
      "SELECT id, data FROM evaluation WHERE id IN (SELECT MAX(id) FROM evaluation GROUP BY "
      "event)");
  while (rows.step()) {
    try {
      Evaluation evaluation = EvaluationOfText(rows.text(1));
      evaluation.id = rows.integer(0);
      remember(evaluation);
    } catch (const base::Failure&) {  // one that can't be read is not shown
    }
  }
}

std::string EvaluationStore::textOf(const Evaluation& evaluation) const {
  nlohmann::json json = JsonOf(evaluation);
  const Event* event = house_.events.byId(evaluation.event);
  if (event != nullptr) json["name"] = event->name;
  return Dump(json);
}

void EvaluationStore::remember(const Evaluation& evaluation) {
  Evaluation& last = last_[evaluation.event];
  if (evaluation.id < last.id) return;
  last = evaluation;
  last.conditions.clear();
  last.actions.clear();
}

std::int64_t EvaluationStore::begin(const Evaluation& evaluation) {
  writeTheUnwritten();
  Evaluation begun = evaluation;
  begun.id = 0;
  begun.outcome = Outcome::kRunning;
  write(begun);
  begun.id = house_.database.lastId();
  remember(begun);
  return begun.id;
}

void EvaluationStore::end(const Evaluation& evaluation) {
  try {
    writeTheUnwritten();
    write(evaluation);
  } catch (...) {
    if (unwritten_.size() < kMostUnwritten) unwritten_.push_back(evaluation);
    remember(evaluation);
    throw;
  }
  Evaluation ended = evaluation;
  if (ended.id == 0) ended.id = house_.database.lastId();
  remember(ended);
}

void EvaluationStore::writeTheUnwritten() {
  while (!unwritten_.empty()) {
    write(unwritten_.front());
    unwritten_.erase(unwritten_.begin());
  }
}

void EvaluationStore::write(const Evaluation& evaluation) {
  const std::string text = textOf(evaluation);
  const auto size = static_cast<std::int64_t>(text.size());
  const bool dull = IsDull(evaluation);
  const std::int64_t before = bytes_;
  try {
    database::Transaction whole(house_.database);
    if (evaluation.id != 0) {
      if (sizeOf_.with(evaluation.id).step()) bytes_ -= sizeOf_.integer(0);
      sizeOf_.with();
      update_.with(NumberOf(evaluation.outcome), dull, size, text, evaluation.id).run();
    } else {
      insert_.with(evaluation.event, evaluation.time, NumberOf(evaluation.outcome), dull, size, text).run();
    }
    bytes_ += size;
    if (evaluation.outcome != Outcome::kRunning) trim(evaluation.event, dull);
    if (bytes_ > limits_.bytes) trimAll();
    whole.commit();
  } catch (...) {
    bytes_ = before;
    throw;
  }
}

void EvaluationStore::trim(std::int32_t event, bool dull) {
  trim_.with(event, dull, dull ? limits_.dull : limits_.ran);
  while (trim_.step()) bytes_ -= trim_.integer(0);
}

void EvaluationStore::trimAll() {
  // More than necessary, so that the next one doesn't have to look through all again.
  const std::int64_t wanted = limits_.bytes - limits_.bytes / 8;
  std::vector<std::int64_t> oldest;
  database::Statement rows(house_.database,
                           "SELECT id, size FROM evaluation WHERE outcome <> 0 ORDER BY dull DESC, id");
  while (bytes_ > wanted && rows.step()) {
    oldest.push_back(rows.integer(0));
    bytes_ -= rows.integer(1);
  }
  rows.with();
  database::Statement drop(house_.database, "DELETE FROM evaluation WHERE id = ?");
  for (const std::int64_t id : oldest) drop.with(id).run();
}

const Evaluation* EvaluationStore::last(std::int32_t event) const {
  const auto found = last_.find(event);
  return found == last_.end() ? nullptr : &found->second;
}

EvaluationStore::Page EvaluationStore::page(std::int32_t event, std::int64_t before,
                                            std::size_t count) const {
  count = std::clamp<std::size_t>(count, 1, kLargestPage);
  // Few are one event's: sorted, not sought among those of all others.
  const char* sql = event == 0
                        ? "SELECT id, data FROM evaluation WHERE id < ?1 ORDER BY id DESC LIMIT ?2"
                        : "SELECT id, data FROM evaluation INDEXED BY evaluation_event WHERE event = ?3 AND "
                          "id < ?1 ORDER BY id DESC LIMIT ?2";
  database::Statement rows(house_.database, sql);
  const std::int64_t end = before == 0 ? std::numeric_limits<std::int64_t>::max() : before;
  event == 0 ? rows.with(end, count + 1) : rows.with(end, count + 1, event);
  Page page;
  while (rows.step()) {
    if (page.evaluations.size() == count) {
      page.more = true;
      break;
    }
    const std::string text = rows.text(1);
    try {
      Named named{EvaluationOfText(text), {}};
      named.evaluation.id = rows.integer(0);
      const auto late = std::find_if(unwritten_.begin(), unwritten_.end(),
                                     [&](const Evaluation& each) { return each.id == named.evaluation.id; });
      if (late != unwritten_.end()) named.evaluation = *late;
      const Event* now = house_.events.byId(named.evaluation.event);
      named.name = now != nullptr ? base::RepairUtf8(now->name) : ReadJson(text).value("name", std::string());
      page.evaluations.push_back(std::move(named));
    } catch (const base::Failure&) {  // one that can't be read is not shown
    }
  }
  return page;
}

}  // namespace standin
