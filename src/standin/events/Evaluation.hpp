#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace standin {

/// How an evaluation has ended, or that it has not.
enum class Outcome {
  kRunning,
  kDone,     ///< every action was carried out
  kFailed,   ///< one or more actions failed; those behind them were carried out all the same
  kRefused,  ///< a condition said no
  kLeft,     ///< the event was running, and was to be left alone
  kStopped,  ///< by a user, or by a restart of the event
  kCut,      ///< the house ended, or the plug-in was lost, before the last action
  kCircle,   ///< events have triggered each other too many times
  kMissed    ///< its time was too long ago when the house could look at the clock again
};

/// The name that the pages know an outcome by.
std::string NameOf(Outcome outcome);

/// A condition with what was seen.
struct SeenCondition {
  std::string words{};
  std::string saw{};
  bool holds = false;
};

/// An action with what came of it.
struct DoneAction {
  std::string words{};
  std::int64_t time = 0;   ///< when it began, milliseconds since 1970
  std::int64_t spent = 0;  ///< milliseconds
  bool begun = false;
  std::string failure{};  ///< empty when it was carried out
};

/// What has come of one trigger of one event: written once, only read afterwards.
struct Evaluation {
  std::int64_t id = 0;
  std::int32_t event = 0;
  std::int64_t time = 0;  ///< of the trigger, milliseconds since 1970
  std::string trigger{};  ///< in words: "Media Player Playback Ended", "22:00", "by hand"
  Outcome outcome = Outcome::kRunning;
  std::string why{};  ///< in words, where the outcome alone doesn't tell
  std::vector<SeenCondition> conditions{};
  std::vector<DoneAction> actions{};
};

/// Where evaluations are kept.
class EvaluationSink {
 public:
  EvaluationSink() = default;
  EvaluationSink(const EvaluationSink&) = delete;
  EvaluationSink& operator=(const EvaluationSink&) = delete;
  EvaluationSink(EvaluationSink&&) = delete;
  EvaluationSink& operator=(EvaluationSink&&) = delete;
  virtual ~EvaluationSink() = default;

  /// Takes down that an event is about to run, before the first action does. Answers its number. When the
  /// house ends before `end`, it is shown as cut.
  virtual std::int64_t begin(const Evaluation& evaluation) = 0;
  /// Takes down the whole of an evaluation that `begin` knows, or of one that has run nothing (number 0).
  virtual void end(const Evaluation& evaluation) = 0;
  /// The newest of an event, without its conditions and actions; null when there is none.
  [[nodiscard]] virtual const Evaluation* last(std::int32_t event) const = 0;
};

}  // namespace standin
