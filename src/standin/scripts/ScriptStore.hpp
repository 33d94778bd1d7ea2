#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace standin {

/// The stored scripts: one file each. Names are letters, digits, blanks, "-" and "_".
class ScriptStore {
 public:
  /// Makes the folder with its examples when there is none.
  explicit ScriptStore(std::filesystem::path folder);

  static bool isName(const std::string& name);
  /// In the order of their names.
  [[nodiscard]] std::vector<std::string> names() const;
  /// Nothing when there is no such script.
  [[nodiscard]] std::optional<std::string> read(const std::string& name) const;
  /// Throws number 5 for what is no name, and as files do.
  void write(const std::string& name, const std::string& text) const;
  /// False when there is none. Throws as files do where it can't be removed.
  [[nodiscard]] bool remove(const std::string& name) const;

 private:
  [[nodiscard]] std::filesystem::path fileOf(const std::string& name) const;
  std::filesystem::path folder_;
};

/// A script that is there from the start.
struct ScriptExample {
  const char* name;
  const char* text;
};
const std::vector<ScriptExample>& ScriptExamples();

}  // namespace standin
