#include "standin/events/Evaluation.hpp"

namespace standin {

std::string NameOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kRunning: return "running";
    case Outcome::kDone: return "done";
    case Outcome::kFailed: return "failed";
    case Outcome::kRefused: return "refused";
    case Outcome::kLeft: return "left";
    case Outcome::kStopped: return "stopped";
    case Outcome::kCut: return "cut";
    case Outcome::kCircle: return "circle";
    case Outcome::kMissed: return "missed";
  }
  return {};
}

}  // namespace standin
