#pragma once
#include <string>

#include "base/Attempt.hpp"
#include "plugin/host/HostServices.hpp"

namespace plugin {

/// Makes use of what is stored. A failure of that names the setting.
template <class Use>
auto ForSetting(const std::string& key, Use use) -> decltype(use()) {
  return base::Handled(use, [&](const base::Failure& failure) -> decltype(use()) {
    throw base::Failure(failure.number(), failure.description() + " in the setting " + key);
  });
}

/// Section "Settings" of the plug-in's file, read and written through the host only. The default's type
/// tells the host the type that is meant: boolean for flags, 16-bit for numbers, text for texts.
/// All methods throw what the host throws. What is stored but is not what the setting is meant to be is a
/// failure that names the setting.
class Settings {
 public:
  explicit Settings(HostServices& host) : host_(host) {}

  /// What is stored, as it comes, or the default unchanged.
  [[nodiscard]] base::Value raw(const std::string& key, const base::Value& fallback) const;
  /// "True", "False" or a number. Throws number 13 for any other text.
  [[nodiscard]] bool flag(const std::string& key, bool fallback) const;
  /// The numeric value that the stored text begins with.
  [[nodiscard]] double number(const std::string& key, std::int16_t fallback) const;
  /// The same rounded to a whole number. Throws number 6 for one that needs more than 32 bits.
  [[nodiscard]] std::int32_t wholeNumber(const std::string& key, std::int16_t fallback) const;
  [[nodiscard]] std::string text(const std::string& key, const std::string& fallback) const;
  /// Booleans are handed over as booleans, positions as singles, the volume as a 32-bit integer.
  void save(const std::string& key, const base::Value& value);

 private:
  HostServices& host_;
};

}  // namespace plugin
