#pragma once
#include <memory>

#include "standin/eventworld/PluginCalls.hpp"

namespace standin {

/// By way of the keeper, where calls wait for each other. Nobody waits for longer than some patience.
class KeeperCalls : public PluginCalls {
 public:
  KeeperCalls(base::Loop& loop, PluginKeeper& plugin, base::Milliseconds patience = std::chrono::seconds(60));
  ~KeeperCalls() override;
  KeeperCalls(const KeeperCalls&) = delete;
  KeeperCalls& operator=(const KeeperCalls&) = delete;
  KeeperCalls(KeeperCalls&&) = delete;
  KeeperCalls& operator=(KeeperCalls&&) = delete;

  [[nodiscard]] std::unique_ptr<Deed> call(PluginKeeper::Command command, EventWorld::Done done) override;
  void callAnyway(PluginKeeper::Command command, EventWorld::Done done) override;

 private:
  struct Pending {
    EventWorld::Done done;
    std::unique_ptr<base::Timer> patience;
    bool ended = false;  ///< the plug-in has answered, or patience has
    bool over = false;   ///< nobody wants to know, or knows already
  };
  class Held;
  std::shared_ptr<Pending> begin(PluginKeeper::Command command, EventWorld::Done done);
  void send(const std::shared_ptr<Pending>& pending, const PluginKeeper::Command& command);
  void end(const std::shared_ptr<Pending>& pending, const std::string& failure);

  base::Loop& loop_;
  PluginKeeper& plugin_;
  base::Milliseconds patience_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
