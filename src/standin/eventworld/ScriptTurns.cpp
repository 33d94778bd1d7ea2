#include "standin/eventworld/ScriptTurns.hpp"

#include <algorithm>
#include <utility>

namespace standin {
namespace {

constexpr std::size_t kMostWaiting = 20;
constexpr base::Milliseconds kLongestWait = std::chrono::minutes(10);

}  // namespace

struct ScriptTurns::Turn {
  std::string name;
  EventWorld::Done done;
  std::unique_ptr<base::Timer> patience;
};

/// A script's turn, for as long as somebody wants it.
class ScriptTurns::Held : public Deed {
 public:
  Held(ScriptTurns& turns, std::shared_ptr<Turn> turn)
      : turns_(turns), alive_(turns.alive_), turn_(std::move(turn)) {}
  ~Held() override {
    if (alive_.lock()) turns_.leave(turn_);
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  Held(Held&&) = delete;
  Held& operator=(Held&&) = delete;

 private:
  ScriptTurns& turns_;
  std::weak_ptr<bool> alive_;
  std::shared_ptr<Turn> turn_;
};

ScriptTurns::ScriptTurns(base::Loop& loop, const ScriptStore& store, ScriptRunner& runner)
    : loop_(loop), store_(store), runner_(runner) {
  runner_.onEnd = [this] { ended(); };
}

ScriptTurns::~ScriptTurns() {
  runner_.onEnd = [] {};
}

std::unique_ptr<Deed> ScriptTurns::run(const std::string& name, EventWorld::Done done) {
  if (waiting_.size() >= kMostWaiting) {
    done("Too many scripts wait for their turn");
    return nullptr;
  }
  const auto turn = std::make_shared<Turn>(Turn{name, std::move(done), nullptr});
  turn->patience = loop_.makeTimer(kLongestWait, [this, weak = std::weak_ptr(turn)] {
    const auto late = weak.lock();
    if (!late || std::erase(waiting_, late) == 0) return;
    late->patience->enabled(false);
    const EventWorld::Done told = std::move(late->done);
    told("Other scripts have run for too long");
  });
  turn->patience->enabled(true);
  waiting_.push_back(turn);
  next();
  return std::make_unique<Held>(*this, turn);
}

void ScriptTurns::next() {
  while (!running_ && !runner_.running() && !waiting_.empty()) {
    const auto turn = std::move(waiting_.front());
    waiting_.pop_front();
    turn->patience->enabled(false);
    const std::optional<std::string> text =
        ScriptStore::isName(turn->name) ? store_.read(turn->name) : std::nullopt;
    if (!text) {
      const EventWorld::Done told = std::move(turn->done);
      told("There is no script “" + turn->name + "”");
      continue;
    }
    running_ = turn;
    if (const std::string refused = runner_.start(turn->name, *text); !refused.empty()) {
      running_ = nullptr;
      const EventWorld::Done told = std::move(turn->done);
      told(refused);
    }
  }
}

void ScriptTurns::ended() {
  if (const auto over = std::exchange(running_, nullptr)) {
    const auto report = runner_.report(0);
    const EventWorld::Done told = std::move(over->done);
    if (told) told(report ? report->outcome.error : std::string());
  }
  // The runner is still on its way out of the last one.
  loop_.post([this, alive = std::weak_ptr(alive_)] {
    if (alive.lock()) next();
  });
}

void ScriptTurns::leave(const std::shared_ptr<Turn>& turn) {
  turn->patience->enabled(false);
  turn->done = nullptr;
  std::erase(waiting_, turn);
  if (running_ == turn) runner_.stop();
}

}  // namespace standin
