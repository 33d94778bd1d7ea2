#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "ui/editor/PlayListEditor.hpp"
#include "ui/editor/Present.hpp"

// Where members of groups lie, and whether their files are still there.
namespace ui::editor {

namespace {

constexpr const char* kFilePrefix = "file:";
constexpr std::size_t kBeforePath = 7;  // the prefix and two slashes

/// "%41" as "A": an address tells so what a text can't hold.
std::string Unescaped(const std::string& address) {
  std::string path;
  for (std::size_t i = 0; i < address.size(); ++i) {
    if (address[i] == '%' && i + 2 < address.size()) {
      path += static_cast<char>(base::HexDigit(address[i + 1]) * 16 + base::HexDigit(address[i + 2]));
      i += 2;
    } else {
      path += address[i];
    }
  }
  return path;
}

void OpenForReading(const std::string& path) {
  // Whoever opens a pipe waits for its writer, and the whole window with him; a folder is no file either.
  std::error_code none;
  if (!std::filesystem::is_regular_file(path, none)) throw base::Failure(base::number::kFileNotFound);
  const std::ifstream file(path);
  if (!file.is_open()) throw base::Failure(base::number::kFileNotFound);
}

void OpenSource(const std::string& source) {
  if (base::LowerCase(source).rfind(kFilePrefix, 0) != 0) return OpenForReading(source);
  const std::string path = source.size() > kBeforePath ? source.substr(kBeforePath) : std::string();
  base::Attempt step;
  if (!step([&] { OpenForReading(path); })) OpenForReading(Unescaped(path));
}

}  // namespace

// The secure web scheme is left out: what bears it counts as a file, and is not found.
bool IsURL(const std::string& text) {
  const std::string folded = base::LowerCase(text);
  for (const char* prefix : {"http:", "mms:", "mmsu:", "mmst:", "msbs:", "url:"})
    if (folded.rfind(prefix, 0) == 0) return true;
  return false;
}

bool PlayListEditor::SourceExists(const NodeRef& node) {
  base::Attempt step;
  const std::string source = Present(node).tag;
  if (IsURL(source) || step([&] { OpenSource(source); })) return true;
  // Its key stays. A title that is dragged from here is looked for by this text.
  models_.TreeView1.image(node, image::kDeleted);
  models_.TreeView1.text(node, "File not found: " + source);
  return false;
}

}  // namespace ui::editor
