#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "standin/events/Evaluation.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// What has come of the events' triggers, in the database. What was running when the house ended is cut when
/// it starts again.
///
/// Of each event the last that ran or failed are kept, and beside them the last dull ones. When all together
/// are too many bytes, the oldest go, the dull ones first. Evaluations of a deleted event stay for as long as
/// it can come back.
class EvaluationStore : public EvaluationSink {
 public:
  struct Limits {
    std::int64_t ran = 50;   ///< of one event
    std::int64_t dull = 50;  ///< of one event
    std::int64_t bytes = std::int64_t{512} << 20U;
  };
  explicit EvaluationStore(House& house) : EvaluationStore(house, Limits()) {}
  EvaluationStore(House& house, Limits limits);

  /// Both are stored when they return, and throw as databases do. An end that could not be stored is kept and
  /// tried again with the next call.
  std::int64_t begin(const Evaluation& evaluation) override;
  void end(const Evaluation& evaluation) override;

  /// An evaluation with the name that its event had, or has now.
  struct Named {
    Evaluation evaluation{};
    std::string name{};
  };
  struct Page {
    std::vector<Named> evaluations{};
    bool more = false;
  };
  /// The newest first: those of an event, or of all for 0, older than number `before` unless that is 0.
  [[nodiscard]] Page page(std::int32_t event, std::int64_t before, std::size_t count) const;
  [[nodiscard]] const Evaluation* last(std::int32_t event) const override;

 private:
  void cutWhatRan();
  void forgetTheLost();
  void loadLast();
  [[nodiscard]] std::string textOf(const Evaluation& evaluation) const;
  void write(const Evaluation& evaluation);
  void writeTheUnwritten();
  void trim(std::int32_t event, bool dull);
  void trimAll();
  void remember(const Evaluation& evaluation);

  House& house_;
  Limits limits_;
  database::Statement insert_;
  database::Statement update_;
  database::Statement sizeOf_;
  database::Statement trim_;
  std::int64_t bytes_ = 0;  ///< of all that is stored
  std::map<std::int32_t, Evaluation> last_;
  std::vector<Evaluation> unwritten_;
};

}  // namespace standin
