#pragma once
#include "standin/events/AlarmMemory.hpp"
#include "standin/rules/EvaluationStore.hpp"

namespace standin {

/// The memory of the triggers of time, in the database. What has come to an evaluation has been seen to, even
/// where the plug was pulled before that was kept here.
class StoredAlarms : public AlarmMemory {
 public:
  StoredAlarms(House& house, const EvaluationStore& history);

  [[nodiscard]] std::optional<std::int64_t> seen() const override;
  [[nodiscard]] std::optional<std::int64_t> seen(std::int32_t event) const override;
  void keep(std::int64_t moment) override;
  void keep(std::int32_t event, std::int64_t moment) override;

 private:
  [[nodiscard]] std::optional<std::int64_t> read(std::int32_t event) const;

  House& house_;
  const EvaluationStore& history_;
};

}  // namespace standin
