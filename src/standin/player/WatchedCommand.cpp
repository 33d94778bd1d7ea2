#include "standin/player/WatchedCommand.hpp"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace standin {
namespace {

/// How what the plug-in tells the log of its player begins.
constexpr const char* kOfPlayer = "Media Player";
constexpr std::size_t kErrorsLookedAt = 20;

}  // namespace

void RunWatched(House& house, PluginKeeper& plugin, PluginKeeper::Command work,
                std::function<void(const CommandOutcome& outcome)> done) {
  const auto line = std::make_shared<std::int64_t>(0);
  plugin.command(
      [&house, line, work = std::move(work)](base::Object& vxif) {
        *line = house.log.lastId();
        work(vxif);
      },
      [&house, line, done = std::move(done)](const std::string& failure) {
        if (!failure.empty()) return done({.failure = failure, .refusal = {}});
        const std::vector<LogLine> errors = house.log.newest(kErrorsLookedAt, "Error");
        const auto error = std::find_if(errors.begin(), errors.end(), [&](const LogLine& each) {
          return each.id > *line && each.text.starts_with(kOfPlayer);
        });
        done({.failure = {}, .refusal = error != errors.end() ? error->text : ""});
      });
}

}  // namespace standin
