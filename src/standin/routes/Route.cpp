#include "standin/routes/Route.hpp"

#include <memory>
#include <utility>

#include "base/Failure.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {

WebAnswer Told(const nlohmann::json& json) { return {.body = Dump(json)}; }

WebAnswer Refusal(int status, const std::string& text) {
  return {.status = status, .body = Dump({{"error", text}})};
}

WebAnswer OutcomeOf(const std::string& failure) {
  return failure.empty() ? WebAnswer() : Refusal(502, failure);
}

WebAnswer RefusalOfFailure() {
  try {
    throw;
  } catch (const nlohmann::json::exception&) {
    return Refusal(400, "The request lacks a field, or one has the wrong type");
  } catch (...) {
    const base::Failure failure = base::CurrentFailure();
    return Refusal(failure.number() == base::number::kDiskFull ? 507 : 500, failure.description());
  }
}

Routes Joined(const std::vector<Routes>& areas) {
  Routes all;
  for (const Routes& area : areas) all.insert(all.end(), area.begin(), area.end());
  return all;
}

WebAnswer AskLoop(LoopGate& gate, std::function<void(const Reply& reply)> work) {
  const auto answer = std::make_shared<WebAnswer>();
  LoopGate::Outcome outcome{};
  try {
    outcome = gate.run([answer, work = std::move(work)](std::function<void()> done) {
      work([answer, done = std::move(done)](WebAnswer given) {
        *answer = std::move(given);
        done();
      });
    });
  } catch (...) {
    return RefusalOfFailure();
  }
  if (outcome == LoopGate::Outcome::kDone) return std::move(*answer);
  if (outcome == LoopGate::Outcome::kClosed) return Refusal(503, "The server is stopping");
  return Refusal(504, "No answer in time; what was asked for may still be done");
}

}  // namespace standin
