#include "plugin/host/Loggers.hpp"

#include "base/Attempt.hpp"

namespace plugin {

namespace {

std::string Outcome(std::int32_t number, const std::string& description) {
  return "Error # " + std::to_string(number) + ": " + description;
}

}  // namespace

void Loggers::LogPluginError(std::int32_t number, const std::string& description,
                             const std::string& procedure) {
  base::Attempt step;
  step([&] {
    host_.WriteLog("Error", std::string("Media Player: Could not complete procedure ") + kName + "/" +
                                procedure + " " + Outcome(number, description));
  });
}

void Loggers::LogModuleError(std::int32_t number, const std::string& description, const std::string& module,
                             const std::string& procedure) {
  base::Attempt step;
  step([&] {
    host_.WriteLog("Error", "Media Player Could not complete procedure " + module + "/" + procedure + " " +
                                Outcome(number, description));
  });
}

void Loggers::LogFormError(std::int32_t number, const std::string& description,
                           const std::string& /*procedure: not told in the line*/) {
  if (number == base::number::kHostGone) {
    platform_.end();
    return;
  }
  base::Attempt step;
  step(
      [&] { host_.WriteLog("Error", "Media Player Error# " + std::to_string(number) + ": " + description); });
  // A plug-in that can't log has lost its host and has nothing left to serve.
  if (step.failed()) platform_.end();
}

void Loggers::Debug(const std::string& text) {
  if (state_.DebugMessages) host_.WriteLog("Debug", text);
}

}  // namespace plugin
