#pragma once
#include <string>

#include "plugin/host/HostServices.hpp"

namespace plugin {

/// Section "Settings" of the plug-in's file, read and written through the host only. The default's type
/// tells the host the type that is meant: boolean for flags, 16-bit for numbers, text for texts.
/// All methods throw what the host throws.
class Settings {
 public:
  explicit Settings(HostServices& host) : host_(host) {}

  /// What is stored, as it comes, or the default unchanged.
  [[nodiscard]] base::Value raw(const std::string& key, const base::Value& fallback) const;
  /// "True", "False" or a number. Throws number 13, naming the key, for any other text.
  [[nodiscard]] bool flag(const std::string& key, bool fallback) const;
  /// The numeric value that the stored text begins with.
  [[nodiscard]] double number(const std::string& key, std::int16_t fallback) const;
  [[nodiscard]] std::string text(const std::string& key, const std::string& fallback) const;
  /// Booleans are handed over as booleans, positions as singles, the volume as a 32-bit integer.
  void save(const std::string& key, const base::Value& value);

 private:
  HostServices& host_;
};

}  // namespace plugin
