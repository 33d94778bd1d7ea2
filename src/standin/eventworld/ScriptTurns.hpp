#pragma once
#include <deque>
#include <memory>

#include "standin/eventrun/EventWorld.hpp"
#include "standin/scripts/ScriptRunner.hpp"
#include "standin/scripts/ScriptStore.hpp"

namespace standin {

/// The scripts that events run. One script runs at a time in the house, whoever has started it, so these wait
/// for their turn, but only so many and so long. What has begun runs to its end, or until it is stopped.
class ScriptTurns {
 public:
  ScriptTurns(base::Loop& loop, const ScriptStore& store, ScriptRunner& runner);
  ~ScriptTurns();
  ScriptTurns(const ScriptTurns&) = delete;
  ScriptTurns& operator=(const ScriptTurns&) = delete;
  ScriptTurns(ScriptTurns&&) = delete;
  ScriptTurns& operator=(ScriptTurns&&) = delete;

  /// `done` is told what the script has failed with, if it has. The end of what is answered takes it out of
  /// its turn, or stops it.
  std::unique_ptr<Deed> run(const std::string& name, EventWorld::Done done);

 private:
  struct Turn;
  class Held;
  void next();
  void ended();
  void leave(const std::shared_ptr<Turn>& turn);

  base::Loop& loop_;
  const ScriptStore& store_;
  ScriptRunner& runner_;
  std::deque<std::shared_ptr<Turn>> waiting_;
  std::shared_ptr<Turn> running_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
