#include "ui/editor/Entry.hpp"

#include <functional>
#include <utility>

#include "base/Text.hpp"

namespace ui::editor {

Entry::Entry(std::string key, std::string text, const char* image)
    : key_(std::move(key)),
      text_(std::move(text)),
      image_(image),
      keyHash_(std::hash<std::string>()(base::LowerCase(key_))) {}

}  // namespace ui::editor
