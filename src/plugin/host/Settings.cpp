#include "plugin/host/Settings.hpp"

#include "base/Attempt.hpp"
#include "plugin/host/PluginState.hpp"

namespace plugin {

namespace {
constexpr const char* kSection = "Settings";
}

base::Value Settings::raw(const std::string& key, const base::Value& fallback) const {
  return host_.GetINISetting(kSection, key, fallback, kSettingsFile);
}

bool Settings::flag(const std::string& key, bool fallback) const {
  const base::Value stored = raw(key, fallback);
  return base::Handled([&] { return base::ToBoolean(stored); },
                       [&](const base::Failure& failure) -> bool {
                         throw base::Failure(failure.number(),
                                             failure.description() + " in the setting " + key);
                       });
}

double Settings::number(const std::string& key, std::int16_t fallback) const {
  return base::NumericPrefix(base::ToText(raw(key, fallback)));
}

std::string Settings::text(const std::string& key, const std::string& fallback) const {
  return base::ToText(raw(key, fallback));
}

void Settings::save(const std::string& key, const base::Value& value) {
  host_.SaveINISetting(kSection, key, value, kSettingsFile);
}

}  // namespace plugin
