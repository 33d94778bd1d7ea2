#include "standin/scripts/ScriptStore.hpp"

#include <algorithm>
#include <utility>

#include "base/Failure.hpp"
#include "files/ReadFile.hpp"
#include "files/WriteFile.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestName = 50;
constexpr const char* kEnding = ".lua";

}  // namespace

ScriptStore::ScriptStore(std::filesystem::path folder) : folder_(std::move(folder)) {
  files::ClearLeftovers(folder_);
  if (std::filesystem::exists(folder_)) return;
  files::MakeFolder(folder_);
  for (const ScriptExample& example : ScriptExamples()) write(example.name, example.text);
}

bool ScriptStore::isName(const std::string& name) {
  const auto fits = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' ||
           c == '-' || c == '_';
  };
  return !name.empty() && name.size() <= kLongestName && name.front() != ' ' && name.back() != ' ' &&
         std::all_of(name.begin(), name.end(), fits);
}

std::filesystem::path ScriptStore::fileOf(const std::string& name) const {
  if (!isName(name)) {
    throw base::Failure(base::number::kInvalidArgument,
                        "A script's name has up to 50 letters, digits, blanks, “-” and “_”");
  }
  return folder_ / (name + kEnding);
}

std::vector<std::string> ScriptStore::names() const {
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(folder_, none)) {
    const std::string name = entry.path().stem().string();
    if (entry.path().extension() == kEnding && isName(name) && entry.is_regular_file(none)) {
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::optional<std::string> ScriptStore::read(const std::string& name) const {
  if (!isName(name)) return std::nullopt;
  return files::TextOf(fileOf(name));
}

void ScriptStore::write(const std::string& name, const std::string& text) const {
  files::WriteFile(fileOf(name), text, {.mode = files::kForOwner});
}

bool ScriptStore::remove(const std::string& name) const {
  std::error_code ignored;
  if (!isName(name)) return false;
  const std::filesystem::path file = fileOf(name);
  if (std::filesystem::symlink_status(file, ignored).type() == std::filesystem::file_type::not_found)
    return false;
  files::RemoveFile(file);
  return true;
}

}  // namespace standin
