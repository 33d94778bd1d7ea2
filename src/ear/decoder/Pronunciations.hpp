#pragma once
#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

namespace ear {

/// How words are pronounced that the decoder's own dictionary doesn't have: as a word there that has an
/// apostrophe, or else by the rules of English spelling.
class Pronunciations {
 public:
  /// `dictionary` lists words with their phones, one a line.
  explicit Pronunciations(const std::filesystem::path& dictionary);

  /// In the dictionary's phones with a blank between them, each way once; none for a word without letters.
  [[nodiscard]] std::vector<std::string> of(const std::string& word) const;

 private:
  std::unordered_map<std::string, std::vector<std::string>> withoutApostrophe_;
};

}  // namespace ear
