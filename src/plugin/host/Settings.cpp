#include "plugin/host/Settings.hpp"

#include "plugin/host/PluginState.hpp"

namespace plugin {

namespace {
constexpr const char* kSection = "Settings";
}  // namespace

base::Value Settings::raw(const std::string& key, const base::Value& fallback) const {
  return host_.GetINISetting(kSection, key, fallback, kSettingsFile);
}

bool Settings::flag(const std::string& key, bool fallback) const {
  const base::Value stored = raw(key, fallback);
  return ForSetting(key, [&] { return base::ToBoolean(stored); });
}

double Settings::number(const std::string& key, std::int16_t fallback) const {
  const base::Value stored = raw(key, fallback);
  return ForSetting(key, [&] { return base::NumericPrefix(base::ToText(stored)); });
}

std::int32_t Settings::wholeNumber(const std::string& key, std::int16_t fallback) const {
  const double stored = number(key, fallback);
  return ForSetting(key, [&] { return base::ToInt32(stored); });
}

std::string Settings::text(const std::string& key, const std::string& fallback) const {
  const base::Value stored = raw(key, fallback);
  return ForSetting(key, [&] { return base::ToText(stored); });
}

void Settings::save(const std::string& key, const base::Value& value) {
  host_.SaveINISetting(kSection, key, value, kSettingsFile);
}

}  // namespace plugin
