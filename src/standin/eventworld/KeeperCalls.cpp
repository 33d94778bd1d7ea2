#include "standin/eventworld/KeeperCalls.hpp"

#include <utility>

namespace standin {

/// The interest in a call.
class KeeperCalls::Held : public Deed {
 public:
  explicit Held(std::shared_ptr<Pending> pending) : pending_(std::move(pending)) {}
  ~Held() override {
    pending_->over = true;
    pending_->patience->enabled(false);
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  Held(Held&&) = delete;
  Held& operator=(Held&&) = delete;

 private:
  std::shared_ptr<Pending> pending_;
};

KeeperCalls::KeeperCalls(base::Loop& loop, PluginKeeper& plugin, base::Milliseconds patience)
    : loop_(loop), plugin_(plugin), patience_(patience) {}

KeeperCalls::~KeeperCalls() = default;

std::unique_ptr<Deed> KeeperCalls::call(PluginKeeper::Command command, EventWorld::Done done) {
  return std::make_unique<Held>(begin(std::move(command), std::move(done)));
}

void KeeperCalls::callAnyway(PluginKeeper::Command command, EventWorld::Done done) {
  begin(std::move(command), std::move(done));
}

std::shared_ptr<KeeperCalls::Pending> KeeperCalls::begin(PluginKeeper::Command command,
                                                         EventWorld::Done done) {
  auto pending = std::make_shared<Pending>();
  pending->done = std::move(done);
  pending->patience = loop_.makeTimer(patience_, [this, weak = std::weak_ptr(pending)] {
    if (const auto late = weak.lock()) end(late, "The plug-in has not answered in time");
  });
  pending->patience->enabled(true);
  // Not here: the keeper may go on with others' commands before it returns, and what is answered meanwhile
  // would come before whoever asks knows by what to hold it.
  loop_.post([this, pending, alive = std::weak_ptr(alive_), command = std::move(command)] {
    if (alive.lock() && !pending->over) send(pending, command);
  });
  return pending;
}

// The keeper holds what it is given until its turn has come, and so it holds the patience.
void KeeperCalls::send(const std::shared_ptr<Pending>& pending, const PluginKeeper::Command& command) {
  plugin_.command(
      [pending, alive = std::weak_ptr(alive_), command](base::Object& vxif) {
        if (!pending->over && !pending->ended && alive.lock()) command(vxif);
      },
      [this, pending, alive = std::weak_ptr(alive_)](const std::string& failure) {
        if (alive.lock()) end(pending, failure);
      });
}

// On a later turn: what is told may ask for the next thing, and it is still the keeper's turn.
void KeeperCalls::end(const std::shared_ptr<Pending>& pending, const std::string& failure) {
  pending->patience->enabled(false);
  if (std::exchange(pending->ended, true)) return;
  loop_.post([pending, failure, alive = std::weak_ptr(alive_)] {
    if (!alive.lock() || std::exchange(pending->over, true)) return;
    const EventWorld::Done done = std::move(pending->done);
    if (done) done(failure);
  });
}

}  // namespace standin
